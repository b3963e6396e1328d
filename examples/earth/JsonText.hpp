#pragma once

#include <earth/Export.hpp>

#include <nlohmann/json_fwd.hpp>

#include <fstream>
#include <string>

// Messages about JSON files: the place of a fault, what was found and what was expected.

namespace Earth {

/// A fault in a document.
struct EARTH_API JsonFault {
    std::string place; ///< the path to the value; empty for the document itself
    std::string found;
    std::string expected;
};

/// Returns \p text, or its first 60 bytes and "..." if it is longer.
EARTH_API std::string shortened(std::string text);

/// Describes a JSON value for a message: "an object", "the number 5"; "nothing" for a null
/// pointer.
EARTH_API std::string described(const nlohmann::json* found);

/// Throws a `JsonFault`.
[[noreturn]] EARTH_API void refuseJson(std::string place, const nlohmann::json* found, std::string expected);

/// Opens a file to read. \p expected describes its kind: "a GeoJSON file".
/// \throw std::runtime_error with the name of the file and the reason if that fails.
EARTH_API std::ifstream openJson(const std::string& file, const std::string& expected);

/// Rethrows the exception that is being handled. A `JsonFault`, an error of the JSON parser and
/// one of the stream become a std::runtime_error that begins with \p name, the name of the file.
/// The text of a parser's error omits the text read, which may be very long.
/// \pre Called in a `catch` clause.
[[noreturn]] EARTH_API void rethrowJsonFault(const std::string& name);

} // namespace Earth
