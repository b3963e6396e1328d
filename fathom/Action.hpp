#pragma once

#include <fathom/Export.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// A one-shot trigger, like a button press. It travels through parameters as a
/// `StrongPtr<VAction>`. Emitting it changes no value, but makes the objects that read the
/// parameter due.
///
/// It has no text form, so actions are never saved.
class FATHOM_API VAction : public Loam::ReferenceBase<VAction> {
public:
    explicit VAction(double theNumber = 0) noexcept;
    ~VAction() override;

    /// Schedules in \p pool each announced object with an input that reads \p parameter; its
    /// update receives the action's number as its precision. The objects run, in the
    /// scheduler's order, when the scheduler next runs. Returns false if \p parameter is null
    /// or destroyed; true otherwise, even if no object reads it.
    bool emitAction(const StrongPtr<ValuePool>& pool, const StrongPtr<VParameter>& parameter);

    double number;
};

template<>
struct FATHOM_API VValueTrait<StrongPtr<VAction>> {
    /// Returns the empty text, with or without an action.
    static std::string Text(const StrongPtr<VAction>& action);

    /// Refuses every text.
    static bool setValueFromText(StrongPtr<VAction>& action, const std::string& text);
};

} // namespace Orla
