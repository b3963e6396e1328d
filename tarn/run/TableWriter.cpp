#include <tarn/run/TableWriter.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/OutputFile.hpp>

namespace Tarn {

std::string TableWriter::field(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos)
        return std::string(text);
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter;
        if (letter == '"')
            quoted += '"';
    }
    return quoted + '"';
}

void TableWriter::writeRow(const std::vector<std::string>& fields)
{
    std::string row;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            row += ',';
        row += field(m_isTerminal ? onOneLine(fields[i]) : fields[i]);
    }
    row += '\n';
    m_output.write(row);
    if (m_output.isStream())
        m_output.flush();
}

} // namespace Tarn
