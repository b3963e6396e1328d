#pragma once

#include <tarn/text/PlacedText.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {

/// The content of a saved network, in file order. Whether its libraries, types and slots
/// exist has not been checked.
struct NetworkFile {
    /// The supported version of the format.
    static constexpr std::int64_t Format = 1;

    /// An input and the output that it reads.
    struct Setting {
        PlacedText input;
        PlacedText value;
    };

    /// An input and its text.
    struct InputText {
        PlacedText input;
        PlacedText value; ///< without a place if there are only exact texts

        /// Read in order instead of the value, which then only shows the result; for values
        /// that their text form does not restore.
        std::vector<PlacedText> exact = {};

        bool isNumber = false;  ///< written without quotes
        bool isTruth = false;   ///< true or false, written without quotes
        bool isOfInput = false; ///< the value has no text: it is that of the input
    };

    struct Object {
        Place place;
        PlacedText name; ///< without a place if missing
        PlacedText type; ///< without a place if missing
        std::vector<InputText> texts;
        std::vector<Setting> connections;

        /// For an object of unknown type: everything but name and type, in the form in which
        /// it is written again. `texts` then holds only settings that are strings, and
        /// `connections` is empty.
        std::string kept;

        /// Identifies the object in messages, by its name or, without one, by its number.
        std::string description;
    };

    /// A column of the table of results.
    struct Column {
        PlacedText title;
        PlacedText value; ///< without a place if missing
    };

    std::vector<PlacedText> libraries;
    PlacedText chart; ///< the chart for the whole network; without a place if none is named
    std::vector<Object> objects;
    std::vector<Column> columns;
};

} // namespace Tarn
