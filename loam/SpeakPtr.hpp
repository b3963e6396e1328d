#pragma once

#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

namespace Loam {

/// Diagnostics of pointers: says on standard output what state a reference is
/// in, for programs that suspect a count went wrong.
class LOAM_API SpeakPtr {
public:
    /// Prints one line: \p where, the object's address, its counts and its
    /// state. A null \p block is printed as an empty reference.
    static void printRS(const char* where, const void* object, const ReferenceBlock* block);

    /// True for an empty pointer and for one whose object is alive. Otherwise a
    /// strong pointer has outlived its object, which is reported through
    /// `printRS` under \p where.
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
