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
    std::string magnitudeType; ///< how the magnitude was measured: "ml", "mww"
    std::string net;           ///< the network of stations that reported it
    std::string id;
    std::string place; ///< for people: "4km W of Castaic, CA"
    std::string type;  ///< "earthquake", "quarry blast", ...
    std::string url;   ///< of a page that tells more

    friend bool operator==(const Quake&, const Quake&) = default;
};

/// A list of events, the earliest first.
///
/// Events never change and are shared: copies and selections refer to those of
/// the catalogue that they come from.
///
/// Text form: a line for each event, ended by LF or CR LF, with its eleven parts
/// in the order of `Quake`, separated by commas. An unknown number is empty. A part
/// may stand in quotes and must if it contains a comma, a quote or a line break;
/// quotes inside are doubled. The empty text is the empty catalogue.
///
///     1517363399.65,-122.197,46.2035,3.28,0.31,ml,uw,uw61345682,"37km NNE of Amboy",earthquake,
class Catalogue {
public:
    Catalogue() = default;

    /// Takes events in any order; those of the same time stay in the order given.
    /// \pre All numbers are finite.
    explicit Catalogue(std::vector<Quake> events);

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }

    /// \pre \p index is less than `size()`.
    const Quake& operator[](std::size_t index) const noexcept
    {
        return m_selection ? *(*m_selection)[index] : (*m_events)[index];
    }

    /// The events at or before \p time; none for NaN. Cost grows with the
    /// logarithm of the size.
    Catalogue until(double time) const noexcept;

    /// The events whose magnitude lies in \p range, both ends included. An event
    /// of unknown magnitude belongs to the range `-inf:inf` alone.
    Catalogue withMagnitude(const Orla::Range& range) const;

    /// The events for which \p isWanted is true.
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
    std::size_t m_size = 0;                                       // as many from the start on
};

} // namespace Quakes

template<>
struct Orla::VValueTrait<Quakes::Catalogue> {
    static std::string Text(const Quakes::Catalogue& catalogue);

    /// Reads lines in any order of time. Returns false and leaves \p catalogue as
    /// it was unless every line has its eleven parts and all numbers are finite.
    static bool setValueFromText(Quakes::Catalogue& catalogue, const std::string& text);
};
