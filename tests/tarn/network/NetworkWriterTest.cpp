#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/NetworkWriter.hpp>

#include <gmock/gmock.h>

#include <string>

namespace NetworkWriterTest {

using namespace Tarn;
using testing::IsEmpty;

namespace {

/// Reads a network and writes it again. Only the type "Known" is known.
std::string again(const std::string& text)
{
    Faults faults{"net"};
    const NetworkFile file = parseNetwork(text, faults, [](const std::string& type) { return type == "Known"; });
    EXPECT_THAT(faults.lines(), IsEmpty());
    return networkText(file);
}

} // namespace

TEST(NetworkWriter, writesEverythingInAFixedOrderAndSpelling)
{
    const std::string written = R"toml(format = 1
libraries = ["b", "a"]
chart = "polar \"N\""

[[object]]
name = "say \"ä\"\n"
type = "Known"
set.number = 4.5
set.text = "4.5"
set.truth = true
set."in.a=b" = -0.0
set.shown = { text = "(0.1)", exact = "(0.12345678)" }
set.steps = { text = "", exact = ["a", "b\t"] }
set.unreadable = { exact = "c" }
connect.a = "say \"ä\"\n.out.range"

[[object]]
name = "bare"
type = "Known"

[[column]]
title = ""
value = "bare.out"
)toml";
    EXPECT_EQ(again(R"toml(# A comment
chart = 'polar "N"'
column = [ { value = "bare.out", title = '' } ]
libraries = [ 'b',
              "a" ] # another one
format = 0x1

[[object]]
connect.a = "say \"\u00e4\"\n.out.range"
type = 'Known'
name = """
say "ä"
"""
[object.set]
number = 4.50
text = '4.5'
truth = true
'in.a=b' = -0.0
shown = { exact = "(0.12345678)", text = "(0.1)" }
steps = { text = "", exact = ["a", "b\u0009"] }
unreadable = { exact = ["c"] }

[[object]]
set = {}
type = 'Known'
name = 'bare'
)toml"),
              written);
    EXPECT_EQ(again(written), written);
}

TEST(NetworkWriter, writesAnEmptyNetwork)
{
    EXPECT_EQ(again("format = 1\nlibraries = []\nobject = []\ncolumn = []\n"), "format = 1\n");
}

TEST(NetworkWriter, writesOrdinaryObjectsTheSameForKnownAndUnknownTypes)
{
    const auto network = [](const std::string& type) {
        return "format = 1\n\n[[object]]\nname = \"a\"\ntype = \"" + type
               + "\"\nset.x = 5\nset.y = { text = \"a\", exact = \"b\" }\nconnect.z = \"a.b\"\n";
    };
    EXPECT_EQ(again(network("Known")), network("Known"));
    EXPECT_EQ(again(network("Strange")), network("Strange"));
}

} // namespace NetworkWriterTest
