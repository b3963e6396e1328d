#include <tarn/text/Messages.hpp>

#include <loam/Ascii.hpp>

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace Tarn {

namespace {

constexpr std::size_t LongestShown = 200;
constexpr std::size_t MostListed = 12;

// Returns the number of mistakes up to which a name of that length counts as misspelt.
std::size_t toleranceFor(std::size_t length) noexcept
{
    return length < 3 ? 0 : std::min<std::size_t>(length / 3, 3);
}

// Returns how many letters must be inserted, removed, replaced or swapped with their
// neighbour to turn `a` into `b`, ignoring case; at most `limit` + 1.
std::size_t mistakes(std::string_view a, std::string_view b, std::size_t limit)
{
    const std::size_t longer = std::max(a.size(), b.size());
    if (longer - std::min(a.size(), b.size()) > limit)
        return limit + 1;

    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last;
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast = std::move(last);
        last = row;
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool equal = Loam::toLower(a[i - 1]) == Loam::toLower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (equal ? 0 : 1)});
            if (i > 1 && j > 1 && Loam::toLower(a[i - 1]) == Loam::toLower(b[j - 2])
                && Loam::toLower(a[i - 2]) == Loam::toLower(b[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        if (*std::ranges::min_element(row) > limit)
            return limit + 1;
    }
    return std::min(row.back(), limit + 1);
}

} // namespace

std::string inQuotes(std::string_view text)
{
    const std::string content = printable(text);
    std::string shown;
    shown.reserve(content.size() + 2);
    shown += '"';
    for (const char letter : content) {
        if (letter == '"')
            shown += '\\';
        shown += letter;
    }
    return shown + '"';
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string nearest(std::string_view name, const std::vector<std::string>& candidates)
{
    // Long texts are not misspelt names, and comparing them is slow.
    if (name.size() > LongestShown)
        return {};
    std::string best;
    std::size_t fewest = toleranceFor(name.size()) + 1;
    for (const std::string& candidate : candidates) {
        if (fewest == 0)
            break;
        const std::size_t found = mistakes(name, candidate, fewest - 1);
        if (found < fewest) {
            fewest = found;
            best = candidate;
        }
    }
    return best;
}

std::string insteadOf(std::string_view name, const std::vector<std::string>& candidates)
{
    const std::string near = nearest(name, candidates);
    if (!near.empty())
        return "; did you mean " + inQuotes(near) + "?";
    if (candidates.empty() || candidates.size() > MostListed)
        return {};
    std::string list;
    for (const std::string& candidate : candidates)
        list += (list.empty() ? "" : ", ") + printable(candidate);
    return "; available: " + list;
}

std::string alternatives(const std::vector<std::string>& names)
{
    constexpr std::size_t MostNames = 8;
    const std::size_t count = std::min(names.size(), MostNames);
    std::string list;
    for (std::size_t i = 0; i < count; ++i)
        list += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + inQuotes(names[i]);
    return names.size() > count ? list + " or one of " + std::to_string(names.size() - count) + " more" : list;
}

} // namespace Tarn
