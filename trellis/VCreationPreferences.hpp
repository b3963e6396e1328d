#pragma once

#include <trellis/Export.hpp>

#include <loam/Interface.hpp>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// The preferences for a slot or an object, as a set of plain words: "local" for an object
/// that keeps its own time, "GlobalTime" for one that provides time to all others.
class TRELLIS_API VCreationPreferences : public Loam::InterfaceBase {
public:
    VCreationPreferences() = default;
    VCreationPreferences(const VCreationPreferences& other);
    VCreationPreferences& operator=(const VCreationPreferences& other);

    /// Adds the words \p purpose and \p wish; empty ones are skipped.
    VCreationPreferences(const std::string& purpose, const std::string& wish);
    ~VCreationPreferences() override;

    /// Adds a word. Returns false if it is empty or already present.
    bool add(const std::string& word);

    virtual bool contains(const std::string& word) const;

    /// Returns the distance from \p wanted: the number of words of \p wanted that are missing
    /// here, plus this object's handicap. Zero is a perfect match; the smallest weight is the
    /// best.
    virtual double weight(const VCreationPreferences& wanted) const;

    /// Makes this candidate worse than others that match equally well; a negative handicap
    /// makes it better. Initially zero.
    void setHandicap(double handicap) noexcept { m_handicap = handicap; }
    double handicap() const noexcept { return m_handicap; }

    /// Returns the words in the order in which they were added.
    const std::vector<std::string>& words() const noexcept { return m_words; }

    /// For directories that index objects by the words of their preferences: makes
    /// `changesOfWatched` count changes of these preferences from now on.
    void watch() const noexcept { m_isWatched.store(true, std::memory_order_relaxed); }
    static std::uint64_t changesOfWatched() noexcept;

private:
    std::vector<std::string> m_words;
    mutable std::atomic<bool> m_isWatched{false};
    double m_handicap = 0;
};

} // namespace Orla
