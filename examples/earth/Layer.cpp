#include <earth/Layer.hpp>

#include <earth/Palette.hpp>

#include <fathom/VConnectionTypeColors.hpp>

#include <iterator>
#include <typeinfo>

namespace Earth {

void drawEarth(Canvas& canvas, const View& view, const std::vector<Polygon>& land, const Layer& layer)
{
    const Layer::Content* const content = layer.content();
    if (!content) {
        view.drawEarth(canvas, land);
        return;
    }
    view.drawGround(canvas, content->legend.unknown);
    for (const Layer::Area& area : content->areas) {
        // One path: neighbouring rings of the same area have no seam between them.
        std::vector<Canvas::Path> paths;
        for (const Ring& ring : area.rings) {
            std::vector<Canvas::Path> seen = view.seen(ring);
            std::move(seen.begin(), seen.end(), std::back_inserter(paths));
        }
        canvas.fill(paths, area.color);
    }
    for (const Layer::Lines& lines : content->lines)
        view.strokeLines(canvas, lines.lines, lines.color, lines.points);
    view.drawGraticule(canvas);
    // Darker than over plain land, because the layer may have any colour.
    constexpr auto coast = Palette::color(0x1c2936, 0.8f);
    view.strokeCoasts(canvas, land, coast, 0.8);
    view.drawShade(canvas);
}

} // namespace Earth

std::string Orla::VValueTrait<Earth::Layer>::Text(const Earth::Layer& layer)
{
    const Earth::Layer::Content* const content = layer.content();
    if (!content)
        return {};
    const auto counted = [](std::size_t count, const std::string& one, const std::string& many) {
        return std::to_string(count) + ' ' + (count == 1 ? one : many);
    };
    return counted(content->areas.size(), "area", "areas") + ", "
           + counted(content->lines.size(), "group of lines", "groups of lines");
}

namespace {

const Orla::VValueType<Earth::Layer> layerType{"layer of a map"};

// Sets the colour of connections that carry a layer.
const bool layerHasColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Earth::Layer), "#5B8C5A");
    return true;
}();

} // namespace
