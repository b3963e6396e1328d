#pragma once

#include <trellis/Export.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VTypeDescription.hpp>

#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Orla {

/// Creates processing objects of one type. Creators are found by the registered name of their
/// type.
class TRELLIS_API VObjectCreator : public Loam::ReferenceBase<VObjectCreator> {
public:
    ~VObjectCreator() override;

    /// Creates an object with its slots and outputs; the caller finishes it with
    /// `VObject::finishCreation`. If \p preferences is null, the object gets the defaults of
    /// its type.
    virtual StrongPtr<VObject> create(const std::string& name, int level,
                                      const StrongPtr<VCreationPreferences>& preferences) const = 0;

    const std::type_info& objectType() const noexcept { return *m_type; }

    /// Returns the name under which the type is registered; empty before registration.
    const std::string& typeName() const noexcept { return m_name; }

    /// Returns the path of the file that defines the type: that of the library with the code of
    /// its class, or the path passed to `setFile`.
    std::string file() const;

    /// Names the file that defines the type, for a class whose objects have several types. Types of
    /// one name from different files are different types. Call it before the creator is
    /// registered.
    void setFile(const std::string& path) { m_file = path; }

    /// Returns what people need to know about the type, or null.
    const StrongPtr<VTypeDescription>& description() const noexcept { return m_description; }

    /// Describes the type. Call it before the creator is registered.
    void setDescription(const StrongPtr<VTypeDescription>& description) { m_description = description; }

    /// Registers \p creator under \p name. Returns false if another type has the name; the
    /// creator is then found only as LIBRARY:NAME, and takes over NAME when the first type is
    /// unregistered. If both types are in one library, a warning names both. Also returns false
    /// if \p creator has expired.
    static bool registerCreator(const WeakPtrImpl<VObjectCreator>& creator, const std::string& name);

    /// Finds the type registered as \p typeName. "LIBRARY:NAME" selects the type of one library
    /// if several have different types of that name; LIBRARY is the plain name of its file.
    /// Returns null if no loaded library has the type, and after the end of `main` once the
    /// registry is destroyed.
    static StrongPtr<VObjectCreator> find(std::string_view typeName);

    /// Returns the creator whose objects are a network's unique provider of \p outputType, or
    /// null.
    static StrongPtr<VObjectCreator> findUnique(const std::type_info& outputType);

    /// Returns the registered names in alphabetical order.
    static std::vector<std::string> names();

    /// Returns the plain names of the libraries that registered different types under
    /// \p typeName, one per type. The first one has the name; more than one means that the
    /// name alone is ambiguous.
    static std::vector<std::string> libraries(std::string_view typeName);

    /// Returns all registered creators, including those that wait behind another one. A creator
    /// with several names appears several times.
    static std::vector<StrongPtr<VObjectCreator>> creators();

protected:
    /// If the objects are a network's unique provider of a type, \p uniqueOutput is that type,
    /// else null.
    explicit VObjectCreator(const std::type_info& objectType, const std::type_info* uniqueOutput = nullptr) noexcept
        : m_type{&objectType}, m_uniqueOutput{uniqueOutput}
    {
    }

private:
    const std::type_info* m_type;
    const std::type_info* m_uniqueOutput;
    std::string m_name;
    std::string m_file;
    StrongPtr<VTypeDescription> m_description;
};

namespace Detail {

struct ArgumentsOfObjects {
    ArgumentsOfObjects(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences);
};

template<class T>
struct Acceptor {
    static void accept(T&& object);
    static void accept(ArgumentsOfObjects arguments);
};

// True if T can be created from the arguments of an object. Also true for a class whose members have
// faulty initialisers, which makes its constructors unusable: the compiler reports these members
// already, and the call is ambiguous.
template<class T>
inline constexpr bool hasObjectConstructor =
    std::is_constructible_v<T, const std::string&, int, const StrongPtr<VCreationPreferences>&>
    || !requires(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences) {
           Acceptor<T>::accept({name, level, preferences});
       };

template<class T>
inline constexpr bool isObjectType = std::is_base_of_v<VObject, T> && !std::is_abstract_v<T> && hasObjectConstructor<T>;

} // namespace Detail

/// Creates objects of class \p T, whose constructor takes the same arguments as that of
/// `VObject`.
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
        // VObjectType reports what a class lacks, in fewer lines than its creation.
        if constexpr (Detail::isObjectType<T>)
            return Loam::makeStrong<T>(name, level, preferences ? preferences : m_defaults);
        else
            return nullptr;
    }

private:
    StrongPtr<VCreationPreferences> m_defaults;
};

/// Registers the object class \p T for the lifetime of this object. One line in the source
/// file of the class registers it when the library is loaded:
///
///     const Orla::VObjectType<Ticker> tickerType{"Ticker"};
template<class T>
class VObjectType {
public:
    static_assert(!Detail::SlotOwner<T>::isValid || !std::is_abstract_v<T>,
                  "an object type overrides bool update(Orla::VRequest&, double)");
    static_assert(!Detail::SlotOwner<T>::isValid || std::is_abstract_v<T> || Detail::hasObjectConstructor<T>,
                  "an object type has the constructor of Orla::VObject: using VObject::VObject;");

    explicit VObjectType(const std::string& name, const StrongPtr<VCreationPreferences>& defaults = {},
                         const std::type_info* uniqueOutput = nullptr)
        : m_creator{defaults, uniqueOutput}
    {
        VObjectCreator::registerCreator(&m_creator, name);
    }

    VObjectType(const std::string& name, const VTypeText& description,
                const StrongPtr<VCreationPreferences>& defaults = {}, const std::type_info* uniqueOutput = nullptr)
        : m_creator{defaults, uniqueOutput}
    {
        m_creator.setDescription(Loam::makeStrong<VTypeDescription>(description.parts()));
        VObjectCreator::registerCreator(&m_creator, name);
    }

private:
    TypedObjectCreator<T> m_creator;
};

} // namespace Orla
