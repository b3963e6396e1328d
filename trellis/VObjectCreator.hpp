#pragma once

#include <trellis/Export.hpp>
#include <trellis/VObject.hpp>

#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Orla {

/// Makes processing objects of one type. The framework finds creators by the
/// registered name of their type.
class TRELLIS_API VObjectCreator : public Loam::ReferenceBase<VObjectCreator> {
public:
    ~VObjectCreator() override;

    /// A new object with its slots and outputs, not finished yet: see
    /// `VObject::finishCreation`. Without \p preferences it gets those that its
    /// type has by default.
    virtual StrongPtr<VObject> create(const std::string& name, int level,
                                      const StrongPtr<VCreationPreferences>& preferences) const = 0;

    const std::type_info& objectType() const noexcept { return *m_type; }

    /// The name under which the type is registered; empty before that.
    const std::string& typeName() const noexcept { return m_name; }

    /// Makes \p creator known under \p name. False, with a warning that names
    /// both owners, if another type has the name.
    static bool registerCreator(const WeakPtrImpl<VObjectCreator>& creator, const std::string& name);

    /// Null if no loaded library has a type of that name.
    static StrongPtr<VObjectCreator> find(std::string_view typeName);

    /// The creator whose objects are the one provider of \p outputType for the
    /// whole process, or null.
    static StrongPtr<VObjectCreator> findUnique(const std::type_info& outputType);

    /// Registered names in alphabetic order.
    static std::vector<std::string> names();

protected:
    /// \p uniqueOutput is null unless the objects are the one provider of that
    /// type for the whole process.
    explicit VObjectCreator(const std::type_info& objectType, const std::type_info* uniqueOutput = nullptr) noexcept
        : m_type{&objectType}, m_uniqueOutput{uniqueOutput}
    {
    }

private:
    const std::type_info* m_type;
    const std::type_info* m_uniqueOutput;
    std::string m_name;
};

/// Creator of objects of class \p T, which has a constructor with the arguments
/// of `VObject`'s.
template<class T>
class TypedObjectCreator final : public VObjectCreator {
public:
    explicit TypedObjectCreator(const StrongPtr<VCreationPreferences>& defaults = {},
                                const std::type_info* uniqueOutput = nullptr)
        : VObjectCreator{typeid(T), uniqueOutput}, m_defaults{defaults}
    {
    }

    StrongPtr<VObject> create(const std::string& name, int level,
                              const StrongPtr<VCreationPreferences>& preferences) const override
    {
        return Loam::makeStrong<T>(name, level, preferences ? preferences : m_defaults);
    }

private:
    StrongPtr<VCreationPreferences> m_defaults;
};

/// Registers the object class \p T for as long as it lives. One line in the
/// source file of the class makes it known when the library is loaded:
///
///     const Orla::VObjectType<Ticker> tickerType{"Ticker"};
template<class T>
class VObjectType {
public:
    static_assert(std::is_base_of_v<VObject, T>);

    explicit VObjectType(const std::string& name, const StrongPtr<VCreationPreferences>& defaults = {},
                         const std::type_info* uniqueOutput = nullptr)
        : m_creator{defaults, uniqueOutput}
    {
        VObjectCreator::registerCreator(&m_creator, name);
    }

private:
    TypedObjectCreator<T> m_creator;
};

} // namespace Orla
