#include <tarn/network/GraphPicture.hpp>

#include <tarn/network/NetworkGraph.hpp>

#include "tarn/NetworkTexts.hpp"

#include <trellis/VActionNotifier.hpp>

#include <gmock/gmock.h>

#include <clocale>
#include <stdexcept>
#include <string>
#include <vector>

namespace GraphPictureTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string unescaped(std::string text)
{
    const std::pair<const char*, const char*> entities[] = {{"&lt;", "<"},  {"&gt;", ">"},  {"&quot;", "\""},
                                                            {"&#39;", "'"}, {"&#45;", "-"}, {"&#160;", " "},
                                                            {"&amp;", "&"}}; // must be last
    for (const auto& [entity, letter] : entities) {
        for (std::size_t at = 0; (at = text.find(entity, at)) != std::string::npos; ++at)
            text.replace(at, std::string(entity).size(), letter);
    }
    return text;
}

// Returns the value of an attribute of the element at the start of the text.
std::string attribute(const std::string& element, const std::string& name)
{
    const std::size_t start = element.find(' ' + name + "=\"") + name.size() + 3;
    return element.substr(start, element.find('"', start) - start);
}

// Returns the lines of text in the group of the picture called `title`.
std::vector<std::string> linesOf(const std::string& svg, const std::string& title)
{
    const std::size_t begin = svg.find("<title>" + title + "</title>");
    const std::string group = svg.substr(begin, svg.find("</g>", begin) - begin);
    std::vector<std::string> lines;
    std::string lastPlace;
    double lastX = 0;
    for (std::size_t at = 0; (at = group.find("<text ", at)) != std::string::npos; ++at) {
        const std::size_t start = group.find('>', at) + 1;
        const std::string text = unescaped(group.substr(start, group.find("</text>", at) - start));
        const std::string place = attribute(group.substr(at), "y");
        const double x = std::stod(attribute(group.substr(at), "x"));
        // Bold pieces further right at the same height continue the line.
        if (place == lastPlace && x > lastX && group.substr(at, start - at).find("bold") != std::string::npos)
            lines.back() += text;
        else
            lines.push_back(text);
        lastPlace = place;
        lastX = x;
    }
    return lines;
}

NetworkGraph named(const std::string& name)
{
    return {.objects = {{name, "Type", {"in"}, {"out"}}}, .connections = {}};
}

} // namespace

TEST(GraphPicture, showsNamesUnchanged)
{
    for (const std::string name :
         {"plain", "Größe 日本 😀", "<b>bold</b>", "\"quotes\"", "{x|y}", "&amp; &lt; &#65; &nope; &",
          "\\N \\G \\\\ \\", "</TABLE>>]", "<!-- -->", "a;b,c=d"}) {
        SCOPED_TRACE(name);
        EXPECT_THAT(linesOf(drawGraph(dotText(named(name)), PictureFormat::Svg), "object0"),
                    ElementsAre(name, "Type", "in", "out"));
    }
    EXPECT_THAT(linesOf(drawGraph(dotText(named("two\nlines")), PictureFormat::Svg), "object0"),
                ElementsAre("two", "lines", "Type", "in", "out"));
    EXPECT_THAT(linesOf(drawGraph(dotText(named("\x01\xFF")), PictureFormat::Svg), "object0"),
                ElementsAre("␁\uFFFD", "Type", "in", "out"));
}

TEST(GraphPicture, canBeDrawnWithEmptyParts)
{
    for (const std::string name : {"", " ", "\n", "\n\n"}) {
        SCOPED_TRACE(testing::PrintToString(name));
        const NetworkGraph graph{.objects = {{name, name, {name}, {name}}, {name, name, {}, {}}}, .connections = {}};
        EXPECT_THAT(drawGraph(dotText(graph), PictureFormat::Svg), HasSubstr("<title>object1</title>"));
    }
    EXPECT_THAT(drawGraph(dotText({}), PictureFormat::Svg), HasSubstr("</svg>"));
}

