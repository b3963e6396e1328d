#pragma once

#include <tarn/Faults.hpp>
#include <tarn/NetworkFile.hpp>

#include <trellis/VObject.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// What a saved network became.
struct Network {
    /// A value that goes into the table of results.
    struct Column {
        std::string title;
        Orla::StrongPtr<Orla::VSlot> output;
        std::string member; ///< a component of the value, or empty for all of it
    };

    std::size_t objectCount = 0;
    std::size_t connectionCount = 0;
    std::vector<Column> columns;
};

/// Makes the objects of \p file in its order, sets their inputs, then those that
/// \p overrides name (`OBJECT.SLOT=TEXT`), makes the connections and finishes the
/// objects. \p missingLibraries are named where a type is unknown.
///
/// If there are any \p faults, also from before, no object is finished and all
/// are gone on return. What set-up functions throw is a fault too, found last;
/// finished objects then stay in the registry. In both cases the network is empty.
Network buildNetwork(const NetworkFile& file, const std::vector<std::string>& overrides,
                     const std::vector<std::string>& missingLibraries, Faults& faults);

} // namespace Tarn
