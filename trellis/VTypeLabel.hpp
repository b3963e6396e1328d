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
///     const Orla::VTypeLabel label{typeid(Range), "range"};
///
/// The first label of a type is used; the next one replaces it when the first library is
/// unloaded.
class TRELLIS_API VTypeLabel {
public:
    /// An empty \p label declares nothing.
    VTypeLabel(const std::type_info& type, const std::string& label);
    ~VTypeLabel();
    VTypeLabel(const VTypeLabel&) = delete;
    VTypeLabel& operator=(const VTypeLabel&) = delete;

    /// Returns the label of \p type, or its `Loam::Typename` if it has none. A text that is
    /// already the label of another type is followed by the `Loam::Typename` in parentheses, so
    /// types are never confused.
    static std::string of(const std::type_info& type);

private:
    std::string m_key;
    std::string m_label;
};

} // namespace Orla
