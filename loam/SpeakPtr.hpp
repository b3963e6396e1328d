#pragma once

#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

namespace Loam {

/// Pointer diagnostics: prints the state of a reference to standard output, to
/// track down wrong counts.
class LOAM_API SpeakPtr {
public:
    /// Prints one line: \p where, the object's address, its counts and its
    /// state. A null \p block is printed as an empty reference.
    static void printRS(const char* where, const void* object, const ReferenceBlock* block);

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
};

} // namespace Loam
