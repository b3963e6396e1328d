#include <tarn/network/NetworkGraph.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace NetworkGraphTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

NetworkGraph::Connection connection(const std::string& type, const std::string& colour)
{
    return {.output = {0, 0},
            .passesInputOn = false,
            .input = {1, 0},
            .member = {},
            .type = type,
            .colour = colour,
            .isImplicit = false};
}

NetworkGraph pair(const std::vector<NetworkGraph::Connection>& connections)
{
    return {.objects = {{"one", "Source", {}, {"out"}}, {"two", "Drain", {"in"}, {}}}, .connections = connections};
}

// Returns the lines that draw connections, with the numbers of objects replaced by their
// names.
std::vector<std::string> connectionsOf(const std::string& dot)
{
    std::vector<std::string> names;
    std::vector<std::string> connections;
    for (std::size_t start = 0, end = 0; (end = dot.find('\n', start)) != std::string::npos; start = end + 1) {
        std::string line = dot.substr(start, end - start);
        const std::size_t bold = line.find("<B>");
        if (bold != std::string::npos)
            names.push_back(line.substr(bold + 3, line.find("</B>") - bold - 3));
        if (line.find(" -> ") == std::string::npos)
            continue;
        for (std::size_t number = names.size(); number-- > 0;) {
            const std::string mark = "object" + std::to_string(number) + ":";
            for (std::size_t at = 0; (at = line.find(mark)) != std::string::npos;)
                line.replace(at, mark.size(), names[number] + ":");
        }
        connections.push_back(line.substr(4));
    }
    return connections;
}

ProcessResult graph(const std::string& network, const std::string& output = "-")
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + network);
    return runTarn({"graph", "net.toml", "--output=" + output},
                   {.environment = {}, .shell = "cd '" + folder.path() + "'"});
}

} // namespace

