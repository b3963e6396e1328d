#include <tarn/run/EventScript.hpp>

#include <tarn/text/Utf8.hpp>
#include <tarn/text/Messages.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>
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

constexpr const char* KeyKinds[] = {"key", "keydown", "keyup"};

constexpr Named<std::uint16_t> Buttons[] = {{"left", 1}, {"middle", 2}, {"right", 3}};

constexpr Named<std::uint8_t> Modifiers[] = {
    {"shift", VInteractionEvent::Shift},
    {"control", VInteractionEvent::Control},
    {"alt", VInteractionEvent::Alt},
};

constexpr Named<const char*> Keys[] = {
    {"space", " "}, {"tab", "\t"}, {"enter", "\r"}, {"escape", "\x1b"}, {"hash", "#"}};

template<class Value, std::size_t Size>
std::optional<Value> find(const Named<Value> (&all)[Size], std::string_view name)
{
    for (const Named<Value>& each : all) {
        if (name == each.name)
            return each.value;
    }
    return std::nullopt;
}

struct Word {
    std::string_view text;
    Place place;
};

bool isBlank(char letter) noexcept
{
    return letter == ' ' || letter == '\t' || letter == '\r';
}

class LineReader {
public:
    LineReader(std::string_view line, std::uint32_t number, Faults& faults) : m_faults{faults}
    {
        std::size_t at = 0;
        while (at < line.size() && line[at] != '#') {
            if (isBlank(line[at])) {
                ++at;
                continue;
            }
            const std::size_t start = at;
            while (at < line.size() && !isBlank(line[at]) && line[at] != '#')
                ++at;
            m_words.push_back({line.substr(start, at - start), {number, placeAt(line, start).column}});
        }
        m_end = {number, placeAt(line, at).column};
    }

    bool empty() const noexcept { return m_words.empty(); }

    void read(std::vector<ScriptedEvent>& events)
    {
        ScriptedEvent event;
        event.place = m_words[0].place;
        if (!readNumber(event.step, "the number of a step"))
            return;
        if (!events.empty() && event.step < events.back().step) {
            m_faults.add(event.place, "step " + std::to_string(event.step) + " comes after step "
                                          + std::to_string(events.back().step) + "; steps must not decrease");
            return;
        }
        const Word kind = next();
        if (const auto pointer = find(PointerKinds, kind.text)) {
            event.kind = *pointer;
            if (readPointer(event))
                events.push_back(event);
        } else if (kind.text == KeyKinds[0] || kind.text == KeyKinds[1] || kind.text == KeyKinds[2]) {
            readKey(event, kind.text, events);
        } else {
            refuse(kind, "press, move, release, wheel, key, keydown or keyup");
        }
    }

private:
    Word next() { return m_next < m_words.size() ? m_words[m_next++] : Word{{}, m_end}; }

    bool refuse(const Word& word, const std::string& expected)
    {
        m_faults.add(word.place, (word.text.empty() ? "found the end of the line" : "found " + inQuotes(word.text))
                                     + ", expected " + expected);
        return false;
    }

    template<class Number>
    bool readNumber(Number& number, const char* expected)
    {
        const Word word = next();
        const char* const end = word.text.data() + word.text.size();
        const auto [stop, error] = std::from_chars(word.text.data(), end, number);
        if (error == std::errc{} && stop == end && !word.text.empty() && std::isfinite(static_cast<double>(number)))
            return true;
        return refuse(word, expected);
    }

    bool readPointer(ScriptedEvent& event)
    {
        if (!readNumber(event.x, "a whole number of pixels from the left")
            || !readNumber(event.y, "a whole number of pixels from the top"))
            return false;
        if (event.kind == VInteractionEvent::Wheel && !readNumber(event.wheel, "the turns of the wheel"))
            return false;
        const bool hasButton = event.kind != VInteractionEvent::Wheel;
        if (event.kind == VInteractionEvent::Press || event.kind == VInteractionEvent::Release)
            event.button = 1;
        if (hasButton && m_next < m_words.size()) {
            if (const auto button = find(Buttons, m_words[m_next].text)) {
                event.button = *button;
                ++m_next;
            }
        }
        return readModifiers(event, hasButton ? "left, middle, right, or keys such as shift+control"
                                              : "keys such as shift+control")
               && expectEnd();
    }

    bool readModifiers(ScriptedEvent& event, const char* expected)
    {
        if (m_next == m_words.size())
            return true;
        const Word word = next();
        std::string_view rest = word.text;
        while (true) {
            const auto plus = rest.find('+');
            const auto modifier = find(Modifiers, rest.substr(0, plus));
            if (!modifier)
                return refuse(word, expected);
            event.modifiers = static_cast<std::uint8_t>(event.modifiers | *modifier);
            if (plus == std::string_view::npos)
                return true;
            rest.remove_prefix(plus + 1);
        }
    }

    bool expectEnd() { return m_next == m_words.size() || refuse(next(), "the end of the line"); }

    void readKey(ScriptedEvent& event, std::string_view kind, std::vector<ScriptedEvent>& events)
    {
        const Word word = next();
        std::string key;
        if (const auto named = find(Keys, word.text))
            key = *named;
        else if (countCharacters(word.text) == 1)
            key = word.text;
        else {
            refuse(word, "one character, or space, tab, enter, escape or hash");
            return;
        }
        if (!readModifiers(event, "keys such as shift+control") || !expectEnd())
            return;
        if (kind != "keyup") {
            event.kind = VInteractionEvent::KeyPress;
            event.keyText = key;
            events.push_back(event);
        }
        if (kind != "keydown") {
            event.kind = VInteractionEvent::KeyRelease;
            event.keyText.clear();
            event.armingKeyText = key;
            events.push_back(event);
        }
    }

    Faults& m_faults;
    std::vector<Word> m_words;
    std::size_t m_next = 0;
    Place m_end;
};

} // namespace

std::vector<ScriptedEvent> parseEvents(std::string_view text, Faults& faults)
{
    std::vector<ScriptedEvent> events;
    if (const std::size_t invalid = findInvalidUtf8(text); invalid != std::string_view::npos) {
        faults.add(placeAt(text, invalid), "invalid UTF-8 from here on");
        return events;
    }
    for (std::uint32_t number = 1; !text.empty(); ++number) {
        const auto end = text.find('\n');
        LineReader line{text.substr(0, end), number, faults};
        if (!line.empty())
            line.read(events);
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    return events;
}

} // namespace Tarn
