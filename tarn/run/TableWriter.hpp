#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Loam {
class OutputFile;
}

namespace Tarn {

/// Writes a table as comma-separated values (RFC 4180, lines end in LF): a field
/// with a comma, a quote or a line break stands in quotes, quotes in it doubled.
class TableWriter {
public:
    explicit TableWriter(Loam::OutputFile& output) noexcept : m_output{output} {}

    /// Adds a row. A stream gets it at once and as a whole.
    /// \throw Loam::FileError
    void writeRow(const std::vector<std::string>& fields);

    /// \p text as a field.
    static std::string field(std::string_view text);

private:
    Loam::OutputFile& m_output;
};

} // namespace Tarn
