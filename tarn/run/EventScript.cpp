#include <tarn/run/EventScript.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/text/TomlTable.hpp>
#include <tarn/text/TomlText.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace Tarn {

namespace {

using Orla::VInteractionEvent;

template<class Value>
struct Named {
    const char* name;
    Value value;
};

constexpr Named<VInteractionEvent::Kind> PointerKinds[] = {
    {"press", VInteractionEvent::Press},
    {"move", VInteractionEvent::Move},
    {"release", VInteractionEvent::Release},
    {"wheel", VInteractionEvent::Wheel},
};

constexpr Named<std::uint16_t> Buttons[] = {{"left", 1}, {"middle", 2}, {"right", 3}};

constexpr Named<std::uint8_t> Modifiers[] = {
    {"shift", VInteractionEvent::Shift},
    {"control", VInteractionEvent::Control},
    {"alt", VInteractionEvent::Alt},
};

constexpr Named<const char*> Keys[] = {{"space", " "}, {"tab", "\t"}, {"enter", "\r"}, {"escape", "\x1b"}};

template<class Value, std::size_t Size>
std::optional<Value> find(const Named<Value> (&all)[Size], std::string_view name)
{
    const auto found =
        std::ranges::find(all, name, [](const Named<Value>& each) { return std::string_view(each.name); });
    return found == std::end(all) ? std::nullopt : std::optional(found->value);
}

// Reads one table [[event]]. Each fault is reported; an event with faults is dropped.
class EventReader {
public:
    EventReader(const toml::table& table, Faults& faults) : m_table{table}, m_faults{faults} {}

    void read(std::vector<ScriptedEvent>& events)
    {
        const std::size_t faultsBefore = m_faults.size();
        ScriptedEvent event;
        event.place = placeOf(m_table);
        readInteger("step", event.step, "the number of a step");
        const char* const kinds = "press, move, release, wheel, key, keydown or keyup";
        const std::string kind = readText("kind", kinds);
        if (const auto pointer = find(PointerKinds, kind)) {
            event.kind = *pointer;
            readPointer(event);
        } else if (kind == "key" || kind == "keydown" || kind == "keyup") {
            readKey(event);
        } else {
            if (!kind.empty())
                refuse("kind", kinds);
            return;
        }
        readModifiers(event);
        refuseOtherKeys(kind);
        if (m_faults.size() != faultsBefore)
            return;
        if (!events.empty() && event.step < events.back().step) {
            refuse("step", std::to_string(events.back().step) + " or more, because events are in the order of steps");
            return;
        }
        append(event, kind, events);
    }

private:
    void refuse(const char* key, const std::string& expected)
    {
        const toml::node* const node = m_table.get(key);
        if (node)
            m_faults.add(FaultKind::Event, placeOf(*node),
                         std::string(key) + " is " + printable(tomlValue(*node)) + ", expected " + expected);
        else
            m_faults.add(FaultKind::Event, placeOf(m_table),
                         std::string("missing key \"") + key + "\", expected " + expected);
    }

    const toml::node* take(const char* key)
    {
        m_known.push_back(key);
        return m_table.get(key);
    }

    template<class Integer>
    void readInteger(const char* key, Integer& number, const char* expected)
    {
        const toml::node* const node = take(key);
        const auto integer = node ? node->value_exact<std::int64_t>() : std::nullopt;
        if (integer && std::in_range<Integer>(*integer))
            number = static_cast<Integer>(*integer);
        else
            refuse(key, expected);
    }

    std::string readText(const char* key, const char* expected)
    {
        const toml::node* const node = take(key);
        const auto text = node ? node->value_exact<std::string>() : std::nullopt;
        if (!text || text->empty())
            refuse(key, expected);
        return text.value_or("");
    }

