#pragma once

#include <earth/Export.hpp>

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <fstream>
#include <functional>
#include <streambuf>
#include <string>
#include <vector>

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

/// Called after each block with the fraction of a file that was read, 0 if the size of the
/// file is unknown; returns true to continue.
using ReadingProgress = std::function<bool(double fraction)>;

/// Thrown if a `ReadingProgress` returned false.
struct EARTH_API ReadingStopped {};

/// Reads a file in blocks. A stream on it throws `ReadingStopped`, and std::runtime_error if
/// the file is larger than allowed: a device or a pipe may be endless.
class EARTH_API JsonFile final : public std::streambuf {
public:
    /// \p expected describes the kind of file: "a GeoJSON file". \p largest is the largest size
    /// allowed, in bytes.
    /// \throw std::runtime_error with the name of the file and the reason if it cannot be opened.
    JsonFile(const std::string& file, const std::string& expected, std::uint64_t largest,
             ReadingProgress progress = {});

private:
    int_type underflow() override;

    std::string m_file;
    std::filebuf m_content;
    std::uint64_t m_largest;
    ReadingProgress m_progress;
    std::uint64_t m_size = 0; // 0 if it is unknown
    std::uint64_t m_read = 0;
    std::vector<char> m_block;
};

/// Rethrows the exception that is being handled. A `JsonFault`, an error of the JSON parser and
/// one of the stream become a std::runtime_error that begins with \p name, the name of the file.
/// The text of a parser's error omits the text read, which may be very long.
/// \pre Called in a `catch` clause.
[[noreturn]] EARTH_API void rethrowJsonFault(const std::string& name);

} // namespace Earth
