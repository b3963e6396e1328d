#pragma once

#include <tarn/Export.hpp>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {

/// A position in a file, counted from 1; empty if the line is 0.
struct Place {
    std::uint32_t line = 0;
    std::uint32_t column = 0;

    explicit operator bool() const noexcept { return line != 0; }
    friend auto operator<=>(const Place&, const Place&) = default;
};

/// What a fault is about.
enum class FaultKind : std::uint8_t {
    Syntax,     ///< the text is not TOML or not UTF-8
    Content,    ///< the entries are not those of a network
    Library,    ///< a library cannot be loaded
    Type,       ///< no library has the object type, or several have
    Object,     ///< an object cannot be created, named or set up
    Input,      ///< an input does not exist or refuses its text
    Connection, ///< an output does not exist or does not fit the input
    Column,     ///< a column names a component that does not exist
    Chart,      ///< no object depends on a chart or offers the wanted one
    Time,       ///< the time has no steps or too many
    Event,      ///< an entry in a script of events
    Option      ///< a setting from outside the file
};

struct Fault {
    FaultKind kind;
    Place place; ///< in the file; empty if the fault is not in it
    std::string message;
};

/// Collects all faults of a saved network, not just the first.
class TARN_API Faults {
public:
    /// \p file is the name of the network's file in messages.
    explicit Faults(std::string file);

    const std::string& file() const noexcept { return m_file; }

    /// Adds a fault in the file.
    void add(FaultKind kind, Place place, const std::string& message);

    /// Adds a fault without a place in the file, such as one on the command line.
    void add(FaultKind kind, const std::string& message) { add(kind, Place{}, message); }

    bool empty() const noexcept { return m_faults.empty(); }
    std::size_t size() const noexcept { return m_faults.size(); }

    /// Returns all faults, in the order in which they were found.
    const std::vector<Fault>& all() const noexcept { return m_faults; }

    /// Returns one line per fault, `FILE:LINE:COLUMN: MESSAGE`, sorted by place. Faults
    /// without a place are bare messages and come last. Of many similar faults, the first
    /// ones are listed and the others are counted in lines at the end.
    std::vector<std::string> lines() const;

private:
    std::string m_file;
    std::vector<Fault> m_faults;
};

} // namespace Tarn
