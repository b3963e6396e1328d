#pragma once

#include <tarn/network/NetworkFile.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VValueBase.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
#include <vector>

namespace Tarn {

/// The values of a network's inputs, for writing the network again.
struct NetworkInputs {
    /// An input that is set by texts.
    struct Input {
        std::string name;
        const std::type_info* type;
        Place place;                             ///< of the last text; empty for one from the command line
        std::string description;                 ///< its name in messages
        Orla::StrongPtr<Orla::VValueBase> given; ///< the value that the object gives it
        Orla::StrongPtr<Orla::VValueBase> value; ///< its current value
        std::vector<std::string> texts;          ///< read in order into \p given, they produce \p value
        bool namesResult;                        ///< true for the name of a file that the object writes
    };

    struct Object {
        bool isKnown = false;           ///< false if no library has its type
        std::vector<std::string> names; ///< of its inputs, in order
        std::vector<Input> set;         ///< in the same order
    };

    std::vector<Object> objects; ///< in file order
    std::size_t connectionCount = 0;
};

/// Creates, sets and connects the objects as `buildNetwork` does, then destroys them
/// unfinished. Objects of unknown type are added to \p unknown instead of \p faults.
NetworkInputs readInputs(const NetworkFile& file, const std::vector<std::string>& overrides,
                         const std::vector<std::string>& missingLibraries, Faults& faults, Faults& unknown);

} // namespace Tarn
