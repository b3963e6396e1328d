#pragma once

#include <fathom/Range.hpp>
#include <fathom/VValueType.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Quakes {

/// One seismic event.
struct Quake {
    double time = 0;             ///< seconds since 1970-01-01T00:00:00Z
    double longitude = 0;        ///< degrees, positive to the east
    double latitude = 0;         ///< degrees, positive to the north
    std::optional<double> depth; ///< kilometres below the surface
    std::optional<double> magnitude;
    std::string magnitudeType; ///< method of measurement: "ml", "mww"
    std::string net;           ///< network of stations that reported the event
    std::string id;
    std::string place; ///< readable description: "4km W of Castaic, CA"
    std::string type;  ///< "earthquake", "quarry blast", ...
    std::string url;   ///< web page about the event

    friend bool operator==(const Quake&, const Quake&) = default;
};

/// A list of events, earliest first.
///
/// Events never change. Copies and selections share the events of the original
/// catalogue.
///
/// Text form: one line per event, ended by LF or CR LF, with its eleven parts in the
/// order of `Quake`, separated by commas. An unknown number is empty. A part may be
/// quoted, and must be if it contains a comma, a quote or a line break; quotes inside
/// are doubled. The empty text is the empty catalogue.
///
///     1517363399.65,-122.197,46.2035,3.28,0.31,ml,uw,uw61345682,"37km NNE of Amboy",earthquake,
class Catalogue {
public:
    Catalogue() = default;

    /// Takes events in any order. Events with the same time keep their order.
    /// \pre All numbers are finite.
    explicit Catalogue(std::vector<Quake> events);

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }

    /// \pre \p index is less than `size()`.
    const Quake& operator[](std::size_t index) const noexcept
    {
        return m_selection ? *(*m_selection)[index] : (*m_events)[index];
    }

    /// Returns the events at or before \p time; no events for NaN. Takes time
    /// logarithmic in the size.
    Catalogue until(double time) const noexcept;

    /// Returns the events with a magnitude in \p range, both ends inclusive. Events of
    /// unknown magnitude are in the range `-inf:inf` only.
    Catalogue withMagnitude(const Orla::Range& range) const;

    /// Returns the events for which \p isWanted returns true.
    template<class Predicate>
    Catalogue where(Predicate&& isWanted) const
    {
        std::vector<const Quake*> selection;
        for (std::size_t i = 0; i < m_size; ++i) {
            if (isWanted((*this)[i]))
                selection.push_back(&(*this)[i]);
        }
        return selection.size() == m_size ? *this : withSelection(std::move(selection));
    }

    friend bool operator==(const Catalogue& a, const Catalogue& b) noexcept;

private:
    Catalogue withSelection(std::vector<const Quake*> selection) const;

    std::shared_ptr<const std::vector<Quake>> m_events;
    std::shared_ptr<const std::vector<const Quake*>> m_selection; // null: all of them
    std::size_t m_size = 0;                                       // only that many from the start
};

} // namespace Quakes

template<>
struct Orla::VValueTrait<Quakes::Catalogue> {
    static std::string Text(const Quakes::Catalogue& catalogue);

    /// Reads lines in any order of time. Returns false and leaves \p catalogue unchanged
    /// if a line does not have eleven parts or a number is not finite.
    static bool setValueFromText(Quakes::Catalogue& catalogue, const std::string& text);
};
