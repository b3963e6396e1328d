#pragma once

#include <loam/Result.hpp>

#include <trellis/VObject.hpp>

namespace Tarn {

/// Fails if a number of \p value is outside the limits of \p slot.
Loam::Result<void> checkLimits(const Orla::VSlot& slot, Orla::VValueBase& value);

/// Fails if a description of a slot of \p object contradicts the object: the value that the
/// object declares is outside the limits of its input, or a condition refers to an input that
/// does not exist, to its own input, or to a text that the other input refuses.
Loam::Result<void> checkDescriptions(const Orla::VObject& object);

/// Returns true if \p slot matters, judged by the initial values of the object's inputs: it has
/// no condition, or the condition is met. A condition on a connected input counts as met.
bool isApplicable(const Orla::VObject& object, const Orla::VSlot& slot);

/// Returns true for private state, which lists omit and other objects cannot use.
bool isPrivateState(const Orla::VSlot& slot);

} // namespace Tarn
