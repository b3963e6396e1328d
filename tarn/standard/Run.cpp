#include <fathom/Action.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Tarn {

namespace {

using Orla::describe;
using Orla::StrongPtr;
using Action = StrongPtr<Orla::VAction>;

/// Notifies other objects of a run's progress: the host emits "stepped", with the number 1,
/// after each step and "finished", with the number 2, once after the last.
class Run final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override { return true; }

private:
    const Orla::VOutput<Action> m_stepped{this, "stepped", Loam::makeStrong<Orla::VAction>(1.0),
                                          describe("Emitted after each step.")};
    const Orla::VOutput<Action> m_finished{this, "finished", Loam::makeStrong<Orla::VAction>(2.0),
                                           describe("Emitted at the end of a run.")};
};

const Orla::VObjectType<Run> runType{
    "Run", Orla::describeType("Emits actions during a run, for example to write files.").category("Time"),
    Loam::makeStrong<Orla::VCreationPreferences>("default", "run")};

} // namespace

} // namespace Tarn
