#include <earth/Layer.hpp>
#include <earth/PictureFrame.hpp>
#include <earth/PictureObject.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>

namespace Earth {

using Orla::describe;

/// Draws a layer on a map or globe, with its legend, and writes the picture when it receives an
/// action; see `PictureObject`.
class MapPicture final : public PictureObject {
public:
    MapPicture(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : PictureObject{name, level, preferences, "Map"}
    {
    }

private:
    void draw(Canvas& canvas, const View& view, const Pool& pool) const override
    {
        const Layer layer = m_layer.value(pool);
        drawPictureFrame(canvas, titleIn(pool), m_subtitle.value(pool));
        if (const Layer::Content* const content = layer.content()) {
            const double point = pixelsOfPoint(canvas);
            const Rectangle space = legendSpace(canvas);
            const double width = std::min(space.width, 520 * point);
            const double left = space.left + (space.width - width) / 2;
            drawColorClasses(canvas, {left, space.top + 28 * point, width, 16 * point}, content->legend);
        }
        view.beginClip(canvas);
        drawEarth(canvas, view, landIn(pool).polygons(), layer);
        canvas.endClip();
        view.drawFrame(canvas);
    }

    Orla::TypedSlot<Layer> m_layer{this, "layer", Layer{}, describe("What is drawn over the land.")};
    Orla::TypedSlot<std::string> m_subtitle{this, "subtitle", "", describe("The second line of the title.")};
};

} // namespace Earth

namespace {

const Orla::VObjectType<Earth::MapPicture> mapPictureType{
    "MapPicture",
    Orla::describeType("Draws a layer on a map or a globe.")
        .details("An action at the input write or step draws the picture and writes it to a file, as PNG or SVG by the "
                 "extension.")
        .category("Pictures")
        .keywords("map", "globe", "legend", "PNG", "SVG")};

} // namespace
