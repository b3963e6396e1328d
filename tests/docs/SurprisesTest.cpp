// Compares each row of the table of texts in docs/surprises.md with the behaviour of the
// types. The rows of the other tables name the tests that guard them; scripts/check-docs
// checks that these exist.

#include <trellis/VValueCreator.hpp>

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>

namespace SurprisesTest {

using namespace Orla;

namespace {

struct Row {
    std::string line;
    std::string type;
    std::string text;
    bool isRefused;
    std::string value; ///< text of the resulting value; given for a refused text only if the page shows it
    bool hasValue;
};

std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    for (std::size_t from = line.find("| "); from != std::string::npos;) {
        const std::size_t to = line.find(" |", from + 1);
        if (to == std::string::npos)
            break;
        cells.push_back(from + 2 < to ? line.substr(from + 2, to - from - 2) : "");
        from = to + 1;
    }
    return cells;
}

// Reads the text between the backticks of a cell. Returns false without backticks.
bool readCode(const std::string& cell, std::string& code)
{
    const std::size_t begin = cell.find('`');
    const std::size_t end = cell.rfind('`');
    if (begin == end)
        return false;
    code = cell.substr(begin + 1, end - begin - 1);
    return true;
}

std::vector<Row> rowsOfTheTable()
{
    std::ifstream page{SURPRISES};
    std::vector<Row> rows;
    std::string line;
    while (std::getline(page, line) && line != "<!-- texts -->")
        continue;
    std::getline(page, line);
    std::getline(page, line);
    while (std::getline(page, line) && !line.empty()) {
        const std::vector<std::string> cells = cellsOf(line);
        Row row{line, {}, {}, false, {}, false};
        if (cells.size() != 4 || !readCode(cells[0], row.type) || !readCode(cells[1], row.text))
            throw std::runtime_error{"invalid row: " + line};
        row.isRefused = cells[2].starts_with("refused");
        row.hasValue = readCode(cells[2], row.value) || cells[2] == "the empty text";
        if (!row.isRefused && !row.hasValue)
            throw std::runtime_error{"invalid row: " + line};
        rows.push_back(row);
    }
    return rows;
}

} // namespace

TEST(Surprises, matchTheTableOfTexts)
{
    // The types that networks can use without naming a library.
    void* const standard = dlopen(STANDARD_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(standard) << dlerror();
    const std::vector<Row> rows = rowsOfTheTable();
    EXPECT_THAT(rows, testing::SizeIs(testing::Ge(20u)));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        bool ok = false;
        const StrongPtr<VValueBase> value = VValueCreator::createValue(row.type, row.text, ok);
        EXPECT_TRUE(value) << "the type is not registered";
        EXPECT_EQ(ok, !row.isRefused);
        if (value && row.hasValue) {
            EXPECT_EQ(value->Text(), row.value);
        }
    }
    dlclose(standard);
}

TEST(Surprises, nameTheTestThatGuardsThem)
{
    std::ifstream page{SURPRISES};
    int rows = 0;
    bool isText = false;
    for (std::string line; std::getline(page, line);) {
        isText = line == "<!-- texts -->" || (isText && !line.empty());
        if (isText || !line.starts_with("| ") || line.starts_with("| behaviour |"))
            continue;
        ++rows;
        EXPECT_THAT(line, testing::HasSubstr("<!-- test: "));
    }
    EXPECT_GE(rows, 30);
}

} // namespace SurprisesTest