TEST(NetworkGraph, drawsConnectionsOfTheFileAsSolidLines)
{
    const ProcessResult result =
        graph(clockInQuarters + object("a", "Adder", "connect = { a = 'clock.GlobalTime.time' }\n")
              + object("b", "Adder", "connect = { b = 'a.sum', a = 'b.sum' }\n"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "net.toml: 3 objects, 3 connections, drawn to standard output\n");
    EXPECT_THAT(connectionsOf(result.out),
                UnorderedElementsAre("clock:out0:e -> a:in0:w [color=\"green\", label=<time>]",
                                     "a:out0:e -> b:in1:w [color=\"green\"]", "b:out0:e -> b:in0:w [color=\"green\"]"));
    EXPECT_THAT(result.out, HasSubstr(">number</TD>")) << "the legend";
}

TEST(NetworkGraph, drawsAutomaticConnectionsAsDashedLines)
{
    const std::string dot =
        graph(clockInQuarters + object("reader", "TimeReader")
              + object("linked", "TimeReader", "connect = { time = 'clock.GlobalTime' }\n")
              + object("maker", "Chartmaker") + object("follower", "Follower") + object("listener", "Listener"))
            .out;
    EXPECT_THAT(connectionsOf(dot),
                UnorderedElementsAre("clock:out0:e -> reader:in0:w [color=\"#B8860B\", style=dashed]",
                                     "clock:out0:e -> linked:in0:w [color=\"#B8860B\"]",
                                     "maker:out0:e -> ChartSelector:in1:w [color=\"#C39BD3\", style=dashed]",
                                     "ChartSelector:out1:e -> follower:in0:w [color=\"#8E44AD\", style=dashed]",
                                     "InteractionSource:out0:e -> listener:in0:w [color=\"#E67E22\", style=dashed]"));
    EXPECT_THAT(dot, HasSubstr("<B>ChartSelector</B><BR/>VChartSelector</TD>"));
    EXPECT_THAT(dot, HasSubstr("<B>reader</B><BR/>TimeReader</TD>"));
    EXPECT_THAT(dot, HasSubstr(">maker.atlas</TD>"));
    EXPECT_THAT(dot, HasSubstr("dashed: connected automatically"));
}

TEST(NetworkGraph, drawsAProviderThatTheFileDoesNotName)
{
    const ProcessResult result = graph(object("reader", "TimeReader"));
    EXPECT_THAT(connectionsOf(result.out),
                ElementsAre("GlobalTime:out0:e -> reader:in0:w [color=\"#B8860B\", style=dashed]"));
}

TEST(NetworkGraph, hasOneLegendLinePerType)
{
    const std::string dot = dotText(pair({connection("double", "green"), connection("VTime", ""),
                                          connection("double", "green"), connection("Grid", "#abc")}));
    const std::size_t legend = dot.find("    legend [");
    ASSERT_NE(legend, std::string::npos);
    EXPECT_EQ(dot.substr(legend), "    legend [label=<<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"4\">"
                                  "<TR><TD BGCOLOR=\"#aabbcc\" WIDTH=\"24\"></TD><TD ALIGN=\"LEFT\">Grid</TD></TR>"
                                  "<TR><TD BGCOLOR=\"black\" WIDTH=\"24\"></TD><TD ALIGN=\"LEFT\">VTime</TD></TR>"
                                  "<TR><TD BGCOLOR=\"green\" WIDTH=\"24\"></TD><TD ALIGN=\"LEFT\">double</TD></TR>"
                                  "</TABLE>>]\n}\n");
    EXPECT_THAT(dotText(pair({})), Not(HasSubstr("legend")));
}

TEST(NetworkGraph, drawsInvalidColoursInBlack)
{
    const struct {
        const char* colour;
        const char* drawn;
    } cases[] = {
        {"", "black"},
        {"red", "red"},
        {"blue4", "blue4"},
        {"#8080FF", "#8080FF"},
        {"#8080ff80", "#8080ff80"},
        {"#f08", "#ff0088"},
        {"#12345", "black"},
        {"#12345g", "black"},
        {"red:blue", "black"},
        {"4blue", "black"},
        {"\"]; evil [x=\"", "black"},
    };
    for (const auto& [colour, drawn] : cases) {
        SCOPED_TRACE(colour);
        const std::string dot = dotText(pair({connection("T", colour)}));
        EXPECT_THAT(dot, HasSubstr("object0:out0:e -> object1:in0:w [color=\"" + std::string(drawn) + "\"]\n"));
        EXPECT_THAT(dot, HasSubstr("<TD BGCOLOR=\"" + std::string(drawn) + "\""));
    }
}

TEST(NetworkGraph, escapesNamesInLabels)
{
    const struct {
        const char* name;
        const char* label;
    } cases[] = {
        {"plain 'x' {a|b}", "plain 'x' {a|b}"},
        {"<b>\"&", "&lt;b&gt;&quot;&amp;"},
        {"a\nb", "a<BR/>b"},
        {"\x01\t\x7f", "␁␉␡"},
        {"\xFFä", "\uFFFDä"},
        {"&lt;", "&amp;<FONT FACE=\"sans-serif\">lt;</FONT>"},
        {"\\N\\", "\\<FONT FACE=\"sans-serif\">N</FONT>\\"},
        {"\\\\N", "\\<FONT FACE=\"sans-serif\">\\</FONT>N"},
        {"& a;", "&amp; a;"},
        {"a\u202eb", "a\\<FONT FACE=\"sans-serif\">u</FONT>202eb"},
    };
    for (const auto& [name, label] : cases) {
        SCOPED_TRACE(name);
        const std::string dot = dotText({.objects = {{name, name, {name}, {name}}}, .connections = {}});
        EXPECT_THAT(dot, HasSubstr("<B>" + std::string(label) + "</B><BR/>" + label + "</TD>"));
        EXPECT_THAT(dot, HasSubstr("PORT=\"in0\">" + std::string(label) + "</TD>"));
        EXPECT_THAT(dot, HasSubstr("PORT=\"out0\">" + std::string(label) + "</TD>"));
    }
}

TEST(NetworkGraph, requestsAFasterLayoutForLargeNetworks)
{
    NetworkGraph graph;
    graph.objects.resize(100, {"a", "A", {}, {}});
    EXPECT_THAT(dotText(graph), HasSubstr("graph [rankdir=LR]\n"));
    graph.objects.push_back(graph.objects[0]);
    EXPECT_THAT(dotText(graph), HasSubstr("graph [rankdir=LR, nslimit=1, nslimit1=1, mclimit=0.1]\n"));
    graph.objects.resize(MostLaidOutWell, graph.objects[0]);
    EXPECT_THAT(dotText(graph), Not(HasSubstr("splines=line")));
    graph.objects.push_back(graph.objects[0]);
    EXPECT_THAT(dotText(graph), HasSubstr("graph [rankdir=LR, newrank=true, nslimit=0, nslimit1=0, mclimit=0.01, "
                                          "splines=line]\n"));
}

} // namespace NetworkGraphTest
