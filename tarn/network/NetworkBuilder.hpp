#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/network/NetworkFile.hpp>

#include <trellis/VObject.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
#include <vector>

namespace Tarn {

/// A network built from its file.
struct Network {
    /// A column of the table of results.
    struct Column {
        std::string title;
        Orla::StrongPtr<Orla::VSlot> output;
        std::string member; ///< a component of the value, or empty for the whole value
    };

    std::size_t objectCount = 0;
    std::size_t connectionCount = 0;
    std::vector<Orla::StrongPtr<Orla::VSlot>> connected; ///< the inputs that the file connects
    std::vector<Column> columns;
};

/// Creates the objects of \p file in file order, sets their inputs, applies \p overrides
/// (`OBJECT.SLOT=TEXT`), connects the objects and finishes them. Faults about unknown types
/// list \p missingLibraries.
///
/// If there are any \p faults, including earlier ones, no object is finished and all are
/// destroyed on return. An exception from a set-up function is a fault too, found last;
/// finished objects then stay in the registry. In both cases the network is empty.
Network buildNetwork(const NetworkFile& file, const std::vector<std::string>& overrides,
                     const std::vector<std::string>& missingLibraries, Faults& faults);

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
