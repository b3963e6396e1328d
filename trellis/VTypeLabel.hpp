#pragma once

#include <trellis/Export.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

/// The name of a value type in messages, tables and drawings: "choice" for
/// `StrongPtr<StringSelection>`. Programs find types by their `Loam::Typename`.
///
/// A library declares the label of a type next to its registration. The label is used as long
/// as the object lives:
///
///     const Orla::VTypeLabel label{typeid(Range), "range", "4.5:10"};
///
/// The first label of a type is used; the next one replaces it when the first library is
/// unloaded.
class TRELLIS_API VTypeLabel {
public:
    /// An empty \p label declares nothing. \p example is a text that the type accepts, for
    /// messages about texts that it refuses.
    VTypeLabel(const std::type_info& type, const std::string& label, const std::string& example = {});
    ~VTypeLabel();
    VTypeLabel(const VTypeLabel&) = delete;
    VTypeLabel& operator=(const VTypeLabel&) = delete;

    /// Returns the label of \p type, or its `Loam::Typename` if it has none. A text that is
    /// already the label of another type is followed by the `Loam::Typename` in parentheses, so
    /// types are never confused.
    static std::string of(const std::type_info& type);

    /// Returns a text that values of \p type accept; empty if its label has none.
    static std::string exampleOf(const std::type_info& type);

private:
    std::string m_key;
    std::string m_label;
    std::string m_example;
};

} // namespace Orla
