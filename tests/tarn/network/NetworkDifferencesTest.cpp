#include <tarn/network/NetworkDifferences.hpp>

#include <tarn/network/NetworkContent.hpp>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace NetworkDifferencesTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Inputs = std::map<std::string, NetworkContent::Input>;

NetworkContent::Input value(const std::string& text)
{
    return {.place = {2, 2}, .connected = {}, .found = {}, .texts = {text}};
}

NetworkContent::Input reading(const std::string& object, const std::string& output = "out")
{
    return {.place = {2, 2}, .connected = NetworkContent::Source{object, output}, .found = {}, .texts = {}};
}

NetworkContent::Input finding(const std::string& object)
{
    return {.place = {}, .connected = {}, .found = NetworkContent::Source{object, "out"}, .texts = {}};
}

NetworkContent::Object object(const std::string& name, Inputs inputs = {}, const std::string& type = "T")
{
    return {{name, {1, 1}}, type, true, std::move(inputs)};
}

NetworkContent network(std::vector<NetworkContent::Object> objects)
{
    NetworkContent content;
    content.isComplete = true;
    content.objects = std::move(objects);
    return content;
}

NetworkContent table(const std::vector<std::pair<std::string, std::string>>& columns)
{
    NetworkContent content;
    for (const auto& [title, object] : columns)
        content.columns.push_back({{title, {1, 1}}, {object, "out"}});
    return content;
}

std::string textOf(const std::optional<NetworkDifference::Side>& side)
{
    if (!side)
        return "-";
    std::string text = side->reads;
    for (const std::string& each : side->texts)
        text += (text.empty() ? "" : "|") + each;
    return text;
}

// Returns the differences as `NAME.PART: BEFORE > AFTER`.
std::vector<std::string> between(const NetworkContent& before, const NetworkContent& after)
{
    std::vector<std::string> lines;
    for (const NetworkDifference& difference : differencesBetween(before, after))
        lines.push_back(difference.object + '.' + difference.part + ": " + textOf(difference.before) + " > "
                        + textOf(difference.after));
    return lines;
}

} // namespace

TEST(NetworkDifferences, ignoreTheOrderOfObjects)
{
    EXPECT_THAT(between(network({object("a"), object("b")}), network({object("b"), object("a")})), IsEmpty());
}

TEST(NetworkDifferences, listRemovedObjectsBeforeAddedAndChangedOnes)
{
    EXPECT_THAT(between(network({object("a", {{"i", value("1")}}), object("b")}),
                        network({object("c", {}, "U"), object("a", {{"i", value("2")}})})),
                ElementsAre("b.: T > -", "c.: - > U", "a.i: 1 > 2"));
}

TEST(NetworkDifferences, haveTheKindAndThePlaces)
{
    const std::vector<NetworkDifference> found =
        differencesBetween(network({object("a", {{"i", value("1")}})}), network({object("a")}));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].kind, NetworkDifference::Kind::Input);
    EXPECT_EQ(found[0].before->place, (Place{2, 2}));
    EXPECT_EQ(found[0].after, std::nullopt);
    EXPECT_EQ(found[0].owner, (Place{1, 1}));
}

TEST(NetworkDifferences, includeTypesAndInputsOfOneObject)
{
    EXPECT_THAT(between(network({object("a", {{"i", value("1")}})}), network({object("a", {}, "U")})),
                ElementsAre("a.: T > U", "a.i: 1 > -"));
}

TEST(NetworkDifferences, recogniseRenamedObjectsAndReferencesToThem)
{
    const NetworkContent before = network(
        {object("a", {{"i", value("1")}}), object("b", {{"i", reading("a")}}), object("c", {{"i", reading("b")}})});
    const NetworkContent after = network(
        {object("z", {{"i", value("1")}}), object("y", {{"i", reading("z")}}), object("c", {{"i", reading("y")}})});
    EXPECT_THAT(between(before, after), ElementsAre("a.: a > z", "b.: b > y"));
}

TEST(NetworkDifferences, pairEqualObjectsInOrder)
{
    EXPECT_THAT(between(network({object("a"), object("b"), object("c")}), network({object("y"), object("z")})),
                ElementsAre("c.: T > -", "a.: a > y", "b.: b > z"));
}

TEST(NetworkDifferences, doNotTakeAnObjectWithOtherInputsForARenamedOne)
{
    EXPECT_THAT(between(network({object("a", {{"i", value("1")}})}), network({object("b", {{"i", value("2")}})})),
                ElementsAre("a.: T > -", "b.: - > T"));
    EXPECT_THAT(between(network({object("a", {{"i", value("reads")}})}),
                        network({object("b", {{"i", reading("b", "reads")}})})),
                ElementsAre("a.: T > -", "b.: - > T"));
}

