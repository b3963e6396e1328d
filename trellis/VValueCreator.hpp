#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Orla {

/// Creates values of one type from text. Creators are found by the registered name of their
/// type.
class TRELLIS_API VValueCreator : public Loam::ReferenceBase<VValueCreator> {
public:
    ~VValueCreator() override;

    /// Creates a value from \p text; \p ok reports whether the text was accepted. Returns the
    /// value in either case; after a refusal it holds whatever the text left.
    virtual StrongPtr<VValueBase> create(const std::string& text, bool& ok) = 0;

    const std::type_info& valueType() const noexcept { return *m_type; }

    /// Registers \p creator under \p name. Returns false if another type has the name, with a
    /// warning that names both owners.
    static bool registerCreator(const WeakPtrImpl<VValueCreator>& creator, const std::string& name);

    /// Returns null if no loaded library has a type of that name.
    static StrongPtr<VValueCreator> find(std::string_view typeName);

    /// Creates a value of the named type from \p text. Returns null and sets \p ok to false if
    /// the type does not exist.
    static StrongPtr<VValueBase> createValue(std::string_view typeName, const std::string& text, bool& ok);

    /// Returns the registered names in alphabetical order.
    static std::vector<std::string> names();

protected:
    explicit VValueCreator(const std::type_info& valueType) noexcept : m_type{&valueType} {}

private:
    const std::type_info* m_type;
};

} // namespace Orla
