#pragma once

#include <earth/Canvas.hpp>
#include <earth/Export.hpp>
#include <earth/PictureFrame.hpp>
#include <earth/Shapes.hpp>
#include <earth/View.hpp>

#include <fathom/VValueType.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Earth {

/// Areas and lines of one theme, which cover the Earth below its coasts. Layers never change,
/// and copies share them.
///
/// A layer is data, not code: one library makes it, another draws it, and neither knows the
/// other. Has no text form that can be read.
class EARTH_API Layer {
public:
    struct Area {
        std::vector<Ring> rings; ///< enclose the area, by the even-odd rule
        Canvas::Color color;

        friend bool operator==(const Area&, const Area&) = default;
    };

    struct Lines {
        std::vector<Line> lines;
        Canvas::Color color;
        double points = 1; ///< the width

        friend bool operator==(const Lines&, const Lines&) = default;
    };

    struct Content {
        std::vector<Area> areas; ///< in drawing order
        std::vector<Lines> lines;
        ColorClasses legend; ///< its `unknown` is also the colour of places without an area

        friend bool operator==(const Content&, const Content&) = default;
    };

    /// Makes the empty layer, which covers nothing.
    Layer() = default;
    explicit Layer(Content content) : m_content{std::make_shared<const Content>(std::move(content))} {}

    /// Returns null for the empty layer.
    const Content* content() const noexcept { return m_content.get(); }

    friend bool operator==(const Layer& a, const Layer& b) noexcept
    {
        return a.m_content == b.m_content || (a.m_content && b.m_content && *a.m_content == *b.m_content);
    }

private:
    std::shared_ptr<const Content> m_content;
};

/// Draws the Earth under a layer: the layer's areas and lines, the graticule, coasts and shade.
/// Under the empty layer, the same as `View::drawEarth`.
EARTH_API void drawEarth(Canvas& canvas, const View& view, const std::vector<Polygon>& land, const Layer& layer);

} // namespace Earth

template<>
struct EARTH_API Orla::VValueTrait<Earth::Layer> {
    /// Returns the number of areas and lines as a text: "2 areas, 1 group of lines".
    static std::string Text(const Earth::Layer& layer);

    /// Refuses every text.
    static bool setValueFromText(Earth::Layer&, const std::string&) { return false; }
};
