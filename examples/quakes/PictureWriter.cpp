#include "Catalogue.hpp"
#include "QuakePicture.hpp"

#include <earth/Canvas.hpp>
#include <earth/ChartFollower.hpp>
#include <earth/FrameName.hpp>
#include <earth/Land.hpp>
#include <earth/View.hpp>

#include <fathom/Action.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VObjectStatus.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/OutputFile.hpp>

#include <cmath>
#include <exception>
#include <filesystem>
#include <new>
#include <stdexcept>

namespace Quakes {

using Orla::StrongPtr;
using Action = StrongPtr<Orla::VAction>;

/// Draws the events that have happened by the current time over the land, in the chart
/// of the network: in geocentric coordinates a globe, as the camera sees it; otherwise a
/// flat map.
///
/// Each action draws the picture and writes it to a file, PNG or SVG by the extension. A
/// file is written completely or left unchanged. An action with the number 1, which a run
/// emits after each step, writes the file `frames`; any other action writes the file
/// `file`. An empty name writes nothing. In `frames`, a sequence of "#" is replaced by the
/// number of the step. The input `range` gives the seconds since 1970 at the times 0
/// and 1.
///
/// The status reports the written file or the error. The error of a step remains until the
/// next sequence begins. The output `written` counts the pictures of the run, and `missing`
/// those of the sequence that could not be written.
class PictureWriter : public Orla::VObject,
                      public Orla::TimeDependent,
                      public Earth::ChartFollower,
                      public Orla::StatusIndicator {
public:
    PictureWriter(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{0}}
        , StatusIndicator{this, "", 0, Slotname}
    {
        m_file.slot()->setFlag(Orla::VSlot::NamesResult);
        m_frames.slot()->setFlag(Orla::VSlot::NamesResult);
    }

    bool update(Orla::VRequest& request, double number) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        publishCharts(pool);
        // Only actions have a number.
        if (number == 0)
            return true;
        const bool isFrame = number == StepNumber;
        const std::string pattern = (isFrame ? m_frames : m_file).value(pool);
        if (pattern.empty())
            return true;
        try {
            if (isFrame && stepIn(pool) == 0)
                m_missing(pool) <<= 0;
            const std::string file = isFrame ? Earth::frameName(pattern, stepIn(pool)) : pattern;
            const std::filesystem::path path = resultFile(file, pool);
            write(path.string(), pool);
            // As the input names it, but with the number of the case.
            reportWritten(std::filesystem::path(file).replace_filename(path.filename()).string(), pool);
        } catch (const std::bad_alloc&) {
            reportMissing("out of memory", isFrame, pool);
        } catch (const std::exception& error) {
            reportMissing(error.what(), isFrame, pool);
        }
        return true;
    }

private:
    static constexpr double StepNumber = 1;

    void reportWritten(const std::string& file, const StrongPtr<Orla::ValuePool>& pool)
    {
        const int written = m_written.value(pool) + 1;
        m_written(pool) <<= written;
        std::string message = "wrote " + escaped(file);
        if (written > 1)
            message += ", the last of " + std::to_string(written) + " pictures";
        // A later picture does not replace one that is missing.
        if (m_missing.value(pool) == 0)
            setStatusInfo(pool, message);
    }

    void reportMissing(const std::string& reason, bool isFrame, const StrongPtr<Orla::ValuePool>& pool)
    {
        const int missing = m_missing.value(pool) + (isFrame ? 1 : 0);
        m_missing(pool) <<= missing;
        std::string message = escaped(reason);
        if (missing > (isFrame ? 1 : 0))
            message += "; pictures of steps that are missing: " + std::to_string(missing);
        setStatusError(pool, message, false);
    }

    static Orla::Enum colorRules()
    {
        Orla::Enum rules;
        for (const ColorRule rule : {ColorRule::Depth, ColorRule::Magnitude, ColorRule::Age})
            rules.addCase(colorRuleName(rule));
        return rules;
    }

    double stepIn(const StrongPtr<Orla::ValuePool>& pool) const
    {
        const Orla::VTime time = timeSlot().value(pool);
        return time.Tstep(time.time);
    }

    void write(const std::string& file, const StrongPtr<Orla::ValuePool>& pool) const
    {
        Earth::Canvas canvas{Earth::pictureFormat(file), size(m_width, pool), size(m_height, pool)};
        QuakePicture picture;
        picture.title = m_title.value(pool);
        picture.instant = getTime(pool, 0, Orla::Range{});
        picture.quakes = m_catalogue.value(pool);
        const Orla::Enum color = m_color.value(pool);
        if (const auto* rules = color.selection())
            picture.colorRule = colorRuleOfName(rules->selectedName()).value_or(ColorRule::Depth);
        draw(canvas, picture, m_land.value(pool).polygons(), *makeView(canvas, chartIn(pool), m_camera.value(pool)));
        const std::string bytes = canvas.finished();
        Loam::OutputFile output{file};
        output.write(bytes);
        output.commit();
    }

    static int size(const Orla::TypedSlot<double>& slot, const StrongPtr<Orla::ValuePool>& pool)
    {
        const double pixels = slot.value(pool);
        // This form of the comparison also refuses NaN.
        if (!(pixels >= 1 && pixels <= Earth::Canvas::largestSize && pixels == std::floor(pixels)))
            throw std::runtime_error{"the input \"" + slot.name() + "\" is " + Orla::VValueTrait<double>::Text(pixels)
                                     + ", expected a whole number of pixels from 1 to "
                                     + std::to_string(Earth::Canvas::largestSize)};
        return static_cast<int>(pixels);
    }

    Orla::TypedSlot<Catalogue> m_catalogue{this, "catalog", Catalogue{}, 0};
    Orla::TypedSlot<Earth::Land> m_land{this, "land", Earth::Land{}, 0};
    Orla::TypedSlot<Orla::VCamera> m_camera{this, "camera", Orla::VCamera{{-1.5e7, -1.26e7, 1.64e7}, {}, {0, 0, 1}, 29},
                                            0};
    Orla::TypedSlot<std::string> m_title{this, "title", "Earthquakes", 0};
    Orla::TypedSlot<Orla::Enum> m_color{this, "color", colorRules(), 0};
    Orla::TypedSlot<double> m_width{this, "width", 900.0, 0};
    Orla::TypedSlot<double> m_height{this, "height", 900.0, 0};
    Orla::TypedSlot<std::string> m_file{this, "file", "", 0};
    Orla::TypedSlot<Action> m_write{this, "write", Action{}, 0};
    Orla::TypedSlot<std::string> m_frames{this, "frames", "", 0};
    Orla::TypedSlot<Action> m_step{this, "step", Action{}, 0};
    Orla::VOutput<int> m_written{this, "written", 0};
    Orla::VOutput<int> m_missing{this, "missing", 0};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::PictureWriter> pictureWriterType{"PictureWriter"};

} // namespace
