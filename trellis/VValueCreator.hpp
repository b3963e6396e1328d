#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Orla {

/// Makes values of one type from text. The framework finds creators by the
/// registered name of their type.
class TRELLIS_API VValueCreator : public Loam::ReferenceBase<VValueCreator> {
public:
    ~VValueCreator() override;

    /// A new value read from \p text; \p ok reports whether the text was
    /// accepted. The value is returned in either case and then holds whatever
    /// the refused text left.
    virtual StrongPtr<VValueBase> create(const std::string& text, bool& ok) = 0;

    const std::type_info& valueType() const noexcept { return *m_type; }

    /// Makes \p creator known under \p name. False, with a warning that names
    /// both owners, if another type has the name.
    static bool registerCreator(const WeakPtrImpl<VValueCreator>& creator, const std::string& name);

    /// Null if no loaded library has a type of that name.
    static StrongPtr<VValueCreator> find(std::string_view typeName);

    /// A new value of the named type read from \p text; null, and \p ok false,
    /// if there is no such type.
    static StrongPtr<VValueBase> createValue(std::string_view typeName, const std::string& text, bool& ok);

    /// Registered names in alphabetic order.
    static std::vector<std::string> names();

protected:
    explicit VValueCreator(const std::type_info& valueType) noexcept : m_type{&valueType} {}

private:
    const std::type_info* m_type;
};

} // namespace Orla
