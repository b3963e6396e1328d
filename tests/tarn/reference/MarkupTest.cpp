#include <tarn/reference/Markup.hpp>

#include <gmock/gmock.h>

#include <string>

namespace MarkupTest {

using namespace Tarn;
using testing::HasSubstr;
using testing::Not;

TEST(Markup, showsMarkupInTextsLiterally)
{
    const struct {
        const char* text;
        const char* html;
        const char* markdown;
    } cases[] = {
        {"", "", ""},
        {"Plain text, with marks: 1.5 (km)!", "Plain text, with marks: 1.5 (km)!", "Plain text, with marks: 1.5 (km)!"},
        {"<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;", "&lt;script&gt;alert(1)&lt;/script&gt;"},
        {"a & \"b\"", "a &amp; &quot;b&quot;", "a &amp; \"b\""},
        {"*a* _b_ `c` ~d~ $e$", "*a* _b_ `c` ~d~ $e$", "\\*a\\* \\_b\\_ \\`c\\` \\~d\\~ \\$e\\$"},
        {"[a](b) | ![c](d)", "[a](b) | ![c](d)", "\\[a\\](b) \\| !\\[c\\](d)"},
        {"# a", "# a", "\\# a"},
        {"- a", "- a", "\\- a"},
        {"12. a - b", "12. a - b", "12\\. a - b"},
        {"1) a", "1) a", "1\\) a"},
        {"=", "=", "\\="},
        {" a\n\n b\t\tc ", "a b c", "a b c"},
        {"\x1b[31m", "\\x1b[31m", "\\\\x1b\\[31m"},
        {"\xff", "\\xff", "\\\\xff"},
        {"\u202e", "\\u202e", "\\\\u202e"},
        {"M\u00f6we", "M\u00f6we", "M\u00f6we"},
    };
    for (const auto& [text, html, markdown] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(htmlMarkup().text(text), html);
        EXPECT_EQ(markdownMarkup().text(text), markdown);
    }
}

TEST(Markup, writesCodeThatEndsWhereTheTextEnds)
{
    const struct {
        const char* text;
        const char* html;
        const char* markdown;
    } cases[] = {
        {"", "", ""},
        {"a_b", "<code>a_b</code>", "`a_b`"},
        {"<b>", "<code>&lt;b&gt;</code>", "`<b>`"},
        {"a`b", "<code>a`b</code>", "``a`b``"},
        {"``", "<code>``</code>", "``` `` ```"},
        {" ", "<code> </code>", "\" \""},
        {"a|b", "<code>a|b</code>", "a\\|b"},
        {"a\nb", "<code>a\\nb</code>", "a\\\\nb"},
    };
    for (const auto& [text, html, markdown] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(htmlMarkup().code(text), html);
        EXPECT_EQ(markdownMarkup().code(text), markdown);
    }
}

TEST(Markup, linksToPagesOfTheSameFormat)
{
    EXPECT_EQ(htmlMarkup().link("Heater", "in-power", "x"), "<a href=\"Heater.html#in-power\">x</a>");
    EXPECT_EQ(htmlMarkup().link("Heater", "", "x"), "<a href=\"Heater.html\">x</a>");
    EXPECT_EQ(markdownMarkup().link("Heater", "in-power", "x"), "[x](Heater.md)");
}

TEST(Markup, linksToAddressesOfTheWebOnly)
{
    EXPECT_EQ(htmlMarkup().webLink("https://a.org/?b=1&c=\"d\""),
              "<a href=\"https://a.org/?b=1&amp;c=%22d%22\">https://a.org/?b=1&amp;c=&quot;d&quot;</a>");
    EXPECT_EQ(markdownMarkup().webLink("http://a.org/(b) \xc3\xb6"),
              "[http://a.org/(b) \u00f6](http://a.org/%28b%29%20%C3%B6)");
    EXPECT_EQ(htmlMarkup().webLink("javascript:alert(1)"), "javascript:alert(1)");
    EXPECT_EQ(markdownMarkup().webLink("JavaScript:x"), "JavaScript:x");
}

TEST(Markup, writesTablesWithTheTitlesForNarrowScreens)
{
    EXPECT_EQ(htmlMarkup().table({"A", "B"}, {{"in-a", {"1", "2"}}, {"", {"3", "4"}}}),
              "<table>\n<thead><tr><th scope=\"col\">A</th><th scope=\"col\">B</th></tr></thead>\n<tbody>\n"
              "<tr id=\"in-a\"><td data-title=\"A\">1</td><td data-title=\"B\">2</td></tr>\n"
              "<tr><td data-title=\"A\">3</td><td data-title=\"B\">4</td></tr>\n</tbody>\n</table>\n");
    EXPECT_EQ(markdownMarkup().table({"A", "B"}, {{"in-a", {"1", "2"}}}), "| A | B |\n|---|---|\n| 1 | 2 |\n\n");
}

TEST(Markup, fencesNetworksThatContainFences)
{
    EXPECT_EQ(markdownMarkup().network("a = '```'\n"), "````toml\na = '```'\n````\n\n");
    EXPECT_EQ(htmlMarkup().network("a = '</code>'\n"), "<pre><code>a = '&lt;/code&gt;'\n</code></pre>\n");
}

TEST(Markup, writesPagesWithAStyleAndWithoutScripts)
{
    const std::string page = htmlMarkup().page("<b>", "BODY");
    EXPECT_THAT(page, HasSubstr("<title>&lt;b&gt;</title>"));
    EXPECT_THAT(page, HasSubstr("<link rel=\"stylesheet\" href=\"manual.css\">"));
    EXPECT_THAT(page, HasSubstr("<body>\nBODY</body>"));
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_EQ(markdownMarkup().page("x", "a\n\n"), "a\n");
}

} // namespace MarkupTest
