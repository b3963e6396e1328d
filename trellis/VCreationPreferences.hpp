#pragma once

#include <trellis/Export.hpp>

#include <loam/Interface.hpp>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// What the maker of a slot or an object wishes, as a set of plain words:
/// "local" for an object that keeps its own time, "GlobalTime" for one that
/// provides time to all others.
class TRELLIS_API VCreationPreferences : public Loam::InterfaceBase {
public:
    VCreationPreferences() = default;
    VCreationPreferences(const VCreationPreferences& other);
    VCreationPreferences& operator=(const VCreationPreferences& other);

    /// The words \p purpose and \p wish; empty ones are left out.
    VCreationPreferences(const std::string& purpose, const std::string& wish);
    ~VCreationPreferences() override;

    /// Adds a word; false for the empty text and for a word that is in already.
    bool add(const std::string& word);

    virtual bool contains(const std::string& word) const;

    /// How far these preferences are from \p wanted: one for each word of
    /// \p wanted that is missing here, plus this object's handicap. Zero is a
    /// perfect match and the smallest weight is the best.
    virtual double weight(const VCreationPreferences& wanted) const;

    /// Makes this candidate worse than others that fit as well. Zero at first;
    /// negative numbers make it better.
    void setHandicap(double handicap) noexcept { m_handicap = handicap; }
    double handicap() const noexcept { return m_handicap; }

    /// In the order in which they were added.
    const std::vector<std::string>& words() const noexcept { return m_words; }

    /// For directories that sort objects by the words of their preferences: from now on
    /// `changesOfWatched` counts words that are added to these.
    void watch() const noexcept { m_isWatched.store(true, std::memory_order_relaxed); }
    static std::uint64_t changesOfWatched() noexcept;

private:
    std::vector<std::string> m_words;
    mutable std::atomic<bool> m_isWatched{false};
    double m_handicap = 0;
};

} // namespace Orla
