#include <fathom/Chunk.hpp>

#include <fathom/RegisteredName.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/SpeakPtr.hpp>

#include <algorithm>
#include <cstddef>

namespace Orla {

namespace {

// Compilers turn the inner loop into vector instructions because its length is fixed.
std::size_t countCommas(const std::string& text) noexcept
{
    constexpr std::ptrdiff_t Block = 128;
    std::size_t count = 0;
    const char* place = text.data();
    const char* const end = place + text.size();
    for (; end - place >= Block; place += Block) {
        unsigned char found = 0;
        for (std::ptrdiff_t i = 0; i < Block; ++i)
            found = static_cast<unsigned char>(found + (place[i] == ',' ? 1 : 0));
        count += found;
    }
    return count + static_cast<std::size_t>(std::count(place, end, ','));
}

} // namespace

template<class T>
std::string Stringify(const StrongPtr<TypedChunk<T>>& array)
{
    if (!array || !Loam::SpeakPtr::checkType<ChunkBase>(array, "Stringify"))
        return {};
    constexpr std::size_t BlockNumbers = 256;
    char block[BlockNumbers * (Loam::numberTextSize + 1)];
    std::string text;
    const T* number = array->data();
    const T* const end = number + array->size();
    while (number != end) {
        const T* const blockEnd = number + std::min(BlockNumbers, static_cast<std::size_t>(end - number));
        char* place = block;
        for (; number != blockEnd; ++number) {
            place = Loam::writeNumber(place, block + sizeof block, *number);
            *place++ = ',';
        }
        // Estimates the total length from the first block.
        if (text.empty())
            text.reserve((static_cast<std::size_t>(place - block) + 16) * (array->size() / BlockNumbers + 1));
        text.append(block, place);
    }
    return text;
}

template<class T>
bool ParseString(StrongPtr<TypedChunk<T>>& array, const std::string& text)
{
    const std::size_t count = countCommas(text) + (text.empty() || text.back() == ',' ? 0 : 1);
    Loam::SpeakPtr::checkType<ChunkBase>(array, "ParseString"); // replaced in any case
    const StrongPtr<TypedChunk<T>> numbers = Loam::TypedChunkBase<T>::createNewChunk(count, false);
    bool anyRead = false;
    const char* piece = text.data();
    const char* const end = text.data() + text.size();
    for (T& number : *numbers) {
        // A number contains no comma, so each ends before the next piece begins.
        T read{};
        if (const char* next = Loam::readNumber(piece, end, read)) {
            anyRead = true;
            piece = next;
        }
        number = read;
        if (piece != end && *piece != ',')
            piece = std::find(piece, end, ',');
        if (piece != end)
            ++piece;
    }
    array = numbers;
    return anyRead;
}

template FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<double>>&);
template FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<float>>&);
template FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<short>>&);
template FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<int>>&);
template FATHOM_API std::string Stringify(const StrongPtr<TypedChunk<long long>>&);
template FATHOM_API bool ParseString(StrongPtr<TypedChunk<double>>&, const std::string&);
template FATHOM_API bool ParseString(StrongPtr<TypedChunk<float>>&, const std::string&);
template FATHOM_API bool ParseString(StrongPtr<TypedChunk<short>>&, const std::string&);
template FATHOM_API bool ParseString(StrongPtr<TypedChunk<int>>&, const std::string&);
template FATHOM_API bool ParseString(StrongPtr<TypedChunk<long long>>&, const std::string&);

namespace {

template<class T>
using Array = StrongPtr<TypedChunk<T>, ChunkBase>;

const RegisteredName doubles{typeid(Array<double>), "double[]"};
const RegisteredName floats{typeid(Array<float>), "float[]"};
const RegisteredName shorts{typeid(Array<short>), "int16[]"};
const RegisteredName ints{typeid(Array<int>), "int32[]"};
const RegisteredName longs{typeid(Array<long long>), "int64[]"};
const VTypeLabel doublesLabel{typeid(Array<double>), "array of numbers", "1.5,2,3"};
const VTypeLabel floatsLabel{typeid(Array<float>), "array of single-precision numbers", "1.5,2,3"};
const VTypeLabel shortsLabel{typeid(Array<short>), "array of 16-bit integers", "1,2,3"};
const VTypeLabel intsLabel{typeid(Array<int>), "array of integers", "1,2,3"};
const VTypeLabel longsLabel{typeid(Array<long long>), "array of 64-bit integers", "1,2,3"};

} // namespace

bool VValueTrait<Array<double>>::TypenameInitialized = true;
bool VValueTrait<Array<float>>::TypenameInitialized = true;
bool VValueTrait<Array<short>>::TypenameInitialized = true;
bool VValueTrait<Array<int>>::TypenameInitialized = true;
bool VValueTrait<Array<long long>>::TypenameInitialized = true;

} // namespace Orla
