#include <tarn/network/NetworkDifferences.hpp>

#include <tarn/network/NetworkContent.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Tarn {

namespace {

using Side = NetworkDifference::Side;
using Content = NetworkContent;
using OptionalSide = std::optional<Side>;

Side nameSide(const PlacedText& name)
{
    return {.place = name.place, .texts = {name.text}, .reads = {}};
}

std::string referenceOf(const Content::Source& source)
{
    return source.object.empty() ? source.output : source.object + '.' + source.output;
}

// The objects of both networks, and which of them are the same.
class Pairs {
public:
    Pairs(const Content& before, const Content& after)
    {
        for (const Content::Object& object : after.objects)
            m_after.emplace(object.name.text, &object);
        for (const Content::Object& object : before.objects) {
            if (const auto same = m_after.find(object.name.text); same != m_after.end())
                join(object, *same->second);
        }
        joinRenamed(before, after);
    }

    bool isRemoved(const Content::Object& object) const { return !m_newNames.contains(object.name.text); }

    // Returns the object of the first network that became `object`; null if it was added.
    const Content::Object* origin(const Content::Object& object) const
    {
        const auto found = m_origins.find(object.name.text);
        return found == m_origins.end() ? nullptr : found->second;
    }

    // Returns a source in the first network as the second network names it.
    Content::Source renamed(Content::Source source) const
    {
        if (const auto found = m_newNames.find(source.object); found != m_newNames.end())
            source.object = found->second;
        return source;
    }

private:
    void join(const Content::Object& before, const Content::Object& after)
    {
        m_newNames.emplace(before.name.text, after.name.text);
        m_origins.emplace(after.name.text, &before);
    }

    // Objects that read renamed ones are recognised too: of what they read, only the names of
    // objects with the same name in both networks count.
    void joinRenamed(const Content& before, const Content& after)
    {
        std::map<std::string, std::vector<const Content::Object*>> added; // by signature
        for (const Content::Object& object : after.objects) {
            if (!origin(object))
                added[signatureOf(object)].push_back(&object);
        }
        std::vector<std::pair<std::string, const Content::Object*>> removed;
        for (const Content::Object& object : before.objects) {
            if (isRemoved(object))
                removed.emplace_back(signatureOf(object), &object);
        }
        std::map<std::string_view, std::size_t> used;
        for (const auto& [signature, object] : removed) {
            const auto candidates = added.find(signature);
            if (std::size_t& next = used[signature]; candidates != added.end() && next < candidates->second.size())
                join(*object, *candidates->second[next++]);
        }
    }

    std::string signatureOf(const Content::Object& object) const
    {
        std::string signature = object.type;
        const auto add = [&signature](const std::string& piece) {
            signature += '\0' + std::to_string(piece.size()) + ' ' + piece;
        };
        for (const auto& [name, input] : object.inputs) {
            add(name);
            if (input.connected) {
                add("reads");
                add(input.connected->output);
                add(m_newNames.contains(input.connected->object) ? input.connected->object : "");
            } else {
                add(std::to_string(input.texts.size()));
                for (const std::string& text : input.texts)
                    add(text);
            }
        }
        return signature;
    }

    std::unordered_map<std::string_view, const Content::Object*> m_after; // by name
    std::unordered_map<std::string, std::string> m_newNames;              // of objects in both
    std::unordered_map<std::string, const Content::Object*> m_origins;    // by the new name
};

class Comparison {
    using Kind = NetworkDifference::Kind;

public:
    Comparison(const Content& before, const Content& after)
        : m_before{before}, m_after{after}, m_pairs{before, after}, m_hasFound{before.isComplete && after.isComplete}
    {
        for (const Content::Object& object : before.objects) {
            if (m_pairs.isRemoved(object))
                m_removed.insert(object.name.text);
        }
        for (const Content::Object& object : after.objects) {
            if (!m_pairs.origin(object))
                m_added.insert(object.name.text);
        }
    }

