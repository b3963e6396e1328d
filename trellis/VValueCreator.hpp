#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <loam/AtomicCount.hpp>

#include <atomic>
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

    /// Returns the number of existing values whose code is in the library of this creator. 0 for
    /// types that do not count their values.
    int existingValues() const noexcept { return m_existingValues.load(std::memory_order_relaxed); }

    /// Adds \p change, 1 or -1, to the number of existing values.
    void countValue(int change) noexcept { Loam::countUp(m_existingValues, change); }

    /// Registers \p creator under \p name. Returns false if another type has the name, with a
    /// warning that names both owners; the creator is then found only as LIBRARY:NAME, and
    /// takes over NAME when the first type is unregistered. Also returns false if \p creator has
    /// expired.
    static bool registerCreator(const WeakPtrImpl<VValueCreator>& creator, const std::string& name);

    /// Finds the type registered as \p typeName. "LIBRARY:NAME" selects the type of one library
    /// if several have different types of that name; LIBRARY is the plain name of its file.
    /// Returns null if no loaded library has the type, and after the end of `main` once the
    /// registry is destroyed.
    static StrongPtr<VValueCreator> find(std::string_view typeName);

    /// Creates a value of the named type from \p text. Returns null and sets \p ok to false if
    /// the type does not exist.
    static StrongPtr<VValueBase> createValue(std::string_view typeName, const std::string& text, bool& ok);

    /// Returns the registered names in alphabetical order.
    static std::vector<std::string> names();

    /// Returns the plain names of the libraries that registered different types under
    /// \p typeName, one per type. The first one has the name; more than one means that the
    /// name alone is ambiguous.
    static std::vector<std::string> libraries(std::string_view typeName);

    /// Returns all registered creators, including those that wait behind another one. A creator
    /// with several names appears several times.
    static std::vector<StrongPtr<VValueCreator>> creators();

protected:
    explicit VValueCreator(const std::type_info& valueType) noexcept : m_type{&valueType} {}

private:
    const std::type_info* m_type;
    std::atomic<int> m_existingValues{0};
};

} // namespace Orla
