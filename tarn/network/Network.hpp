#pragma once

#include <tarn/network/OutputReference.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VSlot.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// A network built from its file.
struct Network {
    /// A column of the table of results.
    struct Column {
        std::string title;
        OutputReference output;
    };

    /// A selection that was set by a text.
    struct Choice {
        Orla::StrongPtr<Orla::VSlot> input;
        Place place; ///< of the text; empty if it is from the command line
        std::string description;
    };

    std::size_t objectCount = 0;
    std::vector<Orla::StrongPtr<Orla::VSlot>> connected; ///< the inputs that the file connects
    std::vector<Column> columns;
    std::vector<Choice> choices;
};

} // namespace Tarn
