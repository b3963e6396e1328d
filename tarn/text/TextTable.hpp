#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// Rows of texts in columns that line up, for people to read.
class TextTable {
public:
    /// Adds a row; it may have fewer cells than others.
    void add(std::vector<std::string> cells);

    /// One line a row, each with \p indent in front and no blanks at its end.
    std::string text(const std::string& indent) const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace Tarn