TEST(NetworkDifferences, reportWhatARenamedObjectReadsElsewhere)
{
    EXPECT_THAT(between(network({object("s"), object("t", {{"i", value("1")}}), object("a", {{"i", reading("s")}}),
                                 object("x", {{"j", reading("a")}}, "X")}),
                        network({object("s"), object("t", {{"i", value("1")}}), object("b", {{"i", reading("s")}}),
                                 object("x", {{"j", reading("t")}}, "X")})),
                ElementsAre("a.: a > b", "x.j: a.out > t.out"));
}

TEST(NetworkDifferences, distinguishValuesConnectionsAndDeclaredValues)
{
    EXPECT_THAT(between(network({object("s"), object("a", {{"i", value("s.out")}, {"j", reading("s")}})}),
                        network({object("s"), object("a", {{"i", reading("s")}, {"k", value("")}})})),
                ElementsAre("a.i: s.out > s.out", "a.j: s.out > -", "a.k: - > "));
}

TEST(NetworkDifferences, compareAutomaticConnectionsOnlyBetweenCompleteNetworks)
{
    const NetworkContent before = network({object("s"), object("t", {}, "U"), object("a", {{"i", finding("s")}})});
    NetworkContent after = network({object("s"), object("t", {}, "U"), object("a", {{"i", finding("t")}})});
    EXPECT_THAT(between(before, after), ElementsAre("a.i: s.out > t.out"));
    after.isComplete = false;
    EXPECT_THAT(between(before, after), IsEmpty());
}

TEST(NetworkDifferences, omitAutomaticConnectionsFromAddedAndRemovedObjects)
{
    EXPECT_THAT(between(network({object("s"), object("a", {{"i", finding("s")}})}),
                        network({object("t", {}, "U"), object("a", {{"i", finding("t")}})})),
                ElementsAre("s.: T > -", "t.: - > U"));
    EXPECT_THAT(between(network({object("s"), object("a", {{"i", finding("s")}})}),
                        network({object("t"), object("a", {{"i", finding("t")}})})),
                ElementsAre("s.: s > t"));
}

TEST(NetworkDifferences, includeTheProviderOfTheTime)
{
    NetworkContent before = network({object("s"), object("t", {}, "U")});
    NetworkContent after = before;
    before.timeProvider = "s";
    after.timeProvider = "t";
    EXPECT_THAT(between(before, after), ElementsAre(".: s > t"));
    EXPECT_THAT(between(before, network({object("t", {}, "U")})), ElementsAre("s.: T > -"));
}

TEST(NetworkDifferences, includeLibrariesAndTheChart)
{
    NetworkContent before;
    before.libraries = {{"a", {1, 1}}, {"b", {1, 2}}, {"a", {1, 3}}};
    before.chart = {"map", {2, 1}};
    NetworkContent after;
    after.libraries = {{"c", {1, 1}}, {"b", {1, 2}}};
    EXPECT_THAT(between(before, after), ElementsAre(".: a > -", ".: - > c", ".: map > -"));
    after.chart = {"globe", {2, 1}};
    EXPECT_EQ(between(before, after).back(), ".: map > globe");
}

TEST(NetworkDifferences, includeTheOrderOfColumns)
{
    EXPECT_THAT(between(table({{"a", "x"}, {"b", "y"}, {"c", "z"}}), table({{"d", "x"}, {"c", "z"}, {"a", "x"}})),
                ElementsAre(".b: y.out > -", ".d: - > x.out", ".: a|c > c|a"));
    EXPECT_THAT(between(table({{"a", "x"}, {"b", "y"}}), table({{"new", "x"}, {"a", "x"}, {"b", "y"}})),
                ElementsAre(".new: - > x.out"));
}

TEST(NetworkDifferences, compareColumnsOfOneTitleInOrder)
{
    EXPECT_THAT(between(table({{"a", "x"}, {"a", "y"}}), table({{"a", "x"}, {"a", "z"}})),
                ElementsAre(".a: y.out > z.out"));
    EXPECT_THAT(between(table({{"a", "x"}}), table({{"a", "x"}, {"a", "x"}})), ElementsAre(".a: - > x.out"));
}

TEST(NetworkDifferences, doNotCompareInputsOfAnObjectWhoseTypeOnlyOneNetworkKnows)
{
    NetworkContent after = network({object("a", {{"set.i", value("2")}})});
    after.objects[0].isKnown = false;
    EXPECT_THAT(between(network({object("a", {{"i", value("1")}})}), after), ElementsAre("a.: T > T"));
}

} // namespace NetworkDifferencesTest
