#include <tarn/text/TomlTable.hpp>

#include <tarn/text/DeepTomlKeys.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/TomlText.hpp>
#include <tarn/text/Utf8.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace Tarn {

namespace {

std::string padded(std::uint64_t number, std::size_t digits)
{
    const std::string text = std::to_string(number);
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

std::string spelled(const toml::date& date)
{
    return padded(date.year, 4) + '-' + padded(date.month, 2) + '-' + padded(date.day, 2);
}

std::string spelled(const toml::time& time)
{
    std::string text = padded(time.hour, 2) + ':' + padded(time.minute, 2) + ':' + padded(time.second, 2);
    if (time.nanosecond != 0) {
        text += '.' + padded(time.nanosecond, 9);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text;
}

std::string spelled(const toml::date_time& dateTime)
{
    std::string text = spelled(dateTime.date) + 'T' + spelled(dateTime.time);
    if (dateTime.offset) {
        const int minutes = dateTime.offset->minutes;
        const auto size = static_cast<std::uint64_t>(std::abs(minutes));
        text += minutes == 0 ? "Z" : (minutes < 0 ? '-' : '+') + padded(size / 60, 2) + ':' + padded(size % 60, 2);
    }
    return text;
}

} // namespace

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
    if (const std::size_t invalid = findInvalidUtf8(text); invalid != std::string_view::npos) {
        faults.add(placeAt(text, invalid), "invalid UTF-8 from here on");
        return std::nullopt;
    }
    if (const Place deep = findDeepKey(text)) {
        faults.add(deep, "a key of more than " + std::to_string(MaximalKeyParts) + " parts");
        return std::nullopt;
    }
    try {
        return toml::parse(text);
    } catch (const toml::parse_error& error) {
        faults.add(placeOf(error.source()), printable(error.description()));
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
    for (const auto& [key, value] : table)
        entries.push_back({{std::string(key.str()), placeOf(key.source())}, &value});
    std::ranges::stable_sort(entries, {}, [](const TomlEntry& entry) { return entry.key.place; });
    return entries;
}

std::string tomlValue(const toml::node& node)
{
    if (const auto* table = node.as_table()) {
        std::string text;
        for (const auto& [key, value] : entriesOf(*table))
            text += (text.empty() ? " " : ", ") + tomlKey(key.text) + " = " + tomlValue(*value);
        return '{' + text + (text.empty() ? "}" : " }");
    }
    if (const auto* array = node.as_array()) {
        std::string text;
        for (const toml::node& element : *array)
            text += (text.empty() ? "" : ", ") + tomlValue(element);
        return '[' + text + ']';
    }
    if (const auto* text = node.as_string())
        return tomlString(text->get());
    if (const auto* integer = node.as_integer())
        return std::to_string(integer->get());
    if (const auto* number = node.as_floating_point())
        return tomlNumber(number->get());
    if (const auto* truth = node.as_boolean())
        return truth->get() ? "true" : "false";
    if (const auto* date = node.as_date())
        return spelled(date->get());
    if (const auto* time = node.as_time())
        return spelled(time->get());
    return spelled(node.as_date_time()->get());
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
