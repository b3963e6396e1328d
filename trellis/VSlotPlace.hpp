#pragma once

#include <cstdint>

namespace Orla {

class VSlotContainer;

/// Locates a slot's values in the frames of its container. Does not change while the slot
/// belongs to the container.
struct VSlotPlace {
    static constexpr std::uint32_t NoCell = ~std::uint32_t{0};

    const VSlotContainer* container = nullptr;
    std::uint32_t cell = NoCell;
};

} // namespace Orla
