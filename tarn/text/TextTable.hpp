#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// A table of texts with aligned columns.
class TextTable {
public:
    /// Adds a row, which may have fewer cells than others.
    void add(std::vector<std::string> cells);

    /// Returns one line per row, prefixed with \p indent and without trailing blanks.
    std::string text(const std::string& indent) const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace Tarn
