#include <tarn/text/PlacedText.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstdint>

namespace Tarn {

Place placeAt(std::string_view text, std::size_t position) noexcept
{
    const std::string_view before = text.substr(0, position);
    const std::string_view line = before.substr(before.rfind('\n') + 1); // npos + 1 is the start of the text
    return {static_cast<std::uint32_t>(1 + std::ranges::count(before, '\n')),
            static_cast<std::uint32_t>(1 + Loam::countCharacters(line))};
}

} // namespace Tarn
