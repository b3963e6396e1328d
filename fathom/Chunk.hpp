#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/Chunk.hpp>

#include <cstring>
#include <string>
#include <type_traits>

namespace Orla {

using Loam::TypedChunk;

/// The numbers of \p array, each followed by a comma: `1,2,3,`. The empty text
/// for an empty array and for none at all.
template<class T>
FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<T>>& array);

/// Reads numbers between commas into a new array, which replaces \p array
/// whatever the result. A piece that cannot be read, also an empty one, becomes
/// 0. A comma at the end has no piece behind it. False if no piece could be read.
template<class T>
FATHOM_API bool ParseString(StrongPtr<TypedChunk<T>>& array, const std::string& text);

/// The text form of arrays: numbers between commas.
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

/// Arrays are different when their content is, bit by bit. Copies share the
/// array: whoever changes numbers makes a new one.
template<class T>
    requires std::is_arithmetic_v<T>
struct VValueOperations<StrongPtr<TypedChunk<T>, ChunkBase>> {
    using Array = StrongPtr<TypedChunk<T>, ChunkBase>;

    static bool areDifferent(const Array& a, const Array& b)
    {
        if (a == b)
            return false;
        return !a || !b || a->size() != b->size()
               || (a->size() > 0 && std::memcmp(a->data(), b->data(), a->size() * sizeof(T)) != 0);
    }

    static Array copyOf(const Array& array) { return array; }
};

} // namespace Orla
