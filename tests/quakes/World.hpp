#pragma once

#include <quakes/Catalogue.hpp>
#include <quakes/Shapes.hpp>
#include <quakes/TopoJson.hpp>

#include <optional>
#include <vector>

/// The land of the world.
inline const std::vector<Quakes::Polygon>& world()
{
    static const std::vector<Quakes::Polygon> land = Quakes::readTopoJson(LAND_JSON).polygons;
    return land;
}

inline Quakes::Quake quakeAt(double longitude, double latitude, std::optional<double> magnitude,
                             std::optional<double> depth, double time = 0)
{
    Quakes::Quake quake;
    quake.longitude = longitude;
    quake.latitude = latitude;
    quake.magnitude = magnitude;
    quake.depth = depth;
    quake.time = time;
    return quake;
}
