#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/Chunk.hpp>
#include <loam/SpeakPtr.hpp>

#include <cstring>
#include <string>
#include <type_traits>

namespace Orla {

using Loam::TypedChunk;

/// Returns the numbers of \p array, each followed by a comma: `1,2,3,`. Returns the empty text
/// for an empty or null array, and for a pointer to another kind of array, which is reported
/// through `Loam::SpeakPtr`.
template<class T>
FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<T>>& array);

/// Reads comma-separated numbers into a new array, which replaces \p array whatever the
/// result. A piece that cannot be read, including an empty one, becomes 0. A trailing comma
/// adds no element. Returns false if no piece could be read.
template<class T>
FATHOM_API bool ParseString(StrongPtr<TypedChunk<T>>& array, const std::string& text);

/// Text form of arrays: comma-separated numbers.
template<class T>
struct VArrayTrait {
    using Array = StrongPtr<TypedChunk<T>, ChunkBase>;

    static std::string Text(const Array& array) { return Stringify<T>(array); }
    static bool setValueFromText(Array& array, const std::string& text) { return ParseString<T>(array, text); }
};

template<>
struct FATHOM_API VValueTrait<StrongPtr<TypedChunk<double>, ChunkBase>> : VArrayTrait<double> {
    static bool TypenameInitialized;
};
template<>
struct FATHOM_API VValueTrait<StrongPtr<TypedChunk<float>, ChunkBase>> : VArrayTrait<float> {
    static bool TypenameInitialized;
};
template<>
struct FATHOM_API VValueTrait<StrongPtr<TypedChunk<short>, ChunkBase>> : VArrayTrait<short> {
    static bool TypenameInitialized;
};
template<>
struct FATHOM_API VValueTrait<StrongPtr<TypedChunk<int>, ChunkBase>> : VArrayTrait<int> {
    static bool TypenameInitialized;
};
template<>
struct FATHOM_API VValueTrait<StrongPtr<TypedChunk<long long>, ChunkBase>> : VArrayTrait<long long> {
    static bool TypenameInitialized;
};

/// Arrays differ if their contents differ, bit by bit, or if a pointer refers to another kind of
/// array, which is reported. Copies share the array; to change
/// numbers, make a new one.
template<class T>
    requires std::is_arithmetic_v<T>
struct VValueOperations<StrongPtr<TypedChunk<T>, ChunkBase>> {
    using Array = StrongPtr<TypedChunk<T>, ChunkBase>;

    static constexpr bool copiesPlainly = true;

    static bool areDifferent(const Array& a, const Array& b)
    {
        if (a == b)
            return false;
        using Loam::SpeakPtr;
        if (!SpeakPtr::checkType<ChunkBase>(a, "isDifferentFrom")
            || !SpeakPtr::checkType<ChunkBase>(b, "isDifferentFrom"))
            return true;
        return !a || !b || a->size() != b->size()
               || (a->size() > 0 && std::memcmp(a->data(), b->data(), a->size() * sizeof(T)) != 0);
    }

    static Array copyOf(const Array& array) { return array; }
};

} // namespace Orla