TEST(GraphPicture, showsConnectionsInTheirColours)
{
    NetworkGraph graph{.objects = {{"a", "A", {"in"}, {"out"}}}, .connections = {}};
    graph.connections.push_back({.output = {0, 0},
                                 .passesInputOn = false,
                                 .input = {0, 0},
                                 .member = "x & \"y\"",
                                 .type = "T",
                                 .colour = "#8080FF",
                                 .isImplicit = true});
    const std::string svg = drawGraph(dotText(graph), PictureFormat::Svg);
    EXPECT_THAT(svg, testing::ContainsRegex("<path fill=\"none\" stroke=\"#8080ff\" stroke-dasharray=\"5,2\""));
    EXPECT_THAT(svg, HasSubstr(">x &amp; &quot;y&quot;</text>"));
    EXPECT_THAT(linesOf(svg, "legend"), ElementsAre("T", "dashed: connected automatically"));
}

TEST(GraphPicture, warnsAboutUnknownColours)
{
    struct Log final : Orla::VActionNotifier {
        bool warned(const std::string& message) override
        {
            messages.push_back(message);
            return true;
        }
        std::vector<std::string> messages;
    };
    const auto log = Loam::makeStrong<Log>();
    Orla::VActionNotifier::add(log);
    NetworkGraph graph = named("a");
    graph.connections.push_back({.output = {0, 0},
                                 .passesInputOn = false,
                                 .input = {0, 0},
                                 .member = {},
                                 .type = "T",
                                 .colour = "blurple",
                                 .isImplicit = false});
    EXPECT_THAT(drawGraph(dotText(graph), PictureFormat::Svg), HasSubstr("</svg>"));
    EXPECT_THAT(log->messages, ElementsAre(HasSubstr("blurple is not a known color")));
}

TEST(GraphPicture, throwsWithAReasonInsteadOfOmittingAnything)
{
    try {
        drawGraph("digraph { a [label=<<B>>] }", PictureFormat::Svg);
        FAIL() << "the broken label was accepted";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("in label of node a"));
    }
    EXPECT_THROW(drawGraph("digraph {", PictureFormat::Png), std::runtime_error);
    // Earlier failures do not affect it.
    EXPECT_THAT(drawGraph("digraph { a }", PictureFormat::Svg), HasSubstr("</svg>"));
}

TEST(GraphPicture, isTheSameOnEveryRunAndInEveryLocale)
{
    const std::string dot = dotText(named("a"));
    const std::string svg = drawGraph(dot, PictureFormat::Svg);
    const std::string png = drawGraph(dot, PictureFormat::Png);
    EXPECT_TRUE(png.starts_with("\x89PNG\r\n"));
    EXPECT_EQ(drawGraph(dot, PictureFormat::Svg), svg);
    EXPECT_EQ(drawGraph(dot, PictureFormat::Png), png);
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
    EXPECT_EQ(drawGraph(dot, PictureFormat::Svg), svg);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(GraphPicture, isDrawnFromWholeNetworksWithoutADisplay)
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + clockInQuarters + object("reader", "TimeReader") + object("odd", "Misnamed")
                                 + object("l", "LocaleSetter"));
    const TarnProcess::Options options{.environment = {"LC_ALL=de_DE.UTF-8"},
                                       .shell = "unset DISPLAY WAYLAND_DISPLAY; cd '" + folder.path() + "'"};
    std::vector<std::string> pictures;
    for (const std::string name : {"one.svg", "two.svg", "one.png", "two.png"}) {
        const ProcessResult result = runTarn({"graph", "net.toml", "--output=" + name}, options);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "net.toml: 4 objects, 1 connection, drawn to " + name + "\n");
        pictures.push_back(contentOf(folder.file(name)));
    }
    EXPECT_EQ(pictures[0], pictures[1]);
    EXPECT_EQ(pictures[2], pictures[3]);
    EXPECT_TRUE(pictures[2].starts_with("\x89PNG\r\n"));
    EXPECT_THAT(linesOf(pictures[0], "object1"), ElementsAre("odd", "Misnamed", "\uFFFD<b>&", "amp;", "\"{in|x}\\", "N",
                                                             "</TABLE>", "␁&", "#65;", "\\"));
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "one.png", "one.svg", "two.png", "two.svg"));
}

} // namespace GraphPictureTest
