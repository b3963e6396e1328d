#pragma once

#include <cstdint>

namespace Orla {

class VSlotContainer;

/// Where a slot keeps its value in the frames of its container. It stays the same as
/// long as the slot belongs to the container.
struct VSlotPlace {
    static constexpr std::uint32_t NoCell = ~std::uint32_t{0};

    const VSlotContainer* container = nullptr;
    std::uint32_t cell = NoCell;
};

} // namespace Orla
