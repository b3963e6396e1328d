#include "Catalogue.hpp"

#include <fathom/Chunk.hpp>
#include <fathom/VComponent.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace Quakes {

namespace {

bool isEarlier(const Quake& a, const Quake& b) noexcept
{
    return a.time < b.time;
}

[[maybe_unused]] bool isFinite(const Quake& quake) noexcept
{
    return std::isfinite(quake.time) && std::isfinite(quake.longitude) && std::isfinite(quake.latitude)
           && std::isfinite(quake.depth.value_or(0)) && std::isfinite(quake.magnitude.value_or(0));
}

} // namespace

Catalogue::Catalogue(std::vector<Quake> events) : m_size{events.size()}
{
    assert(std::all_of(events.begin(), events.end(), isFinite));
    if (!std::is_sorted(events.begin(), events.end(), isEarlier))
        std::stable_sort(events.begin(), events.end(), isEarlier);
    m_events = std::make_shared<const std::vector<Quake>>(std::move(events));
}

Catalogue Catalogue::until(double time) const noexcept
{
    std::size_t first = 0;
    std::size_t last = m_size;
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        if ((*this)[middle].time <= time)
            first = middle + 1;
        else
            last = middle;
    }
    Catalogue result = *this;
    result.m_size = first;
    return result;
}

Catalogue Catalogue::withMagnitude(const Orla::Range& range) const
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (range == Orla::Range{-infinity, infinity})
        return *this;
    return where([&range](const Quake& quake) {
        return quake.magnitude && range.begin <= *quake.magnitude && *quake.magnitude <= range.end;
    });
}

Catalogue Catalogue::withSelection(std::vector<const Quake*> selection) const
{
    Catalogue result = *this;
    result.m_size = selection.size();
    result.m_selection = std::make_shared<const std::vector<const Quake*>>(std::move(selection));
    return result;
}

bool operator==(const Catalogue& a, const Catalogue& b) noexcept
{
    if (a.m_size != b.m_size)
        return false;
    if (a.m_events == b.m_events && a.m_selection == b.m_selection)
        return true;
    for (std::size_t i = 0; i < a.m_size; ++i) {
        if (&a[i] != &b[i] && !(a[i] == b[i]))
            return false;
    }
    return true;
}

namespace {

void write(std::string& text, double number)
{
    char buffer[Loam::numberTextSize];
    text.append(buffer, Loam::writeNumber(buffer, buffer + sizeof buffer, number));
}

void write(std::string& text, const std::optional<double>& number)
{
    if (number)
        write(text, *number);
}

void write(std::string& text, const std::string& part)
{
    if (part.find_first_of(",\"\r\n") == std::string::npos) {
        text += part;
        return;
    }
    text += '"';
    for (const char c : part) {
        if (c == '"')
            text += '"';
        text += c;
    }
    text += '"';
}

// Reads events from the front of a catalogue's text. Each function returns false if
// the text is invalid.
class Reader {
public:
    explicit Reader(std::string_view text) : m_rest{text} {}

    bool atEnd() const { return m_rest.empty(); }

    bool read(Quake& quake)
    {
        return read(quake.time) && separator() && read(quake.longitude) && separator() && read(quake.latitude)
               && separator() && read(quake.depth) && separator() && read(quake.magnitude) && separator()
               && read(quake.magnitudeType) && separator() && read(quake.net) && separator() && read(quake.id)
               && separator() && read(quake.place) && separator() && read(quake.type) && separator() && read(quake.url)
               && lineEnd();
    }

private:
    bool skip(std::string_view expected)
    {
        if (!m_rest.starts_with(expected))
            return false;
        m_rest.remove_prefix(expected.size());
        return true;
    }

    bool separator() { return skip(","); }

    bool lineEnd() { return skip("\n") || skip("\r\n") || atEnd(); }

    bool read(std::string& part)
    {
        part.clear();
        if (!skip("\"")) {
            const auto length = std::min(m_rest.find_first_of(",\"\r\n"), m_rest.size());
            part = m_rest.substr(0, length);
            m_rest.remove_prefix(length);
            return true;
        }
        do {
            const auto quote = m_rest.find('"');
            if (quote == std::string_view::npos)
                return false;
            // A doubled quote is a quote in the text.
            const bool isDoubled = m_rest.substr(quote + 1).starts_with('"');
            part += m_rest.substr(0, quote + (isDoubled ? 1 : 0));
            m_rest.remove_prefix(quote + 1);
        } while (skip("\""));
        return true;
    }

    bool read(std::optional<double>& number) { return read(m_part) && (m_part.empty() || parse(number.emplace())); }

    bool read(double& number) { return read(m_part) && parse(number); }

    bool parse(double& number) const
    {
        const char* const end = m_part.data() + m_part.size();
        return Loam::readNumber(m_part.data(), end, number) == end && std::isfinite(number);
    }

    std::string_view m_rest;
    std::string m_part;
};

} // namespace

} // namespace Quakes

std::string Orla::VValueTrait<Quakes::Catalogue>::Text(const Quakes::Catalogue& catalogue)
{
    std::string text;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const Quakes::Quake& quake = catalogue[i];
        Quakes::write(text, quake.time);
        Quakes::write(text += ',', quake.longitude);
        Quakes::write(text += ',', quake.latitude);
        Quakes::write(text += ',', quake.depth);
        Quakes::write(text += ',', quake.magnitude);
        Quakes::write(text += ',', quake.magnitudeType);
        Quakes::write(text += ',', quake.net);
        Quakes::write(text += ',', quake.id);
        Quakes::write(text += ',', quake.place);
        Quakes::write(text += ',', quake.type);
        Quakes::write(text += ',', quake.url);
        text += '\n';
    }
    return text;
}

bool Orla::VValueTrait<Quakes::Catalogue>::setValueFromText(Quakes::Catalogue& catalogue, const std::string& text)
{
    std::vector<Quakes::Quake> events;
    Quakes::Reader reader{text};
    while (!reader.atEnd()) {
        if (!reader.read(events.emplace_back()))
            return false;
    }
    catalogue = Quakes::Catalogue{std::move(events)};
    return true;
}

namespace {

using Quakes::Catalogue;
using Quakes::Quake;
using Numbers = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;

// Returns one number per event, NaN where it is unknown.
template<auto Part>
Numbers numbers(const Catalogue& catalogue)
{
    const Numbers numbers = Loam::TypedChunk<double>::createNewChunk(catalogue.size(), false);
    for (std::size_t i = 0; i < catalogue.size(); ++i)
        (*numbers)[i] = std::optional<double>{catalogue[i].*Part}.value_or(std::numeric_limits<double>::quiet_NaN());
    return numbers;
}

const Orla::VValueType<Catalogue> catalogueType{"earthquake catalogue"};

// Connections can pick these, and they are attributes in Python.
const Orla::VValueComponents catalogueParts{
    typeid(Catalogue),
    {Orla::component<&Catalogue::size>("count"), Orla::component<numbers<&Quake::time>>("times"),
     Orla::component<numbers<&Quake::longitude>>("longitudes"), Orla::component<numbers<&Quake::latitude>>("latitudes"),
     Orla::component<numbers<&Quake::depth>>("depths"), Orla::component<numbers<&Quake::magnitude>>("magnitudes")}};

// Sets the colour of connections that carry a catalogue.
const bool hasColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Quakes::Catalogue), "#D35400");
    return true;
}();

} // namespace
