#pragma once

#include <trellis/VSlot.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Finding objects and slots by the names that people write with a dot between.
// Names may hold dots themselves: of several that fit, the longest one is meant.

namespace Tarn {

/// The slot of \p slots that \p text begins with, up to the end of the text or
/// a \p separator; null if there is none.
Orla::StrongPtr<Orla::VSlot> findSlotAtStart(const Orla::VSlotSet& slots, std::string_view text, char separator);

std::vector<std::string> namesOf(const Orla::VSlotSet& slots);

/// Numbers of objects by their names.
class ObjectNames {
public:
    static constexpr std::size_t npos = ~std::size_t{0};

    /// False if the name is taken.
    bool add(const std::string& name, std::size_t number);

    /// `npos` if there is none.
    std::size_t find(std::string_view name) const;

    /// The number of the object with the longest name that \p text begins with
    /// and that a dot follows; \p rest becomes what stands behind the dot. `npos`
    /// if there is none.
    std::size_t findAtStart(std::string_view text, std::string_view& rest) const;

    /// In alphabetic order.
    std::vector<std::string> names() const;

private:
    std::map<std::string, std::size_t, std::less<>> m_numbers;
    std::size_t m_longest = 0;
};

} // namespace Tarn
