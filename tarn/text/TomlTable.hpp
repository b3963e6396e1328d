#pragma once

#include <tarn/text/Faults.hpp>

#include <toml++/toml.h>

#include <cstddef>
#include <string>
#include <vector>

// What was read from TOML, in the order of the file.

namespace Tarn {

Place placeOf(const toml::source_region& source) noexcept;
Place placeOf(const toml::node& node) noexcept;

struct TomlEntry {
    PlacedText key;
    const toml::node* value;
};

/// The entries of \p table in the order of the file; the table itself has them
/// sorted by key.
std::vector<TomlEntry> entriesOf(const toml::table& table);

/// The value \p node as TOML, on one line.
std::string tomlValue(const toml::node& node);

/// How many tables and arrays stand in each other; 0 for a plain value.
std::size_t nestingOf(const toml::node& node);

/// Nested deeper, the reader does not take what `tomlValue` spells.
inline constexpr std::size_t MostNested = 200;

} // namespace Tarn