    void readPointer(ScriptedEvent& event)
    {
        readInteger("x", event.x, "a whole number of pixels from the left");
        readInteger("y", event.y, "a whole number of pixels from the top");
        if (event.kind == VInteractionEvent::Wheel) {
            const toml::node* const node = take("wheel");
            const auto turns = node && node->is_number() ? node->value<double>() : std::nullopt;
            if (turns && std::isfinite(*turns))
                event.wheel = *turns;
            else
                refuse("wheel", "a number of turns");
            return;
        }
        if (event.kind != VInteractionEvent::Move)
            event.button = 1;
        if (!take("button"))
            return;
        const char* const expected = "left, middle or right";
        const std::string name = readText("button", expected);
        if (const auto button = find(Buttons, name))
            event.button = *button;
        else if (!name.empty())
            refuse("button", expected);
    }

    void readKey(ScriptedEvent& event)
    {
        const char* const expected = "one character, or space, tab, enter or escape";
        const std::string key = readText("key", expected);
        if (const auto named = find(Keys, key))
            event.keyText = *named;
        else if (Loam::countCharacters(key) == 1)
            event.keyText = key;
        else if (!key.empty())
            refuse("key", expected);
    }

    void readModifiers(ScriptedEvent& event)
    {
        const toml::node* const node = take("modifiers");
        if (!node)
            return;
        const toml::array* const names = node->as_array();
        if (!names) {
            refuse("modifiers", "a list such as [\"shift\", \"control\"]");
            return;
        }
        for (const toml::node& name : *names) {
            if (const auto modifier = find(Modifiers, name.value_exact<std::string>().value_or("")))
                event.modifiers = static_cast<std::uint8_t>(event.modifiers | *modifier);
            else
                m_faults.add(FaultKind::Event, placeOf(name),
                             "found " + printable(tomlValue(name)) + ", expected shift, control or alt");
        }
    }

    void refuseOtherKeys(const std::string& kind)
    {
        for (const auto& [key, node] : entriesOf(m_table)) {
            if (std::ranges::find(m_known, key.text) == m_known.end())
                m_faults.add(FaultKind::Event, key.place,
                             "unknown key " + inQuotes(key.text) + " of an event of kind \"" + kind + "\""
                                 + insteadOf(key.text, m_known));
        }
    }

    static void append(ScriptedEvent& event, const std::string& kind, std::vector<ScriptedEvent>& events)
    {
        if (event.keyText.empty()) {
            events.push_back(event);
            return;
        }
        if (kind != "keyup") {
            event.kind = VInteractionEvent::KeyPress;
            events.push_back(event);
        }
        if (kind != "keydown") {
            event.kind = VInteractionEvent::KeyRelease;
            event.armingKeyText = std::exchange(event.keyText, {});
            events.push_back(event);
        }
    }

    const toml::table& m_table;
    Faults& m_faults;
    std::vector<std::string> m_known; // keys that an event of this kind may have
};

} // namespace

std::vector<ScriptedEvent> parseEvents(std::string_view text, Faults& faults)
{
    std::vector<ScriptedEvent> events;
    const std::optional<toml::table> root = parseToml(text, faults);
    if (!root)
        return events;
    for (const auto& [key, node] : entriesOf(*root)) {
        if (key.text != "event") {
            faults.add(FaultKind::Event, key.place,
                       "unknown key " + inQuotes(key.text) + ", expected tables under the header [[event]]");
            continue;
        }
        const toml::array* const tables = node->as_array();
        if (!tables) {
            faults.add(FaultKind::Event, placeOf(*node),
                       std::string("event is ") + kindOf(*node) + ", expected tables under the header [[event]]");
            continue;
        }
        for (const toml::node& element : *tables) {
            if (const toml::table* const table = element.as_table())
                EventReader(*table, faults).read(events);
            else
                faults.add(FaultKind::Event, placeOf(element),
                           std::string("event holds ") + kindOf(element)
                               + ", expected tables under the header [[event]]");
        }
    }
    return events;
}

} // namespace Tarn
