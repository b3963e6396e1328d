#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Loam {
class OutputFile;
}

namespace Tarn {

/// Writes a table as comma-separated values (RFC 4180, but lines end in LF). A field with a
/// comma, a quote or a line break is quoted, with quotes in it doubled.
class TableWriter {
public:
    /// With \p isTerminal, control characters in the fields are escaped, so texts from data
    /// cannot control the terminal that shows the table.
    explicit TableWriter(Loam::OutputFile& output, bool isTerminal = false) noexcept
        : m_output{output}, m_isTerminal{isTerminal}
    {
    }

    /// Adds a row. A stream receives it immediately and in one piece.
    /// \throw Loam::FileError
    void writeRow(const std::vector<std::string>& fields);

    /// Returns \p text as a field.
    static std::string field(std::string_view text);

private:
    Loam::OutputFile& m_output;
    bool m_isTerminal;
};

} // namespace Tarn
