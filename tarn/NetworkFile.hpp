#pragma once

#include <tarn/Faults.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// A piece of text and where it stands in the file.
struct PlacedText {
    std::string text;
    Place place;
};

/// What a saved network says, before anybody looks whether such libraries, types
/// and slots exist. Everything is in the order of the file.
struct NetworkFile {
    /// The version of the format that is read here.
    static constexpr std::int64_t Format = 1;

    /// An input and its text, or an input and the output that it reads.
    struct Setting {
        PlacedText input;
        PlacedText value;
    };

    struct Object {
        Place place;
        PlacedText name; ///< nowhere if it is missing
        PlacedText type; ///< nowhere if it is missing
        std::vector<Setting> texts;
        std::vector<Setting> connections;

        /// How messages call it: by its name or, without one, by its number.
        std::string description;
    };

    /// A column of the table of results.
    struct Column {
        PlacedText title;
        PlacedText value; ///< nowhere if it is missing
    };

    std::vector<PlacedText> libraries;
    std::vector<Object> objects;
    std::vector<Column> columns;
};

/// Reads the TOML text \p text. What cannot be understood is added to \p faults
/// and left out; TOML that is no TOML gives one fault and an empty network.
NetworkFile parseNetwork(std::string_view text, Faults& faults);

/// The content of the file \p path.
/// \throw FileError
std::string readFile(const std::string& path);

} // namespace Tarn