    std::vector<NetworkDifference> perform()
    {
        compareLibraries();
        compareCharts();
        compareTimes();
        for (const Content::Object& object : m_before.objects) {
            if (m_pairs.isRemoved(object))
                add({Kind::Object, object.name.text, {}, typeOf(object), {}, object.name.place});
        }
        for (const Content::Object& object : m_after.objects) {
            if (const Content::Object* const origin = m_pairs.origin(object))
                compareObjects(*origin, object);
            else
                add({Kind::Object, object.name.text, {}, {}, typeOf(object), object.name.place});
        }
        compareColumns();
        return std::move(m_differences);
    }

private:
    void add(NetworkDifference difference) { m_differences.push_back(std::move(difference)); }

    void compareLibraries()
    {
        const auto addMissing = [this](const std::vector<PlacedText>& from, const std::vector<PlacedText>& in,
                                       bool isBefore) {
            std::set<std::string_view> known;
            for (const PlacedText& name : in)
                known.insert(name.text);
            for (const PlacedText& name : from) {
                if (!known.insert(name.text).second)
                    continue;
                const OptionalSide side = nameSide(name);
                add({Kind::Library, {}, {}, isBefore ? side : OptionalSide{}, isBefore ? OptionalSide{} : side, {}});
            }
        };
        addMissing(m_before.libraries, m_after.libraries, true);
        addMissing(m_after.libraries, m_before.libraries, false);
    }

    void compareCharts()
    {
        const PlacedText& before = m_before.chart;
        const PlacedText& after = m_after.chart;
        if (before.text != after.text)
            add({Kind::Chart,
                 {},
                 {},
                 before.place ? nameSide(before) : OptionalSide{},
                 after.place ? nameSide(after) : OptionalSide{},
                 {}});
    }

    void compareTimes()
    {
        const std::string& before = m_before.timeProvider;
        const std::string& after = m_after.timeProvider;
        // Of a provider that was added or removed, the time is a consequence.
        if (!m_hasFound || before.empty() || after.empty() || m_removed.contains(before) || m_added.contains(after)
            || m_pairs.renamed({before, {}}).object == after)
            return;
        add({Kind::Time, {}, {}, nameSide({before, {}}), nameSide({after, {}}), {}});
    }

    static Side typeOf(const Content::Object& object)
    {
        return {.place = object.name.place, .texts = {object.type}, .reads = {}};
    }

    void compareObjects(const Content::Object& before, const Content::Object& after)
    {
        const std::string& name = before.name.text;
        if (name != after.name.text)
            add({Kind::Name, name, {}, nameSide(before.name), nameSide(after.name), after.name.place});
        if (before.type != after.type || before.isKnown != after.isKnown)
            add({Kind::Object, name, {}, typeOf(before), typeOf(after), after.name.place});
        // The inputs of a known object and the entries of an unknown one cannot be compared.
        if (before.isKnown != after.isKnown)
            return;
        std::set<std::string> inputs;
        for (const Content::Object* const object : {&before, &after}) {
            for (const auto& [input, content] : object->inputs)
                inputs.insert(input);
        }
        for (const std::string& input : inputs)
            compareInputs(before, after, input);
    }

    // An input, or null if it is neither set nor connected.
    static const Content::Input* inputOf(const Content::Object& object, const std::string& name)
    {
        const auto found = object.inputs.find(name);
        return found == object.inputs.end() ? nullptr : &found->second;
    }

    const Content::Source* sourceOf(const Content::Input* input) const
    {
        if (input && input->connected)
            return &*input->connected;
        return input && input->found && m_hasFound ? &*input->found : nullptr;
    }

    OptionalSide sideOf(const Content::Input* input) const
    {
        const Content::Source* const source = sourceOf(input);
        if (source)
            return Side{.place = input->connected ? input->place : Place{},
                        .texts = {},
                        .reads = referenceOf(*source),
                        .isAutomatic = !input->connected};
        if (!input || input->texts.empty())
            return std::nullopt;
        return Side{.place = input->place, .texts = input->texts, .reads = {}};
    }

