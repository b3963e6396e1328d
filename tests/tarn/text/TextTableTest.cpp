#include <tarn/text/TextTable.hpp>

#include <gtest/gtest.h>

namespace TextTableTest {

using Tarn::TextTable;

TEST(TextTable, alignsItsColumnsByCharacters)
{
    TextTable table;
    table.add({"Größe", "1"});
    table.add({"a", "22", "x"});
    table.add({"", "3"});
    EXPECT_EQ(table.text("  "), "  Größe  1\n"
                                "  a      22  x\n"
                                "         3\n");
}

TEST(TextTable, hasNoTrailingBlanks)
{
    TextTable table;
    table.add({"long", "one"});
    table.add({"a", ""});
    EXPECT_EQ(table.text(""), "long  one\na\n");
    EXPECT_EQ(TextTable{}.text("  "), "");
}

} // namespace TextTableTest
