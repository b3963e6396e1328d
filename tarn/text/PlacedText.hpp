#pragma once

#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Tarn {

/// A piece of text and its position in the file.
struct PlacedText {
    std::string text;
    Place place;
};

/// Returns the line and the column, in characters, of the byte at \p position.
Place placeAt(std::string_view text, std::size_t position) noexcept;

} // namespace Tarn