    void compareInputs(const Content::Object& before, const Content::Object& after, const std::string& name)
    {
        const Content::Input* const was = inputOf(before, name);
        const Content::Input* const is = inputOf(after, name);
        OptionalSide wasSide = sideOf(was);
        OptionalSide isSide = sideOf(is);
        const Content::Source* const wasSource = sourceOf(was);
        const Content::Source* const isSource = sourceOf(is);
        if (wasSource && isSource) {
            if (m_pairs.renamed(*wasSource) == *isSource)
                return;
            const bool isAutomatic = wasSide->isAutomatic || isSide->isAutomatic;
            if (isAutomatic && (m_removed.contains(wasSource->object) || m_added.contains(isSource->object)))
                return;
        } else if (!wasSource && !isSource) {
            if ((wasSide ? wasSide->texts : std::vector<std::string>{})
                == (isSide ? isSide->texts : std::vector<std::string>{}))
                return;
        }
        add({after.isKnown ? Kind::Input : Kind::Entry, before.name.text, name, std::move(wasSide), std::move(isSide),
             after.name.place});
    }

    // Titles may be used several times: the number distinguishes them.
    using Titles = std::map<std::pair<std::string, std::size_t>, std::size_t>;

    static Titles titlesOf(const std::vector<Content::Column>& columns)
    {
        std::map<std::string_view, std::size_t> uses;
        Titles titles;
        for (std::size_t number = 0; number < columns.size(); ++number) {
            const std::string& title = columns[number].title.text;
            titles.emplace(std::pair{title, uses[title]++}, number);
        }
        return titles;
    }

    static Side sideOf(const Content::Column& column)
    {
        return {.place = column.title.place, .texts = {}, .reads = referenceOf(column.source)};
    }

    void compareColumns()
    {
        const Titles before = titlesOf(m_before.columns);
        const Titles after = titlesOf(m_after.columns);
        std::vector<std::pair<std::size_t, std::size_t>> common; // the numbers of columns in both
        std::set<std::size_t> kept;
        for (const auto& [title, number] : before) {
            const auto same = after.find(title);
            if (same != after.end()) {
                common.emplace_back(number, same->second);
                kept.insert(number);
            }
        }
        for (std::size_t number = 0; number < m_before.columns.size(); ++number) {
            if (!kept.contains(number))
                addColumn(&m_before.columns[number], nullptr);
        }
        std::ranges::sort(common);
        std::map<std::size_t, std::size_t> origins;
        for (const auto& [was, is] : common)
            origins.emplace(is, was);
        for (std::size_t number = 0; number < m_after.columns.size(); ++number) {
            const Content::Column& column = m_after.columns[number];
            const auto origin = origins.find(number);
            if (origin == origins.end())
                addColumn(nullptr, &column);
            else if (m_pairs.renamed(m_before.columns[origin->second].source) != column.source)
                addColumn(&m_before.columns[origin->second], &column);
        }
        if (!std::ranges::is_sorted(common, {}, &std::pair<std::size_t, std::size_t>::second))
            addColumnOrder(common);
    }

    void addColumn(const Content::Column* before, const Content::Column* after)
    {
        const std::string& title = (before ? before : after)->title.text;
        add({Kind::Column,
             {},
             title,
             before ? sideOf(*before) : OptionalSide{},
             after ? sideOf(*after) : OptionalSide{},
             {}});
    }

    void addColumnOrder(std::vector<std::pair<std::size_t, std::size_t>> common)
    {
        Side before;
        for (const auto& [was, is] : common)
            before.texts.push_back(m_before.columns[was].title.text);
        std::ranges::sort(common, {}, &std::pair<std::size_t, std::size_t>::second);
        Side after{.place = m_after.columns[common.front().second].title.place, .texts = {}, .reads = {}};
        for (const auto& [was, is] : common)
            after.texts.push_back(m_after.columns[is].title.text);
        before.place = m_before.columns[common.front().first].title.place;
        add({Kind::ColumnOrder, {}, {}, std::move(before), std::move(after), {}});
    }

    const Content& m_before;
    const Content& m_after;
    const Pairs m_pairs;
    const bool m_hasFound; // automatic connections are known in both
    std::set<std::string_view> m_removed;
    std::set<std::string_view> m_added;
    std::vector<NetworkDifference> m_differences;
};

} // namespace

std::vector<NetworkDifference> differencesBetween(const NetworkContent& before, const NetworkContent& after)
{
    return Comparison{before, after}.perform();
}

} // namespace Tarn
