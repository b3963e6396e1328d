#pragma once

#include <toml++/toml.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Writes TOML in a single canonical form, independent of the locale.

namespace Tarn {

/// Returns \p key, in quotes only if TOML needs them.
/// \pre \p key is UTF-8.
std::string tomlKey(std::string_view key);

/// Returns \p text on one line, in double quotes. Escapes control characters, line separators
/// and direction marks.
/// \pre \p text is UTF-8.
std::string tomlString(std::string_view text);

/// Returns a spelling that reads back as the same number, never as an integer.
std::string tomlNumber(double number);

/// Returns the spelling of the number \p text. Returns nothing if \p text is not a number,
/// or if TOML would read back another number or the same one with different digits.
std::optional<std::string> tomlNumber(const std::string& text);

/// Returns the value \p node on one line. Tables keep the order of the file.
std::string tomlValue(const toml::node& node);

/// Maximum nesting depth at which the reader accepts the output of `tomlValue`.
inline constexpr std::size_t MostNested = 200;

} // namespace Tarn
