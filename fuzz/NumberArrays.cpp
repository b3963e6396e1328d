#include "Support.hpp"

#include <fathom/Chunk.hpp>

#include <loam/Numbers.hpp>

#include <cstring>
#include <string>
#include <vector>

// Compares the reader of number arrays with one that splits the text at its commas first.

namespace {

template<class T>
bool readPieces(std::vector<T>& numbers, std::string_view text)
{
    bool anyRead = false;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        T number{};
        anyRead |= Loam::readNumber(number, text.substr(0, comma));
        numbers.push_back(number);
        if (comma == std::string_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    return anyRead;
}

template<class T>
void check(const std::string& text)
{
    using Array = Loam::StrongPtr<Loam::TypedChunk<T>>;
    const unsigned long long memory = Loam::ChunkBase::TotalMemsize;
    {
        std::vector<T> expected;
        Array array;
        Fuzz::require(Orla::ParseString<T>(array, text) == readPieces(expected, text),
                      "an array is accepted if any of its pieces is a number");
        Fuzz::require(bool(array) && array->size() == expected.size(), "an array has one number per piece");
        Fuzz::require(expected.empty() || std::memcmp(array->data(), expected.data(), expected.size() * sizeof(T)) == 0,
                      "the numbers of an array are those of its pieces");

        const std::string written = Orla::Stringify<T>(array);
        Array again;
        Fuzz::require(Orla::ParseString<T>(again, written) == !expected.empty(), "the text of an array is accepted");
        Fuzz::requireEqual(Orla::Stringify<T>(again), written, "the text of an array reads back");
    }
    Fuzz::require(Loam::ChunkBase::TotalMemsize == memory, "destroyed arrays are not counted");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text{Fuzz::textOf(data, size)};
    check<double>(text);
    check<float>(text);
    check<short>(text);
    check<int>(text);
    check<long long>(text);
    return 0;
}
