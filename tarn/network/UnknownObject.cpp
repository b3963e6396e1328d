#include <tarn/network/UnknownObject.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/text/TomlTable.hpp>
#include <tarn/text/TomlText.hpp>

namespace Tarn {

void keepUnknown(NetworkFile::Object& object, const toml::table& table, Faults& faults)
{
    for (const auto& [key, node] : entriesOf(table)) {
        if (key.text == "name" || key.text == "type")
            continue;
        if (nestingOf(*node) > MostNested) {
            faults.add(FaultKind::Content, placeOf(*node),
                       object.description + ": " + inQuotes(key.text) + " is nested too deeply to be written again");
            continue;
        }
        const toml::table* inner = node->as_table();
        if (!inner || inner->empty()) {
            object.kept += tomlKey(key.text) + " = " + tomlValue(*node) + '\n';
            continue;
        }
        // One line per input, as for objects of known type.
        for (const auto& [innerKey, value] : entriesOf(*inner)) {
            object.kept += tomlKey(key.text) + '.' + tomlKey(innerKey.text) + " = " + tomlValue(*value) + '\n';
            if (const auto text = value->value_exact<std::string>(); text && key.text == "set")
                object.texts.push_back({innerKey, {*text, placeOf(*value)}});
        }
    }
}

} // namespace Tarn
