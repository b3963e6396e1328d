#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orla::Detail {

/// Hash table from names to values. Uses open addressing with linear probing. A look-up needs
/// neither a division nor a temporary string. Names are not removed.
template<class Value>
class NameTable {
public:
    /// Returns the value of \p name, or null.
    Value* find(std::string_view name) const noexcept
    {
        if (m_entries.empty())
            return nullptr;
        Entry* const entry = m_entries[placeOf(name, hashOf(name))].get();
        return entry ? &entry->value : nullptr;
    }

    /// Returns the value of \p name, inserting it if it is missing. References stay valid.
    Value& operator[](std::string_view name)
    {
        if ((m_size + 1) * 2 > m_entries.size())
            grow();
        const std::uint64_t hash = hashOf(name);
        std::unique_ptr<Entry>& entry = m_entries[placeOf(name, hash)];
        if (!entry) {
            entry.reset(new Entry{std::string(name), hash, Value{}});
            ++m_size;
        }
        return entry->value;
    }

    /// Calls \p function with each name and its value, in no particular order.
    template<class Function>
    void forEach(Function&& function) const
    {
        for (const std::unique_ptr<Entry>& entry : m_entries) {
            if (entry)
                function(std::as_const(entry->name), entry->value);
        }
    }

private:
    struct Entry {
        std::string name;
        std::uint64_t hash;
        Value value;
    };

    // Multiplies eight characters at a time, and folds the upper half of each product into the
    // lower half, which selects the place.
    static std::uint64_t hashOf(std::string_view name) noexcept
    {
        std::uint64_t hash = name.size();
        const auto mix = [&hash](std::uint64_t word) {
            hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
            hash ^= hash >> 32;
        };
        const char* place = name.data();
        std::size_t left = name.size();
        for (; left >= sizeof(std::uint64_t); place += sizeof(std::uint64_t), left -= sizeof(std::uint64_t)) {
            std::uint64_t word;
            std::memcpy(&word, place, sizeof word);
            mix(word);
        }
        std::uint64_t last = 0;
        for (std::size_t i = 0; i < left; ++i)
            last = last << 8 | static_cast<unsigned char>(place[i]);
        mix(last);
        return hash;
    }

    // Returns the place of the name, or the place where it belongs.
    std::size_t placeOf(std::string_view name, std::uint64_t hash) const noexcept
    {
        const std::size_t mask = m_entries.size() - 1;
        std::size_t place = static_cast<std::size_t>(hash) & mask;
        while (m_entries[place] && (m_entries[place]->hash != hash || m_entries[place]->name != name))
            place = (place + 1) & mask;
        return place;
    }

    void grow()
    {
        std::vector<std::unique_ptr<Entry>> old(m_entries.empty() ? 16 : 2 * m_entries.size());
        old.swap(m_entries);
        for (std::unique_ptr<Entry>& entry : old) {
            if (entry)
                m_entries[placeOf(entry->name, entry->hash)] = std::move(entry);
        }
    }

    std::vector<std::unique_ptr<Entry>> m_entries; // null where free; size is a power of two
    std::size_t m_size = 0;
};

} // namespace Orla::Detail
