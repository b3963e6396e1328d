#include <earth/PictureObject.hpp>

#include <earth/FrameName.hpp>

#include <loam/OutputFile.hpp>

#include <cmath>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <stdexcept>

namespace Earth {

using Orla::describe;

namespace {

constexpr double stepNumber = 1;

int pixels(const Orla::TypedSlot<double>& slot, const Orla::StrongPtr<Orla::ValuePool>& pool)
{
    const double side = slot.value(pool);
    // This form of the comparison also refuses NaN.
    if (!(side >= 1 && side <= Canvas::largestSize && side == std::floor(side)))
        throw std::runtime_error{"the input \"" + slot.name() + "\" is " + Orla::VValueTrait<double>::Text(side)
                                 + ", expected a whole number of pixels from 1 to "
                                 + std::to_string(Canvas::largestSize)};
    return static_cast<int>(side);
}

} // namespace

PictureObject::PictureObject(const std::string& name, int level,
                             const Orla::StrongPtr<Orla::VCreationPreferences>& preferences, const std::string& title)
    : VObject{name, level, preferences}
    , TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    , StatusIndicator{this, "", 0, Slotname}
    , m_land{this, "land", Land{}, describe("The land below.")}
    , m_camera{this, "camera", Orla::VCamera{{-1.5e7, -1.26e7, 1.64e7}, {}, {0, 0, 1}, 29},
               describe("What the globe is seen from; a flat map ignores it.")}
    , m_title{this, "title", title, describe("The first line of the title.")}
    , m_width{this, "width", 900.0,
              describe("The width of the picture.").in("px").from(1).to(Canvas::largestSize).step(1)}
    , m_height{this, "height", 900.0,
               describe("The height of the picture.").in("px").from(1).to(Canvas::largestSize).step(1)}
    , m_file{this, "file", "", describe("The file that an action at write writes.").asOutputFile("png", "svg")}
    , m_write{this, "write", Action{}, describe("Writes the picture.")}
    , m_frames{this, "frames", "",
               describe("The files that actions at step write; # becomes the number of the step.")
                   .asOutputFile("png", "svg")}
    , m_step{this, "step", Action{}, describe("Writes the picture of a step.")}
    , m_written{this, "written", 0.0, describe("How many pictures were written.")}
    , m_missing{this, "missing", 0.0, describe("How many pictures of steps could not be written.")}
{
    rangeSlot().slot()->describe(describe("The seconds since 1970 at the times 0 and 1.").in("s"));
    m_file.slot()->setFlag(Orla::VSlot::NamesResult);
    m_frames.slot()->setFlag(Orla::VSlot::NamesResult);
}

bool PictureObject::update(Orla::VRequest& request, double number)
{
    const Pool& pool = request.valuePool();
    publishCharts(pool);
    // Only actions have a number.
    if (number == 0)
        return true;
    const bool isFrame = number == stepNumber;
    const std::string pattern = (isFrame ? m_frames : m_file).value(pool);
    if (pattern.empty())
        return true;
    try {
        if (isFrame && stepIn(pool) == 0)
            m_missing(pool) <<= 0.0;
        const std::string file = isFrame ? frameName(pattern, stepIn(pool)) : pattern;
        const std::filesystem::path path = resultFile(file, pool);
        write(path.string(), pool);
        // As the input names it, but with the tag of the pool.
        reportWritten(std::filesystem::path(file).replace_filename(path.filename()).string(), pool);
    } catch (const std::bad_alloc&) {
        reportMissing("out of memory", isFrame, pool);
    } catch (const std::exception& error) {
        reportMissing(error.what(), isFrame, pool);
    }
    return true;
}

void PictureObject::reportWritten(const std::string& file, const Pool& pool) const
{
    const double written = m_written.value(pool) + 1;
    m_written(pool) <<= written;
    std::string message = "wrote " + escaped(file);
    if (written > 1)
        message += ", the last of " + Orla::VValueTrait<double>::Text(written) + " pictures";
    // A later picture does not replace one that is missing.
    if (m_missing.value(pool) == 0)
        setStatusInfo(pool, message);
}

void PictureObject::reportMissing(const std::string& reason, bool isFrame, const Pool& pool) const
{
    const double missing = m_missing.value(pool) + (isFrame ? 1 : 0);
    m_missing(pool) <<= missing;
    std::string message = escaped(reason);
    if (missing > (isFrame ? 1 : 0))
        message += "; pictures of steps that are missing: " + Orla::VValueTrait<double>::Text(missing);
    setStatusError(pool, message, false);
}

double PictureObject::stepIn(const Pool& pool) const
{
    const Orla::VTime time = timeSlot().value(pool);
    return time.Tstep(time.time);
}

void PictureObject::write(const std::string& file, const Pool& pool) const
{
    Canvas canvas{pictureFormat(file), pixels(m_width, pool), pixels(m_height, pool)};
    draw(canvas, *makeView(canvas, chartIn(pool), m_camera.value(pool)), pool);
    const std::string bytes = canvas.finished();
    Loam::OutputFile output{file};
    output.write(bytes);
    output.commit();
}

} // namespace Earth
