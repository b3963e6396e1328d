#pragma once

#include <optional>
#include <string>
#include <string_view>

// Spelling TOML in one way only, the same under every locale.

namespace Tarn {

/// As it stands if TOML needs no quotes around it.
/// \pre \p key is UTF-8.
std::string tomlKey(std::string_view key);

/// On one line, between double quotes.
/// \pre \p text is UTF-8.
std::string tomlString(std::string_view text);

/// So that it is read as the same number, and as no integer.
std::string tomlNumber(double number);

/// The spelling of the number \p text; nothing if \p text is no number or would be
/// read as another one, or as the same one with other digits.
std::optional<std::string> tomlNumber(const std::string& text);

} // namespace Tarn
