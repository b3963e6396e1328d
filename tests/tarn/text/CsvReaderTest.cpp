#include <tarn/text/CsvReader.hpp>

#include <tarn/run/TableWriter.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace CsvReaderTest {

using Tarn::Faults;
using Tarn::parseCsv;
using Tarn::parseCsvRow;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::vector<std::string>> fieldsOf(const std::string& text)
{
    Faults faults{"cases.csv"};
    std::vector<std::vector<std::string>> rows;
    for (const Tarn::CsvRow& row : parseCsv(text, faults)) {
        rows.emplace_back();
        for (const Tarn::PlacedText& field : row)
            rows.back().push_back(field.text);
    }
    EXPECT_THAT(faults.lines(), IsEmpty());
    return rows;
}

std::vector<std::string> faultsOf(const std::string& text)
{
    Faults faults{"cases.csv"};
    parseCsv(text, faults);
    return faults.lines();
}

} // namespace

TEST(CsvReader, readsRowsOfFields)
{
    EXPECT_THAT(fieldsOf("a,b\n1,\n"), ElementsAre(ElementsAre("a", "b"), ElementsAre("1", "")));
    EXPECT_THAT(fieldsOf("a,b"), ElementsAre(ElementsAre("a", "b")));
    EXPECT_THAT(fieldsOf(","), ElementsAre(ElementsAre("", "")));
    EXPECT_THAT(fieldsOf(""), IsEmpty());
}

TEST(CsvReader, readsQuotedCommasQuotesAndLineBreaks)
{
    EXPECT_THAT(fieldsOf("\"a,b\",\"c\"\"d\"\n\"e\nf\",\"\"\n"),
                ElementsAre(ElementsAre("a,b", "c\"d"), ElementsAre("e\nf", "")));
}

TEST(CsvReader, readsWhatTheTableWriterWrites)
{
    const std::vector<std::string> texts{"plain", "", "a,b", "\"", "line\nbreak", "\r\n", "\xC3\xA4"};
    std::string line;
    for (const std::string& text : texts)
        line += (line.empty() ? "" : ",") + Tarn::TableWriter::field(text);
    EXPECT_THAT(fieldsOf(line + '\n'), ElementsAre(texts));
}

TEST(CsvReader, readsFilesOfSpreadsheets)
{
    EXPECT_THAT(fieldsOf("\xEF\xBB\xBF"
                         "a,b\r\n\r\n1,2\r\n"),
                ElementsAre(ElementsAre("a", "b"), ElementsAre("1", "2")));
}

TEST(CsvReader, keepsAQuotedEmptyTextInALineOfItsOwn)
{
    EXPECT_THAT(fieldsOf("a\n\"\"\n\nb\n"), ElementsAre(ElementsAre("a"), ElementsAre(""), ElementsAre("b")));
}

TEST(CsvReader, countsPlacesInCharacters)
{
    Faults faults{"cases.csv"};
    const std::vector<Tarn::CsvRow> rows = parseCsv("\"x\ny\",b\n\xC3\xA4,d\n", faults);
    EXPECT_EQ(rows.at(0).at(1).place, (Tarn::Place{2, 4}));
    EXPECT_EQ(rows.at(1).at(1).place, (Tarn::Place{3, 3}));
}

TEST(CsvReader, refusesMisplacedQuotes)
{
    EXPECT_THAT(
        faultsOf("a,b\"c\n"),
        ElementsAre("cases.csv:1:4: found a quote inside a field; quote the whole field and double quotes in it"));
    EXPECT_THAT(faultsOf("a\n\"b\"c,d\n"),
                ElementsAre("cases.csv:2:4: expected a comma or the end of the row after the closing quote"));
    EXPECT_THAT(faultsOf("a\nb,\"c\n"), ElementsAre("cases.csv:2:3: the quote is not closed"));
    EXPECT_THAT(faultsOf("\""), ElementsAre("cases.csv:1:1: the quote is not closed"));
}

TEST(CsvReader, refusesInvalidUtf8)
{
    EXPECT_THAT(faultsOf("a\nb\xFF\n"), ElementsAre("cases.csv:2:2: invalid UTF-8 from here on"));
}

TEST(CsvRow, isReadFromAnOption)
{
    EXPECT_THAT(*parseCsvRow("1,\"2,5\",,line\nbreak"), ElementsAre("1", "2,5", "", "line\nbreak"));
    EXPECT_THAT(*parseCsvRow(""), ElementsAre(""));
    EXPECT_EQ(parseCsvRow("1,\"2").reason(), "the quote is not closed, at character 3");
}

} // namespace CsvReaderTest
