#include <tarn/text/TextTable.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Tarn {

void TextTable::add(std::vector<std::string> cells)
{
    m_rows.push_back(std::move(cells));
}

std::string TextTable::text(const std::string& indent) const
{
    std::vector<std::size_t> widths;
    for (const std::vector<std::string>& row : m_rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], Loam::countCharacters(row[i]));
    }
    std::string text;
    for (const std::vector<std::string>& row : m_rows) {
        std::string line = indent;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - Loam::countCharacters(row[i]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace Tarn
