#include "Catalogue.hpp"
#include "QuakePicture.hpp"

#include <earth/Layer.hpp>
#include <earth/PictureObject.hpp>

#include <fathom/VEnum.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Quakes {

using Orla::describe;

/// Draws the events that have happened by the current time over the land, or over the layer
/// `under`, and writes the picture when it receives an action; see `PictureObject`. The input
/// `range` gives the seconds since 1970 at the times 0 and 1.
class PictureWriter final : public Earth::PictureObject {
public:
    PictureWriter(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : PictureObject{name, level, preferences, "Earthquakes"}
    {
    }

private:
    void draw(Earth::Canvas& canvas, const Earth::View& view, const Pool& pool) const override
    {
        QuakePicture picture;
        picture.title = titleIn(pool);
        picture.instant = getTime(pool, 0, Orla::Range{});
        picture.quakes = m_catalogue.value(pool);
        picture.under = m_under.value(pool);
        const Orla::Enum color = m_color.value(pool);
        if (const auto* rules = color.selection())
            picture.colorRule = colorRuleOfName(rules->selectedName()).value_or(ColorRule::Depth);
        Quakes::draw(canvas, picture, landIn(pool).polygons(), view);
    }

    static Orla::Enum colorRules()
    {
        Orla::Enum rules;
        for (const ColorRule rule : {ColorRule::Depth, ColorRule::Magnitude, ColorRule::Age})
            rules.addCase(colorRuleName(rule));
        return rules;
    }

    Orla::TypedSlot<Catalogue> m_catalogue{this, "catalog", Catalogue{}, describe("The events to draw.")};
    Orla::TypedSlot<Earth::Layer> m_under{this, "under", Earth::Layer{}, describe("A layer to draw below the events.")};
    Orla::TypedSlot<Orla::Enum> m_color{this, "color", colorRules(), describe("What the colour of an event shows.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::PictureWriter> pictureWriterType{
    "PictureWriter",
    Orla::describeType("Draws earthquakes on a map or a globe.")
        .details("An action at the input write or step draws the picture and writes it to a file, as PNG or SVG by the "
                 "extension.")
        .category("Earthquakes")
        .keywords("map", "globe", "PNG", "SVG")};

} // namespace
