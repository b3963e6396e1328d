#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Orla::Detail {

/// Hash table from non-zero numbers to small values. Uses open addressing with linear probing,
/// so a look-up touches one or two cache lines regardless of the number of entries. An empty
/// table allocates no memory.
template<class Value>
class IdTable {
public:
    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }

    /// Returns the value of \p id, or null.
    Value* find(std::uint64_t id) noexcept
    {
        if (m_size == 0)
            return nullptr;
        for (std::size_t place = home(id);; place = next(place)) {
            Entry& entry = m_entries[place];
            if (entry.id == id)
                return &entry.value;
            if (entry.id == 0)
                return nullptr;
        }
    }

    /// Returns the value of \p id, inserting it if it is missing. References to values are
    /// valid until the next insertion or removal.
    /// \pre \p id is not 0.
    Value& operator[](std::uint64_t id)
    {
        if (Value* found = find(id))
            return *found;
        if ((m_size + 1) * 4 > m_entries.size() * 3)
            grow();
        Entry& entry = m_entries[freePlace(id)];
        entry.id = id;
        ++m_size;
        return entry.value;
    }

    bool erase(std::uint64_t id)
    {
        Value* found = find(id);
        if (!found)
            return false;
        // Destroyed last: its destructor may use the table.
        [[maybe_unused]] const Value released = std::exchange(*found, Value{});
        std::size_t hole = home(id);
        while (m_entries[hole].id != id)
            hole = next(hole);
        for (std::size_t place = next(hole); m_entries[place].id != 0; place = next(place)) {
            // An entry may move into the hole unless its home lies after the hole.
            const std::size_t distance = (place - home(m_entries[place].id)) & (m_entries.size() - 1);
            if (distance >= ((place - hole) & (m_entries.size() - 1))) {
                m_entries[hole] = std::exchange(m_entries[place], Entry{});
                hole = place;
            }
        }
        m_entries[hole] = Entry{};
        --m_size;
        return true;
    }

    /// Moves all values out and leaves the table empty.
    std::vector<Value> release()
    {
        std::vector<Value> values;
        values.reserve(m_size);
        for (Entry& entry : m_entries) {
            if (entry.id != 0)
                values.push_back(std::move(entry.value));
        }
        m_entries = std::vector<Entry>{};
        m_size = 0;
        return values;
    }

    template<class Function>
    void forEach(Function&& function)
    {
        for (Entry& entry : m_entries) {
            if (entry.id != 0)
                function(entry.id, entry.value);
        }
    }

private:
    struct Entry {
        std::uint64_t id = 0;
        Value value{};
    };

    // Multiplication spreads consecutive numbers over the table.
    std::size_t home(std::uint64_t id) const noexcept
    {
        return static_cast<std::size_t>((id * 0x9E3779B97F4A7C15u) >> m_shift);
    }

    std::size_t next(std::size_t place) const noexcept { return (place + 1) & (m_entries.size() - 1); }

    std::size_t freePlace(std::uint64_t id) const noexcept
    {
        std::size_t place = home(id);
        while (m_entries[place].id != 0)
            place = next(place);
        return place;
    }

    void grow()
    {
        std::vector<Entry> old =
            std::exchange(m_entries, std::vector<Entry>(m_entries.empty() ? 4 : 2 * m_entries.size()));
        m_shift = 64;
        for (std::size_t size = m_entries.size(); size > 1; size /= 2)
            --m_shift;
        for (Entry& entry : old) {
            if (entry.id != 0)
                m_entries[freePlace(entry.id)] = std::move(entry);
        }
    }

    std::vector<Entry> m_entries; // size is a power of two
    std::size_t m_size = 0;
    unsigned m_shift = 64;
};

} // namespace Orla::Detail
