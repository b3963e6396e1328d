#include <tarn/run/StatusText.hpp>

#include <fathom/VObjectStatus.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace StatusTextTest {

using namespace Tarn;
using Orla::StatusIndicator;

TEST(StatusText, hasTheSeverityOfTheMarkupAroundIt)
{
    const struct {
        const char* text;
        Severity severity;
    } cases[] = {
        {"", Severity::Information},
        {"abc", Severity::Information},
        {"<FONT COLOR=magenta>abc</FONT>", Severity::Warning},
        {"<FONT COLOR=magenta></FONT>", Severity::Warning},
        {"<FONT COLOR=red>abc</FONT>", Severity::Error},
        {"<FONT COLOR=red></FONT>", Severity::Error},
        {"<FONT COLOR=red>abc", Severity::Information},
        {"abc</FONT>", Severity::Information},
        {"<FONT COLOR=green>abc</FONT>", Severity::Information},
        {"so <FONT COLOR=red>abc</FONT>", Severity::Information},
    };
    for (const auto& [text, severity] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(severityOf(text), severity);
    }
}

TEST(StatusText, isPlainWithoutMarkup)
{
    const struct {
        const char* text;
        const char* plain;
    } cases[] = {
        {"", ""},
        {"plain, 100%", "plain, 100%"},
        {"<FONT COLOR=red>abc</FONT>", "abc"},
        {"<FONT COLOR=magenta></FONT>", ""},
        {"one<BR>two<br/>three<Br >four<BRANCH>", "one\ntwo\nthree\nfour"},
        {"<A HREF=\"a>b\">link</A>", "link"},
        {"<A HREF='a>b'>link</A>", "link"},
        {"<A HREF=\"a>link", "link"},
        {"it's <b>don't</b>", "it's don't"},
        {"<don't> >", " >"},
        {"<don't>it isn't>", "it isn't>"},
        {"<!-- aside -->x", "x"},
        {"1 < 2 > 1", "1 < 2 > 1"},
        {"<3 </3> <> </> <", "<3 </3> <> </> <"},
        {"<b", "<b"},
        {"a > b <c", "a > b <c"},
        {"&lt;b&gt; &amp;amp; &quot;&apos;&nbsp;.", "<b> &amp; \"' ."},
        {"&#65;&#x42;&#X43;", "ABC"},
        {"&#9;&#10;|", "\t\n|"},
        {"&#xe9;&#x20AC;&#x1F600;&#x10FFFF;", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
        {"a & b && c; &lt &unknown; &; &#; &#x;", "a & b && c; &lt &unknown; &; &#; &#x;"},
        {"&#0; &#27; &#x7F; &#x9B; &#xD800; &#x110000; &#99999999999;",
         "&#0; &#27; &#x7F; &#x9B; &#xD800; &#x110000; &#99999999999;"},
        {"&#-65; &#6 5; &#x-1;", "&#-65; &#6 5; &#x-1;"},
        {"&&lt;", "&<"},
    };
    for (const auto& [text, plain] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(plainText(text), plain);
    }
}

TEST(StatusText, keepsBytesThatAreNotMarkup)
{
    const std::string text("a\0<b>b\0</b>\xFF\xC3(\x1B", 15);
    EXPECT_EQ(plainText(text), std::string("a\0b\0\xFF\xC3(\x1B", 8));
}

TEST(StatusText, showsEscapedTextLiterally)
{
    for (const char* text : {"<FONT COLOR=red>x</FONT>", "a&lt;b", "&#65;", "<BR>", "a & b", "&amp;amp;"}) {
        SCOPED_TRACE(text);
        const std::string escaped = StatusIndicator::escaped(text);
        EXPECT_EQ(plainText(escaped), text);
        EXPECT_EQ(severityOf(escaped), Severity::Information);
    }
}

TEST(StatusText, mayBeLong)
{
    constexpr std::size_t Count = 200'000;
    const auto repeated = [](const std::string& piece) {
        std::string text;
        for (std::size_t i = 0; i < Count; ++i)
            text += piece;
        return text;
    };
    // Searching the rest of the text for the end of each tag would take very long.
    for (const char* piece : {"<", "<a", "<a='", "&", "&#", "\""}) {
        SCOPED_TRACE(piece);
        EXPECT_EQ(plainText(repeated(piece)), repeated(piece));
        EXPECT_EQ(plainText("<b>" + repeated(piece)), repeated(piece));
    }
    EXPECT_EQ(plainText(repeated("<b>x</b>")), repeated("x"));
    EXPECT_EQ(plainText(repeated("<") + "<b>"), repeated("<"));
}

} // namespace StatusTextTest
