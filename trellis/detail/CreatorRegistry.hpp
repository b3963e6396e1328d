#pragma once

#include <trellis/Export.hpp>
#include <trellis/detail/NameTable.hpp>

#include <loam/WeakPtr.hpp>

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Orla::Detail {

/// Maps names to creators. Holds weak references: the entries of a library disappear when it
/// is unloaded.
///
/// A second creator of the same type is used once the first is destroyed. A different type
/// under a taken name is refused.
///
/// The registry has a lock, so it may be read while libraries are loaded and unloaded.
template<class Creator>
class CreatorRegistry {
public:
    /// Registers \p creator of the type with the key \p typeKey. \p owner describes its origin
    /// in reports. Returns the owner of another type that already has the name, or an empty
    /// text if the creator was accepted.
    std::string add(const Loam::WeakPtrImpl<Creator>& creator, const std::string& name, const std::string& typeKey,
                    const std::string& owner)
    {
        const std::lock_guard lock{m_mutex};
        std::vector<Candidate>& candidates = m_candidates[name];
        std::erase_if(candidates, [](const Candidate& candidate) { return candidate.creator.expired(); });
        for (const Candidate& candidate : candidates) {
            if (candidate.typeKey != typeKey)
                return candidate.owner;
        }
        for (const Candidate& candidate : candidates) {
            if (candidate.creator == creator)
                return {};
        }
        candidates.push_back({creator, typeKey, owner});
        return {};
    }

    /// Returns the creator that is currently used for \p name, or null.
    Loam::StrongPtr<Creator> find(std::string_view name) const
    {
        const std::lock_guard lock{m_mutex};
        const std::vector<Candidate>* const candidates = m_candidates.find(name);
        return candidates ? firstAlive(*candidates) : nullptr;
    }

    /// Returns the names that have a living creator, in alphabetical order.
    std::vector<std::string> names() const
    {
        const std::lock_guard lock{m_mutex};
        std::vector<std::string> names;
        m_candidates.forEach([&names](const std::string& name, const std::vector<Candidate>& candidates) {
            if (firstAlive(candidates))
                names.push_back(name);
        });
        std::ranges::sort(names);
        return names;
    }

private:
    struct Candidate {
        Loam::WeakPtrImpl<Creator> creator;
        std::string typeKey;
        std::string owner;
    };

    static Loam::StrongPtr<Creator> firstAlive(const std::vector<Candidate>& candidates)
    {
        for (const Candidate& candidate : candidates) {
            if (Loam::StrongPtr<Creator> creator = candidate.creator.lock())
                return creator;
        }
        return nullptr;
    }

    mutable std::mutex m_mutex;
    NameTable<std::vector<Candidate>> m_candidates;
};

} // namespace Orla::Detail
