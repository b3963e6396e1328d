#pragma once

#include <tarn/network/OutputReference.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VSlot.hpp>

#include <cstddef>
#include <string>
#include <unordered_map>
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
        Place place;                                   ///< of the text; empty if it is from the command line
        std::string description;                       ///< names the option that set it; empty to name object and input
        Orla::StrongPtr<Orla::VValueBase> wanted = {}; ///< null for the initial value of the input
    };

    /// A text that replaced those of the file.
    struct Override {
        std::size_t object = 0;
        std::string input;
        std::string text;
    };

    std::size_t objectCount = 0;
    std::vector<Loam::WeakPtrImpl<Orla::VObject>> objects; ///< in file order

    /// The values that objects declare for the inputs that were set, by address of the input.
    std::unordered_map<const Orla::VSlot*, Orla::StrongPtr<Orla::VValueBase>> declared;

    std::vector<Override> overrides;
    std::vector<Orla::StrongPtr<Orla::VSlot>> connected; ///< the inputs that the file connects
    std::vector<Column> columns;
    std::vector<Choice> choices;
};

} // namespace Tarn
