#pragma once

#include <trellis/detail/PointerList.hpp>
#include <trellis/detail/SpinLock.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Loam {

class ReferenceBlock;

} // namespace Loam

namespace Orla {

class VFrame;
class VObject;

namespace Detail {

class NetworkCore;

/// What the framework's layers keep in a slot container. Written only by a thread
/// that changes the network, except for the list of frames, which has its own lock.
struct ContainerWiring {
    NetworkCore* network = nullptr; // owned by the container
    VObject* object = nullptr;
    Loam::ReferenceBlock* block = nullptr;                 // the object's; may be asked while it is being destroyed
    const std::string* name = nullptr;                     // the object's
    PointerList<VFrame> frames;                            // one per pool that uses the container
    std::unique_ptr<std::vector<std::uint32_t>> freeCells; // of inputs that were removed
    std::uint32_t index = 0;                               // among the containers of the network
    std::uint32_t cells = 0;                               // one per input and per declared output
    std::uint32_t order = 0;                               // see `VSlotContainer::evaluationOrder`
    std::uint32_t orderAfter = 0;                          // readers outside a loop come after all of the loop
    std::uint32_t mark = 0;                                // scratch memory of the ordering
    std::uint32_t pendingPlace = 0;                        // among those whose order must be worked out, counted from 1
    std::atomic<const void*> runner{nullptr};              // the thread that updates an object which keeps state
    SpinLock framesLock;
    bool inLoop = false;
    bool isEvaluated = false;   // request processing was enabled
    bool isAnnounced = false;   // the registry owns the object
    bool keepsState = false;    // the object runs in one pool at a time
    bool runsInTurn = false;    // the object shares more than values with others
    bool acceptsFailed = false; // the object runs although an input failed
};

} // namespace Detail

} // namespace Orla
