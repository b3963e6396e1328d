#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/network/NetworkFile.hpp>

#include <trellis/VObject.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
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
    std::vector<Orla::StrongPtr<Orla::VSlot>> connected; ///< the inputs that the file connects
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

/// What the inputs of a network hold, for those who write it again.
struct NetworkInputs {
    /// An input that is set by texts.
    struct Input {
        std::string name;
        const std::type_info* type;
        Place place;                             ///< of the last text; nowhere for one of the command line
        std::string description;                 ///< how messages call it
        Orla::StrongPtr<Orla::VValueBase> given; ///< what the object gives it
        Orla::StrongPtr<Orla::VValueBase> value; ///< what it holds
        std::vector<std::string> texts;          ///< read one after the other into \p given, they make \p value
    };

    struct Object {
        bool isKnown = false;           ///< false: no library has its type
        std::vector<std::string> names; ///< of its inputs, in their order
        std::vector<Input> set;         ///< in the same order
    };

    std::vector<Object> objects; ///< as in the file
    std::size_t connectionCount = 0;
};

/// Makes, sets and connects the objects as `buildNetwork` does, and lets them go
/// unfinished. An object of unknown type is no fault but goes to \p unknown.
NetworkInputs readInputs(const NetworkFile& file, const std::vector<std::string>& overrides,
                         const std::vector<std::string>& missingLibraries, Faults& faults, Faults& unknown);

} // namespace Tarn
