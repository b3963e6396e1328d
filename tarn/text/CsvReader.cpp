#include <tarn/text/CsvReader.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <utility>

namespace Tarn {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

class Reader {
public:
    Reader(std::string_view text, Faults& faults, bool hasLines) noexcept
        : m_text{text}, m_faults{faults}, m_hasLines{hasLines}
    {
        if (text.starts_with(ByteOrderMark))
            m_position = m_lineStart = ByteOrderMark.size();
    }

    bool isAtEnd() const noexcept { return m_position == m_text.size(); }

    CsvRow row()
    {
        CsvRow fields;
        do
            fields.push_back(m_text.substr(m_position).starts_with('"') ? quotedField() : plainField());
        while (skip(","));
        if (!isAtEnd())
            skipLineEnd();
        return fields;
    }

    // Returns false if the line is not empty.
    bool skipEmptyLine() { return m_hasLines && isAtLineEnd() && skipLineEnd(); }

private:
    bool skip(std::string_view expected) noexcept
    {
        const bool found = m_text.substr(m_position).starts_with(expected);
        if (found)
            m_position += expected.size();
        return found;
    }

    bool isAtLineEnd() const noexcept
    {
        const std::string_view rest = m_text.substr(m_position);
        return rest.starts_with('\n') || rest.starts_with("\r\n");
    }

    bool skipLineEnd() noexcept
    {
        skip("\r");
        const bool found = skip("\n");
        startLine();
        return found;
    }

    void startLine() noexcept
    {
        ++m_line;
        m_lineStart = m_position;
    }

    Place here() const noexcept
    {
        const std::size_t before = Loam::countCharacters(m_text.substr(m_lineStart, m_position - m_lineStart));
        return {m_line, static_cast<std::uint32_t>(1 + before)};
    }

    bool isAtFieldEnd() const noexcept
    {
        return isAtEnd() || m_text[m_position] == ',' || (m_hasLines && isAtLineEnd());
    }

    PlacedText plainField()
    {
        PlacedText field{{}, here()};
        while (!isAtFieldEnd()) {
            if (m_text[m_position] == '"')
                m_faults.add(FaultKind::Syntax, here(),
                             "found a quote inside a field; quote the whole field and double quotes in it");
            field.text += m_text[m_position++];
        }
        return field;
    }

    PlacedText quotedField()
    {
        PlacedText field{{}, here()};
        ++m_position;
        while (!isAtEnd() && (m_text[m_position] != '"' || m_text.substr(m_position).starts_with("\"\""))) {
            if (m_text[m_position] == '"')
                ++m_position;
            field.text += m_text[m_position];
            if (m_text[m_position++] == '\n')
                startLine();
        }
        if (!skip("\"")) {
            m_faults.add(FaultKind::Syntax, field.place, "the quote is not closed");
        } else if (!isAtFieldEnd()) {
            m_faults.add(FaultKind::Syntax, here(), "expected a comma or the end of the row after the closing quote");
            field.text += plainField().text;
        }
        return field;
    }

    std::string_view m_text;
    Faults& m_faults;
    bool m_hasLines;
    std::size_t m_position = 0;
    std::size_t m_lineStart = 0;
    std::uint32_t m_line = 1;
};

} // namespace

std::vector<CsvRow> parseCsv(std::string_view text, Faults& faults)
{
    if (const std::size_t invalid = Loam::findInvalidUtf8(text); invalid != std::string_view::npos) {
        faults.add(FaultKind::Syntax, placeAt(text, invalid), "invalid UTF-8 from here on");
        return {};
    }
    std::vector<CsvRow> rows;
    Reader reader{text, faults, true};
    while (!reader.isAtEnd()) {
        if (!reader.skipEmptyLine())
            rows.push_back(reader.row());
    }
    return rows;
}

Loam::Result<std::vector<std::string>> parseCsvRow(std::string_view text)
{
    Faults faults{{}};
    std::vector<std::string> texts;
    for (PlacedText& field : Reader{text, faults, false}.row())
        texts.push_back(std::move(field.text));
    if (faults.empty())
        return texts;
    const Fault& first = faults.all().front();
    return Loam::Failure{first.message + ", at character " + std::to_string(first.place.column)};
}

} // namespace Tarn
