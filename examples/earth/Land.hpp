#pragma once

#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <fathom/VValueType.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Earth {

/// Polygons of land. They never change, and copies share them.
///
/// Has no text form that can be read: land is always read from a file.
class EARTH_API Land {
public:
    Land() = default;
    explicit Land(std::vector<Polygon> polygons)
        : m_polygons{std::make_shared<const std::vector<Polygon>>(std::move(polygons))}
    {
    }

    const std::vector<Polygon>& polygons() const noexcept
    {
        static const std::vector<Polygon> none;
        return m_polygons ? *m_polygons : none;
    }

    friend bool operator==(const Land& a, const Land& b) noexcept
    {
        return a.m_polygons == b.m_polygons || a.polygons() == b.polygons();
    }

private:
    std::shared_ptr<const std::vector<Polygon>> m_polygons;
};

} // namespace Earth

template<>
struct EARTH_API Orla::VValueTrait<Earth::Land> {
    /// Returns the number of polygons as a text: "1 polygon of land".
    static std::string Text(const Earth::Land& land)
    {
        const std::size_t count = land.polygons().size();
        return std::to_string(count) + (count == 1 ? " polygon of land" : " polygons of land");
    }

    /// Refuses every text.
    static bool setValueFromText(Earth::Land&, const std::string&) { return false; }
};
