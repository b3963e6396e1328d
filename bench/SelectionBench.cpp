// Text forms and comparisons of the selection types, each compared with plain
// containers that give the same text or result.

#include <fathom/VEnum.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VStringList.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

using namespace Orla;

namespace {

using Strings = std::vector<std::string>;
using Single = StrongPtr<StringSelection, StringList>;
using Multiple = StrongPtr<MultipleStringSelection, StringList>;

constexpr std::size_t Count = 16;

// As long as typical field names: half of them need heap memory.
const Strings& names()
{
    static const Strings names = [] {
        Strings made;
        for (std::size_t i = 0; i < Count; ++i)
            made.push_back((i % 2 ? "pressure " : "temperature at level ") + std::to_string(i));
        return made;
    }();
    return names;
}

std::string joined(char separator)
{
    std::string text;
    for (const std::string& name : names())
        text += name + separator;
    return text;
}

template<class T>
T sample();

template<>
Enum sample()
{
    Enum made;
    for (const std::string& name : names())
        made.addCase(name);
    made.select(names()[Count / 2]);
    return made;
}

// Blanks separate flags, so flag names have none.
const Strings& flagNames()
{
    static const Strings flagNames = [] {
        Strings made = names();
        for (std::string& name : made)
            std::ranges::replace(name, ' ', '_');
        return made;
    }();
    return flagNames;
}

template<>
FlagList sample()
{
    FlagList made;
    for (std::size_t i = 0; i < Count; ++i)
        made.addFlag((i % 3 ? "+" : "-") + flagNames()[i]);
    return made;
}

template<>
Single sample()
{
    return Loam::makeStrong<StringSelection>('|', joined('|'), names()[Count / 2]);
}

template<>
Multiple sample()
{
    auto made = Loam::makeStrong<MultipleStringSelection>("", joined('|'), '|');
    for (std::size_t i = 1; i < Count; i += 2)
        made->add(names()[i]);
    return made;
}

// The plain counterparts of the values, without the framework.

struct PlainChoice {
    Strings names;
    std::size_t chosen = 0;
    bool operator==(const PlainChoice&) const = default;
};

struct PlainSelection {
    Strings names;
    std::string chosen;
    bool operator==(const PlainSelection&) const = default;
};

struct PlainSelections {
    Strings names;
    Strings chosen;
    bool operator==(const PlainSelections& other) const { return names == other.names; }
};

using PlainFlags = std::map<std::string, bool>;

PlainFlags plainFlags()
{
    PlainFlags flags;
    for (std::size_t i = 0; i < Count; ++i)
        flags[flagNames()[i]] = i % 3 != 0;
    return flags;
}

PlainSelections plainSelections()
{
    PlainSelections made{names(), {}};
    for (std::size_t i = 1; i < Count; i += 2)
        made.chosen.push_back(names()[i]);
    return made;
}

void writeInBraces(std::string& text, const Strings& strings)
{
    for (const std::string& string : strings)
        text.append(1, '{').append(string).append(1, '}');
}

std::string textOf(const PlainChoice& choice)
{
    std::string text = choice.names[choice.chosen];
    writeInBraces(text, choice.names);
    return text;
}

std::string textOf(const PlainSelection& selection)
{
    std::string text = selection.chosen + '@';
    for (const std::string& name : selection.names)
        text.append(name).append(1, '|');
    return text;
}

std::string textOf(const PlainSelections& selections)
{
    std::string text;
    writeInBraces(text, selections.chosen);
    text += '@';
    writeInBraces(text, selections.names);
    return text;
}

std::string textOf(const PlainFlags& flags)
{
    std::string text;
    for (const auto& [name, isOn] : flags)
        text.append(isOn ? " +" : " -").append(name);
    return text;
}

bool read(PlainChoice& choice, const std::string& text)
{
    const auto found = std::ranges::find(choice.names, std::string_view(text).substr(0, text.find('{')));
    if (found == choice.names.end())
        return false;
    choice.chosen = static_cast<std::size_t>(found - choice.names.begin());
    return true;
}

bool read(PlainSelection& selection, const std::string& text)
{
    const auto found = std::ranges::find(selection.names, std::string_view(text).substr(0, text.find('@')));
    if (found == selection.names.end())
        return false;
    selection.chosen = *found;
    return true;
}

void readBraces(Strings& strings, std::string_view text)
{
    strings.clear();
    for (auto open = text.find('{'); open != std::string_view::npos;) {
        const auto close = text.find('}', open);
        strings.emplace_back(text.substr(open + 1, close - open - 1));
        open = text.find('{', close);
    }
}

bool read(PlainSelections& selections, const std::string& text)
{
    const auto at = text.find('@');
    readBraces(selections.chosen, std::string_view(text).substr(0, at));
    readBraces(selections.names, std::string_view(text).substr(at + 1));
    return true;
}

bool read(PlainFlags& flags, const std::string& text)
{
    flags.clear();
    for (std::size_t start = text.find_first_not_of(' '); start != std::string::npos;) {
        const auto end = std::min(text.find(' ', start), text.size());
        flags.emplace(text.substr(start + 1, end - start - 1), text[start] == '+');
        start = text.find_first_not_of(' ', end);
    }
    return true;
}

template<class T>
void writeText(benchmark::State& state)
{
    const T value = sample<T>();
    for (auto _ : state)
        benchmark::DoNotOptimize(VValueTrait<T>::Text(value));
}

template<class T>
void readText(benchmark::State& state)
{
    T value = sample<T>();
    const std::string text = VValueTrait<T>::Text(value);
    for (auto _ : state)
        benchmark::DoNotOptimize(VValueTrait<T>::setValueFromText(value, text));
}

template<class T>
void compare(benchmark::State& state)
{
    const T value = sample<T>();
    const T other = VValueOperations<T>::copyOf(value);
    for (auto _ : state)
        benchmark::DoNotOptimize(VValueOperations<T>::areDifferent(value, other));
}

template<class Plain>
void writeTextPlain(benchmark::State& state, const Plain& value)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(textOf(value));
}

template<class Plain>
void readTextPlain(benchmark::State& state, Plain value)
{
    const std::string text = textOf(value);
    for (auto _ : state)
        benchmark::DoNotOptimize(read(value, text));
}

template<class Plain>
void comparePlain(benchmark::State& state, const Plain& value)
{
    const Plain other(value);
    for (auto _ : state)
        benchmark::DoNotOptimize(value == other);
}

#define FOR_SELECTION(Type, plain)                  \
    BENCHMARK(writeText<Type>);                     \
    BENCHMARK_CAPTURE(writeTextPlain, Type, plain); \
    BENCHMARK(readText<Type>);                      \
    BENCHMARK_CAPTURE(readTextPlain, Type, plain);  \
    BENCHMARK(compare<Type>);                       \
    BENCHMARK_CAPTURE(comparePlain, Type, plain)

FOR_SELECTION(Enum, (PlainChoice{names(), Count / 2}));
FOR_SELECTION(FlagList, plainFlags());
FOR_SELECTION(Single, (PlainSelection{names(), names()[Count / 2]}));
FOR_SELECTION(Multiple, plainSelections());

} // namespace
