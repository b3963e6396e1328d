#pragma once

#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/NetworkReading.hpp>
#include <tarn/text/Faults.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// What a saved network means to a run, as texts that do not depend on the notation of its file.
struct NetworkContent {
    /// An output that an input or a column reads.
    struct Source {
        std::string object;
        std::string output; ///< "OUTPUT" or "OUTPUT.MEMBER"

        friend bool operator==(const Source&, const Source&) = default;
    };

    /// An input of an object, or an entry of one whose type is unknown.
    struct Input {
        Place place;                     ///< of its text or connection; empty if the file has neither
        std::optional<Source> connected; ///< by the file
        std::optional<Source> found;     ///< connected automatically

        /// Produce the value, read in order; empty for the value that the object declares. For
        /// an object of unknown type, the value as TOML.
        std::vector<std::string> texts;
    };

    struct Object {
        PlacedText name;
        std::string type;
        bool isKnown = false;                ///< a library has the type
        std::map<std::string, Input> inputs; ///< those that are set or connected
    };

    struct Column {
        PlacedText title;
        Source source;
    };

    /// All types and libraries are known, so the automatic connections are known too.
    bool isComplete = false;

    std::vector<PlacedText> libraries;
    PlacedText chart;
    std::string timeProvider; ///< the object whose time the host steps; empty if unknown or missing
    std::vector<Object> objects;
    std::vector<Column> columns;

    /// Returns the content of \p reading. If all types are known, also sets the objects up, as a
    /// run does, and finds the connections that they make; exceptions are added to \p faults.
    ///
    /// A value that only the texts of its file restore gets the texts of the same input in
    /// \p like if these produce it too. So equal values have equal texts in both.
    /// \pre \p reading has no faults, and its libraries are in memory.
    static NetworkContent of(const NetworkReading& reading, Faults& faults, const NetworkContent& like);
};

} // namespace Tarn
