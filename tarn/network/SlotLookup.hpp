#pragma once

#include <trellis/VSlot.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Finds objects and slots by names separated by dots. Names may contain dots themselves; the
// longest match wins.

namespace Tarn {

/// Returns the slot of \p slots whose name \p text begins with, followed by the end of the
/// text or by \p separator; null if no slot matches.
Orla::StrongPtr<Orla::VSlot> findSlotAtStart(const Orla::VSlotSet& slots, std::string_view text, char separator);

std::vector<std::string> namesOf(const Orla::VSlotSet& slots);

/// As `namesOf`, without private state.
std::vector<std::string> visibleNamesOf(const Orla::VSlotSet& slots);

/// Maps the names of objects to their numbers.
class ObjectNames {
public:
    static constexpr std::size_t npos = ~std::size_t{0};

    /// Returns false if the name is taken.
    bool add(const std::string& name, std::size_t number);

    /// Changes a name and keeps its number. Returns false if \p name is unknown or \p newName is
    /// taken.
    bool rename(std::string_view name, std::string newName);

    /// Removes a name and counts its number out: each larger number decreases by one. Returns false
    /// if the name is unknown.
    bool remove(std::string_view name);

    /// Returns the number of the object \p name, or `npos`.
    std::size_t find(std::string_view name) const;

    /// Returns the number of the object with the longest name that \p text begins with,
    /// followed by a dot, and sets \p rest to the text after the dot. Returns `npos` if no
    /// name matches.
    std::size_t findAtStart(std::string_view text, std::string_view& rest) const;

    /// Returns all names in alphabetical order.
    std::vector<std::string> names() const;

private:
    std::map<std::string, std::size_t, std::less<>> m_numbers;
    std::size_t m_longest = 0; // or more, after a removal
};

} // namespace Tarn
