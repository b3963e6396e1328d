#include <tarn/reference/PageNames.hpp>

#include <loam/Ascii.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstddef>

namespace Tarn {

namespace {

constexpr std::size_t MostCharacters = 100; // file names have 255 at most, with ending and number

std::string lower(std::string_view name)
{
    std::string small(name);
    std::ranges::transform(small, small.begin(), &Loam::toLower);
    return small;
}

bool isSafe(char c) noexcept
{
    return Loam::isLetter(c) || Loam::isDigit(c) || c == '_';
}

// Windows keeps these names for devices.
bool isDevice(std::string_view small) noexcept
{
    for (const std::string_view device : {"con", "prn", "aux", "nul"}) {
        if (small == device)
            return true;
    }
    return small.size() == 4 && (small.starts_with("com") || small.starts_with("lpt")) && Loam::isDigit(small[3]);
}

std::string safeName(std::string_view name)
{
    std::string safe;
    for (const char c : name) {
        if (safe.size() == MostCharacters)
            break;
        if (isSafe(c))
            safe += c;
        else if (!Loam::isContinuation(c) && !safe.empty() && safe.back() != '-')
            safe += '-'; // one for several characters, and none at the beginning
    }
    while (safe.ends_with('-'))
        safe.pop_back();
    if (safe.empty())
        return "unnamed";
    return isDevice(lower(safe)) ? safe + '_' : safe;
}

} // namespace

void PageNames::reserve(std::string_view name)
{
    m_used.insert(lower(name));
}

std::string PageNames::add(std::string_view name)
{
    const std::string safe = safeName(name);
    std::string candidate = safe;
    // Continues where the last search ended, because thousands of names may resemble each other.
    std::size_t& number = m_number.try_emplace(lower(safe), 1).first->second;
    while (!m_used.insert(lower(candidate)).second)
        candidate = safe + '-' + std::to_string(++number);
    return candidate;
}

} // namespace Tarn
