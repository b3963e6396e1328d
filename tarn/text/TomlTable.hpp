#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/text/PlacedText.hpp>

#include <toml++/toml.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Access to parsed TOML in file order.

namespace Tarn {

Place placeOf(const toml::source_region& source) noexcept;
Place placeOf(const toml::node& node) noexcept;

/// Parses \p text. Returns nothing, and adds one fault with its place, if it is not UTF-8, not
/// TOML, or has a key of more parts than `MaximalKeyParts`.
std::optional<toml::table> parseToml(std::string_view text, Faults& faults);

/// Returns how messages name the type of \p node, such as "an integer".
const char* kindOf(const toml::node& node);

struct TomlEntry {
    PlacedText key;
    const toml::node* value;
};

/// Returns the entries of \p table in file order; the table itself sorts them by key.
std::vector<TomlEntry> entriesOf(const toml::table& table);

/// Returns the nesting depth of tables and arrays; 0 for a plain value.
std::size_t nestingOf(const toml::node& node);

} // namespace Tarn
