#pragma once

#include <tarn/network/OutputReference.hpp>

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

    std::size_t objectCount = 0;
    std::vector<Orla::StrongPtr<Orla::VSlot>> connected; ///< the inputs that the file connects
    std::vector<Column> columns;
};

} // namespace Tarn
