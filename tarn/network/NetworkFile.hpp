#pragma once

#include <tarn/text/Faults.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// What a saved network says, before anybody looks whether such libraries, types
/// and slots exist. Everything is in the order of the file.
struct NetworkFile {
    /// The version of the format that is read here.
    static constexpr std::int64_t Format = 1;

    /// An input and the output that it reads.
    struct Setting {
        PlacedText input;
        PlacedText value;
    };

    /// An input and its text.
    struct InputText {
        PlacedText input;
        PlacedText value; ///< nowhere if there are only exact texts

        /// Read one after the other in place of the value, which then only shows what
        /// comes of it; for values that their text form does not restore.
        std::vector<PlacedText> exact = {};

        bool isNumber = false; ///< stands in the file without quotes
    };

    struct Object {
        Place place;
        PlacedText name; ///< nowhere if it is missing
        PlacedText type; ///< nowhere if it is missing
        std::vector<InputText> texts;
        std::vector<Setting> connections;

        /// Of an object whose type is not known: everything but name and type, as it
        /// is written again. Its texts are then listed where they are such, its
        /// connections are not.
        std::string kept;

        /// How messages call it: by its name or, without one, by its number.
        std::string description;
    };

    /// A column of the table of results.
    struct Column {
        PlacedText title;
        PlacedText value; ///< nowhere if it is missing
    };

    std::vector<PlacedText> libraries;
    PlacedText chart; ///< that the whole network follows; nowhere if none is named
    std::vector<Object> objects;
    std::vector<Column> columns;
};

/// Reads the TOML text \p text. What cannot be understood is added to \p faults
/// and left out; TOML that is no TOML gives one fault and an empty network.
NetworkFile parseNetwork(std::string_view text, Faults& faults);

/// The same for a network that is written again: what objects say whose types
/// \p isKnown refuses is kept, and no fault, whatever it is.
NetworkFile parseNetwork(std::string_view text, Faults& faults,
                         const std::function<bool(const std::string& type)>& isKnown);

/// The content of the file \p path.
/// \throw Loam::FileError
std::string readFile(const std::string& path);

/// The folder in which the file \p path stands, from the root on.
/// \throw Loam::FileError
std::string folderOf(const std::string& path);

} // namespace Tarn
