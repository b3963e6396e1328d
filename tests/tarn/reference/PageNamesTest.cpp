#include <tarn/reference/PageNames.hpp>

#include <gtest/gtest.h>

#include <string>

namespace PageNamesTest {

using Tarn::PageNames;

TEST(PageNames, keepSafeCharactersAndReplaceOthers)
{
    const struct {
        std::string name;
        std::string expected;
    } cases[] = {
        {"QuakeFilter", "QuakeFilter"},
        {"a_b2", "a_b2"},
        {"quakes:Filter", "quakes-Filter"},
        {"../../etc/passwd", "etc-passwd"},
        {"a.b", "a-b"},
        {"M\u00f6we", "M-we"},
        {"\u6d77", "unnamed"},
        {"", "unnamed"},
        {"..", "unnamed"},
        {"\xff\n", "unnamed"},
        {"CON", "CON_"},
        {"lpt1", "lpt1_"},
        {std::string(300, 'x'), std::string(100, 'x')},
    };
    for (const auto& [name, expected] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(PageNames{}.add(name), expected);
    }
}

TEST(PageNames, differInMoreThanCase)
{
    PageNames names;
    names.reserve("Index");
    EXPECT_EQ(names.add("index"), "index-2");
    EXPECT_EQ(names.add("Range"), "Range");
    EXPECT_EQ(names.add("range"), "range-2");
    EXPECT_EQ(names.add("RANGE"), "RANGE-3");
    EXPECT_EQ(names.add("range-2"), "range-2-2");
    EXPECT_EQ(names.add("a/b"), "a-b");
    EXPECT_EQ(names.add("a.b"), "a-b-2");
}

} // namespace PageNamesTest
