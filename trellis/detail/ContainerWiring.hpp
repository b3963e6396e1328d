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

/// Internal data of a slot container. Written only by a thread that changes the network,
/// except for the list of frames, which has its own lock.
struct ContainerWiring {
    NetworkCore* network = nullptr; // owned by the container
    VObject* object = nullptr;
    Loam::ReferenceBlock* block = nullptr;                 // the object's; valid even while it is being destroyed
    const std::string* name = nullptr;                     // the object's
    std::unique_ptr<const std::string> typeName;           // null if the class has only one type
    PointerList<VFrame> frames;                            // one per pool that uses the container
    std::unique_ptr<std::vector<std::uint32_t>> freeCells; // of removed inputs
    std::uint32_t index = 0;                               // unique among the network's containers
    std::uint32_t cells = 0;                               // how many: one per input and per declared output
    std::uint32_t order = 0;                               // see `VSlotContainer::evaluationOrder`
    std::uint32_t orderAfter = 0;                          // last order number of the loop, else `order`
    std::uint32_t mark = 0;                                // scratch data of `EvaluationOrder`
    std::uint32_t pendingPlace = 0;                        // 1-based place in the list of pending containers, else 0
    std::atomic<const void*> runner{nullptr};              // the thread that updates an object that keeps state
    SpinLock framesLock;
    bool inLoop = false;
    bool isEvaluated = false;   // request processing was enabled
    bool isAnnounced = false;   // the registry owns the object
    bool keepsState = false;    // the object runs in one pool at a time
    bool runsInTurn = false;    // the object shares more than values with others
    bool acceptsFailed = false; // the object runs even if an input failed
    bool hasHistory = false;    // results depend on earlier updates
};

} // namespace Detail

} // namespace Orla
