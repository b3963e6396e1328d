#pragma once

#include <earth/Export.hpp>

#include <gable/PhysicalSpace.hpp>

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace Earth {

/// A coordinate system for places near the Earth. Its name is one of
///
/// - "geographic": longitude and latitude in degrees, height in metres above the ellipsoid
///   WGS 84;
/// - "geocentric": metres from the Earth's centre, x through longitude and latitude 0, z
///   through the north pole;
/// - "plate carree": metres east and north along the equator's circle, and height;
/// - a text that describes a coordinate system or a conversion for PROJ, such as
///   "+proj=robin", "EPSG:3857", "+proj=utm +zone=32", WKT, or a pipeline that begins with
///   longitude and latitude. Coordinates are east and north in the chart's unit, usually
///   metres, or degrees for geographic systems; heights are in metres.
///
/// The first three are closed forms. Parameters without an ellipsoid are based on WGS 84.
/// PROJ uses no network, and reads its database only for codes such as "EPSG:3857".
///
/// Copies share PROJ's state, one context per name, which a lock protects: a chart may be
/// used in several threads.
class EARTH_API Chart {
public:
    using point = Gyre::PhysicalSpace::point;

    /// Makes the chart "geographic".
    Chart() = default;

    /// \throw std::invalid_argument with \p name and PROJ's reason if the chart does not exist.
    explicit Chart(const std::string& name);

    /// Returns true if \p name has the form of a text for PROJ. It may be invalid. The names of
    /// objects in PROJ's database do not count: PROJ completes them, and a misspelt name would
    /// select some other chart.
    static bool isProjText(const std::string& name) noexcept;

    const std::string& name() const noexcept { return m_name; }

    /// Returns true if coordinates are metres from the Earth's centre. Other charts are flat.
    bool isGeocentric() const noexcept;

    /// Returns true if coordinates can be converted to longitude and latitude.
    bool hasInverse() const noexcept;

    /// Converts longitude, latitude and height. A place outside the chart's domain becomes
    /// NaN.
    point fromGeographic(const point& place) const;
    void fromGeographic(std::span<point> places) const;

    /// Converts to longitude, latitude and height. Coordinates that belong to no place become
    /// NaN; all of them do if the chart has no inverse.
    point toGeographic(const point& place) const;
    void toGeographic(std::span<point> places) const;

    /// A part of the Earth, in degrees. `east` is greater than `west`, and may exceed 180.
    struct Extent {
        double west = -180;
        double south = -90;
        double east = 180;
        double north = 90;
    };

    /// Returns where the chart is meant to be used, or nothing if that is unknown.
    std::optional<Extent> areaOfUse() const;

    friend bool operator==(const Chart& a, const Chart& b) noexcept { return a.m_name == b.m_name; }

private:
    enum class Kind { Geographic, Geocentric, PlateCarree, Proj };
    class Proj;

    Kind m_kind = Kind::Geographic;
    std::string m_name = "geographic";
    std::shared_ptr<const Proj> m_proj;
};

} // namespace Earth
