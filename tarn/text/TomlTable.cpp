#include <tarn/text/TomlTable.hpp>

#include <tarn/text/DeepTomlKeys.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>

namespace Tarn {

Place placeOf(const toml::source_region& source) noexcept
{
    return {source.begin.line, source.begin.column};
}

Place placeOf(const toml::node& node) noexcept
{
    return placeOf(node.source());
}

std::optional<toml::table> parseToml(std::string_view text, Faults& faults)
{
    // The TOML reader rejects it too, but reports the place less precisely.
    if (const std::size_t invalid = Loam::findInvalidUtf8(text); invalid != std::string_view::npos) {
        faults.add(FaultKind::Syntax, placeAt(text, invalid), "invalid UTF-8 from here on");
        return std::nullopt;
    }
    if (const Place deep = findDeepKey(text)) {
        faults.add(FaultKind::Syntax, deep, "a key of more than " + std::to_string(MaximalKeyParts) + " parts");
        return std::nullopt;
    }
    try {
        return toml::parse(text);
    } catch (const toml::parse_error& error) {
        faults.add(FaultKind::Syntax, placeOf(error.source()), printable(error.description()));
        return std::nullopt;
    }
}

const char* kindOf(const toml::node& node)
{
    switch (node.type()) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "an array";
    case toml::node_type::string:
        return "a text";
    case toml::node_type::integer:
        return "an integer";
    case toml::node_type::floating_point:
        return "a number";
    case toml::node_type::boolean:
        return "a truth value";
    case toml::node_type::date:
        return "a date";
    case toml::node_type::time:
        return "a time of day";
    case toml::node_type::date_time:
        return "a date with a time";
    default:
        return "nothing";
    }
}

std::vector<TomlEntry> entriesOf(const toml::table& table)
{
    std::vector<TomlEntry> entries;
    entries.reserve(table.size());
    for (const auto& [key, value] : table)
        entries.push_back({{std::string(key.str()), placeOf(key.source())}, &value});
    std::ranges::sort(entries, {}, [](const TomlEntry& entry) { return entry.key.place; });
    return entries;
}

std::size_t nestingOf(const toml::node& node)
{
    std::size_t deepest = 0;
    if (const auto* table = node.as_table()) {
        for (const auto& [key, value] : *table)
            deepest = std::max(deepest, nestingOf(value));
        return deepest + 1;
    }
    if (const auto* array = node.as_array()) {
        for (const toml::node& element : *array)
            deepest = std::max(deepest, nestingOf(element));
        return deepest + 1;
    }
    return 0;
}

} // namespace Tarn
