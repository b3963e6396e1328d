#pragma once

#include <tarn/text/Faults.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Tarn {

struct NetworkContent;

/// One difference between two networks.
struct NetworkDifference {
    enum class Kind {
        Library,     ///< a library is named in only one of them
        Chart,       ///< another chart for the whole network
        Time,        ///< another object provides the time
        Object,      ///< an object is in only one of them, or has another type
        Name,        ///< an object was renamed
        Input,       ///< an input has another value or reads another output
        Entry,       ///< an entry of an object whose type is unknown differs
        Column,      ///< a column is in only one of them, or has another value
        ColumnOrder, ///< the columns that both have are in another order
    };

    /// What one of the networks has.
    struct Side {
        Place place; ///< empty if its file does not mention it

        /// A name, the names of types or columns, or the texts that produce a value; for an
        /// `Entry`, its TOML.
        std::vector<std::string> texts;

        std::string reads;        ///< the output that an input or column reads; empty for a value
        bool isAutomatic = false; ///< connected automatically, not by the file

        friend bool operator==(const Side&, const Side&) = default;
    };

    Kind kind;
    std::string object; ///< its name in the first network that has it
    std::string part;   ///< the input, the key of the entry or the title of the column
    std::optional<Side> before;
    std::optional<Side> after;
    Place owner; ///< of the object in the second network, else in the first
};

/// Returns what turns \p before into \p after: libraries, chart and time; objects that were
/// removed, in the order of \p before; objects that were added or changed, in the order of
/// \p after; columns.
///
/// The order of objects and inputs does not matter. A removed object and an added one of the
/// same type with the same inputs are one renamed object, and references to its new name are
/// equal to those to its old name. Automatic connections are compared if both networks are
/// complete, but not those from an object that is in only one of them, which are a consequence.
std::vector<NetworkDifference> differencesBetween(const NetworkContent& before, const NetworkContent& after);

} // namespace Tarn
