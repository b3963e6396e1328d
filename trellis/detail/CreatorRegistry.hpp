#pragma once

#include <trellis/Export.hpp>
#include <trellis/detail/NameTable.hpp>

#include <loam/WeakPtr.hpp>

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orla::Detail {

/// Maps names to creators. Holds weak references: the entries of a library disappear when it
/// is unloaded.
///
/// A second creator of the same type is used once the first is destroyed. A creator of a
/// different type under a taken name is found only together with the name of its library. It
/// takes over the plain name when the first type is unregistered.
///
/// The registry has a lock, so it may be read while libraries are loaded and unloaded.
template<class Creator>
class CreatorRegistry {
public:
    /// The origin of a creator.
    struct Owner {
        std::string text;    // in reports
        std::string library; // the plain name of its library
    };

    /// Registers \p creator of the type with the key \p typeKey. Returns the text of the owner
    /// of another type that already has the name, or an empty text.
    std::string add(const Loam::WeakPtrImpl<Creator>& creator, const std::string& name, const std::string& typeKey,
                    const Owner& owner)
    {
        const std::lock_guard lock{m_mutex};
        std::vector<Candidate>& candidates = m_candidates[name];
        std::erase_if(candidates, [](const Candidate& candidate) { return candidate.creator.expired(); });
        const std::string holder =
            candidates.empty() || candidates.front().typeKey == typeKey ? std::string() : candidates.front().owner.text;
        if (std::ranges::find(candidates, creator, &Candidate::creator) == candidates.end()) {
            // Behind the others of its type, to which the name belongs as long as one is alive.
            const auto last = std::find_if(candidates.rbegin(), candidates.rend(),
                                           [&](const Candidate& each) { return each.typeKey == typeKey; });
            candidates.insert(last == candidates.rend() ? candidates.end() : last.base(), {creator, typeKey, owner});
        }
        return holder;
    }

    /// Returns the creator that is currently used for \p name, which may be LIBRARY:NAME, or
    /// null.
    Loam::StrongPtr<Creator> find(std::string_view name) const
    {
        const std::lock_guard lock{m_mutex};
        if (const std::vector<Candidate>* const candidates = m_candidates.find(name)) {
            if (Loam::StrongPtr<Creator> creator = firstAlive(*candidates, {}))
                return creator;
        }
        const std::size_t colon = name.find(':');
        if (colon == std::string_view::npos || colon == 0)
            return nullptr;
        const std::vector<Candidate>* const candidates = m_candidates.find(name.substr(colon + 1));
        return candidates ? firstAlive(*candidates, name.substr(0, colon)) : nullptr;
    }

    /// Returns the names that have a living creator, in alphabetical order.
    std::vector<std::string> names() const
    {
        const std::lock_guard lock{m_mutex};
        std::vector<std::string> names;
        m_candidates.forEach([&names](const std::string& name, const std::vector<Candidate>& candidates) {
            if (firstAlive(candidates, {}))
                names.push_back(name);
        });
        std::ranges::sort(names);
        return names;
    }

    /// Returns the plain names of the libraries that registered different types under \p name,
    /// one per type.
    std::vector<std::string> libraries(std::string_view name) const
    {
        const std::lock_guard lock{m_mutex};
        std::vector<std::string> libraries;
        const std::vector<Candidate>* const candidates = m_candidates.find(name);
        const std::string* former = nullptr;
        for (std::size_t i = 0; candidates && i < candidates->size(); ++i) {
            const Candidate& candidate = (*candidates)[i];
            if (candidate.creator.expired() || (former && *former == candidate.typeKey))
                continue;
            former = &candidate.typeKey;
            libraries.push_back(candidate.owner.library);
        }
        return libraries;
    }

    /// Returns all living creators, once per name.
    std::vector<Loam::StrongPtr<Creator>> creators() const
    {
        const std::lock_guard lock{m_mutex};
        std::vector<Loam::StrongPtr<Creator>> creators;
        m_candidates.forEach([&creators](const std::string&, const std::vector<Candidate>& candidates) {
            for (const Candidate& candidate : candidates) {
                if (Loam::StrongPtr<Creator> creator = candidate.creator.lock())
                    creators.push_back(std::move(creator));
            }
        });
        return creators;
    }

private:
    struct Candidate {
        Loam::WeakPtrImpl<Creator> creator;
        std::string typeKey;
        Owner owner;
    };

    // Considers the creators of all libraries if `library` is empty.
    static Loam::StrongPtr<Creator> firstAlive(const std::vector<Candidate>& candidates, std::string_view library)
    {
        for (const Candidate& candidate : candidates) {
            if (!library.empty() && candidate.owner.library != library)
                continue;
            if (Loam::StrongPtr<Creator> creator = candidate.creator.lock())
                return creator;
        }
        return nullptr;
    }

    mutable std::mutex m_mutex;
    NameTable<std::vector<Candidate>> m_candidates;
};

/// Returns the process's registry of creators of one kind, or null after it was destroyed at
/// exit: objects and libraries that are destroyed later still look types up.
template<class Creator>
CreatorRegistry<Creator>* creatorRegistry()
{
    static constinit bool isDestroyed = false;
    struct Holder {
        ~Holder() { isDestroyed = true; }
        CreatorRegistry<Creator> registry;
    };
    if (isDestroyed)
        return nullptr;
    static Holder theHolder;
    return &theHolder.registry;
}

} // namespace Orla::Detail
