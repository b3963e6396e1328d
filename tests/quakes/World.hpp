#pragma once

#include "earth/World.hpp"

#include <quakes/Catalogue.hpp>

#include <optional>

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
