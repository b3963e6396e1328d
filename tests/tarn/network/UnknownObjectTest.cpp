#include <tarn/network/UnknownObject.hpp>

#include <tarn/text/TomlTable.hpp>

#include <gmock/gmock.h>

#include <optional>
#include <string>

namespace UnknownObjectTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Keeps the object with the given lines.
NetworkFile::Object keep(const std::string& lines, Faults& faults)
{
    NetworkFile::Object object;
    object.description = "object \"odd\"";
    const std::optional<toml::table> table = parseToml(lines, faults);
    if (table)
        keepUnknown(object, *table, faults);
    return object;
}

NetworkFile::Object keep(const std::string& lines)
{
    Faults faults{"net"};
    NetworkFile::Object object = keep(lines, faults);
    EXPECT_THAT(faults.lines(), IsEmpty());
    return object;
}

} // namespace

TEST(UnknownObject, keepsEverythingButItsNameAndTypeInOneSpelling)
{
    const std::string kept =
        R"toml(when = [1979-05-27T07:32:00.0005Z, 1979-05-27T00:32:00-07:30, 2024-02-29T23:59:59.25, 0001-01-01, 07:05:00]
set.list = [1, [2.0, "three"], { four = true, "five.five" = {} }, []]
set.number = 255
set.large = 1e+300
set.specials = [inf, -inf, nan, -0.0]
set.text = "a\n"
connect."x y" = "first.out"
future.inner = { deep = "x" }
nothing = {}
other."a.b" = false
rows = [{ a = 1 }, { a = 2 }]
)toml";
    EXPECT_EQ(keep(R"toml(
when = [1979-05-27T07:32:00.000500z, 1979-05-27 00:32:00-07:30, 2024-02-29T23:59:59.250000000, 0001-01-01, 07:05:00]
type = "Strange"
name = "odd"
set.list = [ 1, [2.0, 'three'], {four=true, 'five.five'={}}, [] ]
set.number = 0xFF
set.large = 1E300
set.specials = [+inf, -inf, nan, -0.0]
connect = { "x y" = 'first.out' }
set.text = """
a
"""
future.inner.deep = 'x'
nothing = {}
other."a.b" = false
[[rows]]
a = 1
[[rows]]
a = 2
)toml")
                  .kept,
              kept);
    EXPECT_EQ(keep(kept).kept, kept);
}

TEST(UnknownObject, offersTheTextsOfItsInputsWithTheirPlaces)
{
    const NetworkFile::Object object =
        keep("set.file = 'data.txt'\nset.number = 5\nset.list = ['a']\nconnect.in = 'a.b'\nnote = 'c'\n");
    ASSERT_EQ(object.texts.size(), 1u);
    EXPECT_EQ(object.texts[0].input.text, "file");
    EXPECT_EQ(object.texts[0].value.text, "data.txt");
    EXPECT_EQ(object.texts[0].value.place, (Place{1, 12}));
    EXPECT_TRUE(object.connections.empty());
}

TEST(UnknownObject, refusesTablesNestedTooDeeplyToBeWritten)
{
    std::string inner = "1";
    for (int i = 0; i < 30; ++i)
        inner = "{ a.a.a.a.a.a.a.a.a.a = " + inner + " }";
    Faults faults{"net"};
    const NetworkFile::Object object = keep("deep = " + inner + "\nflat = 1\n", faults);
    EXPECT_THAT(faults.lines(),
                ElementsAre("net:1:8: object \"odd\": \"deep\" is nested too deeply to be written again"));
    EXPECT_EQ(object.kept, "flat = 1\n");
}

} // namespace UnknownObjectTest
