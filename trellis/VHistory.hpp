#pragma once

#include <trellis/Export.hpp>

#include <string>

namespace Orla {

/// Why the results of an evaluation may depend on earlier evaluations of the same pool. See
/// `VScheduler::history`.
struct TRELLIS_API VHistory {
    enum class Cause {
        Declared,     ///< the object declares it: `VSlotContainer::dependsOnEarlierUpdates`
        KeepsState,   ///< members of the object hold state: `VSlotContainer::keepsState`
        Loop,         ///< the object is a member of a loop, which starts with its earlier values
        ReadsOutput,  ///< an update read an output of its own object before writing it
        ChangesInput, ///< an update changed an input of its own object, which the next one reads
        WritesFile    ///< an update asked for the name of a file to write: `VObject::resultFile`
    };

    Cause cause = Cause::Declared;
    std::string object{}; ///< its name
    std::string slot{};   ///< the output read or the input changed; else empty

    /// Returns the reason as a clause, for messages: `object "sum" reads its earlier output
    /// "total"`.
    std::string text() const;
};

} // namespace Orla
