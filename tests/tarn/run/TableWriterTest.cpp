#include <tarn/run/TableWriter.hpp>

#include <loam/OutputFile.hpp>

#include "tarn/TarnProcess.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace TableWriterTest {

using namespace Tarn;

TEST(TableWriter, quotesFieldsThatWouldBreakTheTable)
{
    const struct {
        const char* text;
        const char* field;
    } cases[] = {
        {"plain text", "plain text"},
        {"", ""},
        {" blanks stay ", " blanks stay "},
        {"a,b", "\"a,b\""},
        {"say \"so\"", "\"say \"\"so\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"two\r\nlines", "\"two\r\nlines\""},
        {"\"", "\"\"\"\""},
        {"1;5", "1;5"},
        {"größe", "größe"},
    };
    for (const auto& [text, field] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(TableWriter::field(text), field);
    }
}

TEST(TableWriter, endsRowsWithALineFeed)
{
    const TestFolder folder;
    Loam::OutputFile output{folder.file("table.csv")};
    TableWriter table{output};
    table.writeRow({"step", "a"});
    table.writeRow({"0", "b,c"});
    output.commit();
    EXPECT_EQ(contentOf(folder.file("table.csv")), "step,a\n0,\"b,c\"\n");
}

TEST(TableWriter, escapesControlCharactersOnlyForATerminal)
{
    const TestFolder folder;
    for (const bool isTerminal : {false, true}) {
        Loam::OutputFile output{folder.file("table.csv")};
        TableWriter{output, isTerminal}.writeRow({"\x1b[31m,", "\u202e\\"});
        output.commit();
        EXPECT_EQ(contentOf(folder.file("table.csv")),
                  isTerminal ? "\"\\x1b[31m,\",\\u202e\\\n" : "\"\x1b[31m,\",\u202e\\\n");
    }
}

TEST(TableWriter, writesEachRowToAStreamImmediately)
{
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
    Loam::OutputFile output{ends[1], "the pipe"};
    TableWriter table{output};
    table.writeRow({"0", "b"});
    char row[16];
    ASSERT_EQ(::read(ends[0], row, sizeof row), 4);
    EXPECT_EQ(std::string(row, 4), "0,b\n");
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace TableWriterTest
