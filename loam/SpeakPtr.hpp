#pragma once

#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

#include <typeinfo>

namespace Loam {

/// Pointer diagnostics: prints the state of a reference to standard output, to
/// track down wrong counts.
class LOAM_API SpeakPtr {
public:
    /// Prints one line: \p where, the object's address, its counts and its
    /// state. A null \p block is printed as an empty reference.
    static void printRS(const char* where, const void* object, const ReferenceBlock* block);

    /// The same for a living object whose class should be \p expected but is \p found.
    static void printRS(const char* where, const void* object, const ReferenceBlock& block,
                        const std::type_info& expected, const std::type_info& found);

    /// Returns true for an empty pointer and for one whose object is alive. Otherwise
    /// the strong pointer has outlived its object: reports this through `printRS` with
    /// \p where and returns false.
    template<class T>
    static bool check(const StrongPtr<T>& pointer, const char* where)
    {
        const ReferenceBlock* block = pointer.referenceBlock();
        if ((block == nullptr) == (pointer.get() == nullptr) && (block == nullptr || block->isAlive()))
            return true;
        printRS(where, pointer.get(), block);
        return false;
    }

    /// As `check`, but also reports an object that is not a \p T, although the pointer has that
    /// type: a wrong cast, or code that was built with another definition of the class. Call it
    /// before reading through such a pointer. \p Root is the counted root of \p T.
    template<class Root, class T>
    static bool checkType(const StrongPtr<T>& pointer, const char* where)
    {
        if (!check(pointer, where))
            return false;
        // The compiler would assume that a T is a T; it does not for the root.
        const Root* const object = pointer.get();
        if (!object || dynamic_cast<const T*>(object))
            return true;
        printRS(where, object, *pointer.referenceBlock(), typeid(T), typeid(*object));
        return false;
    }
};

} // namespace Loam
