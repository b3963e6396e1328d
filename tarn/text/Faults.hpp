#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {

/// Where something stands in a file, counted from 1; 0 for nowhere.
struct Place {
    std::uint32_t line = 0;
    std::uint32_t column = 0;

    explicit operator bool() const noexcept { return line != 0; }
    friend auto operator<=>(const Place&, const Place&) = default;
};

/// A piece of text and where it stands in the file.
struct PlacedText {
    std::string text;
    Place place;
};

/// What is wrong with a saved network: everything, not just the first fault.
class Faults {
public:
    /// \p file is what messages call the network's file.
    explicit Faults(std::string file);

    const std::string& file() const noexcept { return m_file; }

    /// A fault in the file.
    void add(Place place, const std::string& message);

    /// A fault that has no place in the file, as one of the command line.
    void add(const std::string& message) { add(Place{}, message); }

    bool empty() const noexcept { return m_faults.empty(); }
    std::size_t size() const noexcept { return m_faults.size(); }

    /// One text a fault, `FILE:LINE:COLUMN: MESSAGE`, by place; those without a
    /// place come last.
    std::vector<std::string> lines() const;

private:
    struct Fault {
        Place place;
        std::string message;
    };

    std::string m_file;
    std::vector<Fault> m_faults;
};

} // namespace Tarn
