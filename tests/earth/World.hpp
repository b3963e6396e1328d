#pragma once

#include <earth/Shapes.hpp>
#include <earth/TopoJson.hpp>

#include <vector>

/// The land of the world.
inline const std::vector<Earth::Polygon>& world()
{
    static const std::vector<Earth::Polygon> land = Earth::readTopoJson(LAND_JSON).polygons;
    return land;
}
