#pragma once

#include <fathom/Export.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// A trigger that goes once, like a button that is pressed: it travels through
/// parameters as a `StrongPtr<VAction>` and, when emitted, changes no value but makes
/// those objects due that listen to the parameter.
///
/// It has no text form, so actions are never saved.
class FATHOM_API VAction : public Loam::ReferenceBase<VAction> {
public:
    explicit VAction(double theNumber = 0) noexcept;
    ~VAction() override;

    /// Schedules in \p pool each announced object with an input that reads
    /// \p parameter; its update gets the action's number as its precision. They run
    /// when the scheduler is run next, in its order. False if there is no living
    /// \p parameter; true otherwise, also if nobody listens.
    bool emitAction(const StrongPtr<ValuePool>& pool, const StrongPtr<VParameter>& parameter);

    double number;
};

template<>
struct FATHOM_API VValueTrait<StrongPtr<VAction>> {
    /// Empty, with and without an action.
    static std::string Text(const StrongPtr<VAction>& action);

    /// Refuses every text.
    static bool setValueFromText(StrongPtr<VAction>& action, const std::string& text);
};

} // namespace Orla
