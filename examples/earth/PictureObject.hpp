#pragma once

#include <earth/Canvas.hpp>
#include <earth/ChartFollower.hpp>
#include <earth/Export.hpp>
#include <earth/Land.hpp>
#include <earth/View.hpp>

#include <fathom/Action.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VOutput.hpp>

#include <string>

namespace Earth {

/// Base class of objects that draw a picture of the Earth in the chart of the network: in
/// geocentric coordinates a globe, as the camera sees it; otherwise a flat map.
///
/// Each action draws the picture and writes it to a file, PNG or SVG by the extension. A
/// file is written completely or left unchanged. An action with the number 1, which a run
/// emits after each step, writes the file `frames`; any other action writes the file
/// `file`. An empty name writes nothing. In `frames`, a sequence of "#" is replaced by the
/// number of the step.
///
/// The status reports the written file or the error. The error of a step remains until the
/// next sequence begins.
class EARTH_API PictureObject : public Orla::VObject,
                                public Orla::TimeDependent,
                                public ChartFollower,
                                public Orla::StatusIndicator {
public:
    PictureObject(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences,
                  const std::string& title);

    bool update(Orla::VRequest& request, double number) override;

protected:
    using Pool = Orla::StrongPtr<Orla::ValuePool>;

    /// Draws the whole picture with its titles.
    virtual void draw(Canvas& canvas, const View& view, const Pool& pool) const = 0;

    std::string titleIn(const Pool& pool) const { return m_title.value(pool); }
    Land landIn(const Pool& pool) const { return m_land.value(pool); }

private:
    using Action = Orla::StrongPtr<Orla::VAction>;

    void reportWritten(const std::string& file, const Pool& pool) const;
    void reportMissing(const std::string& reason, bool isFrame, const Pool& pool) const;
    double stepIn(const Pool& pool) const;
    void write(const std::string& file, const Pool& pool) const;

    Orla::TypedSlot<Land> m_land;
    Orla::TypedSlot<Orla::VCamera> m_camera;
    Orla::TypedSlot<std::string> m_title;
    Orla::TypedSlot<double> m_width;
    Orla::TypedSlot<double> m_height;
    Orla::TypedSlot<std::string> m_file;
    Orla::TypedSlot<Action> m_write;
    Orla::TypedSlot<std::string> m_frames;
    Orla::TypedSlot<Action> m_step;
    // State of the object that belongs to a pool is stored in the pool.
    Orla::VOutput<double> m_written;
    Orla::VOutput<double> m_missing; // pictures of steps that were not written
};

} // namespace Earth
