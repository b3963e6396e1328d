#include <tarn/network/NetworkInputs.hpp>

#include <tarn/network/NetworkParser.hpp>

#include <trellis/VManagedObject.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace NetworkInputsTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class NetworkInputsTest : public LoadedLibraries {
protected:
    /// Reads the inputs of these objects.
    NetworkInputs read(const std::string& text, const std::vector<std::string>& overrides = {})
    {
        const auto isKnown = [](const std::string& type) { return type != "Strange"; };
        const NetworkFile file = parseNetwork("format = 1\n" + text, faults, isKnown);
        return readInputs(file, overrides, {}, faults, unknown);
    }

    Faults faults{"net"};
    Faults unknown{"net"};
};

} // namespace

TEST_F(NetworkInputsTest, areThoseWithTextsInTheOrderOfTheObject)
{
    const NetworkInputs inputs = read("[[object]]\nname = 'c'\ntype = 'Counter'\n"
                                      "[[object]]\nname = 'a'\ntype = 'Adder'\nset = { b = 2, a = '1.50' }\n");
    EXPECT_THAT(faults.lines(), IsEmpty());
    ASSERT_EQ(inputs.objects.size(), 2u);
    EXPECT_TRUE(inputs.objects[0].isKnown);
    EXPECT_THAT(inputs.objects[0].names, ElementsAre("in", "limit"));
    EXPECT_TRUE(inputs.objects[0].set.empty());
    ASSERT_EQ(inputs.objects[1].set.size(), 2u);
    const NetworkInputs::Input& a = inputs.objects[1].set[0];
    EXPECT_EQ(a.name, "a");
    EXPECT_EQ(*a.type, typeid(double));
    EXPECT_EQ(a.place, (Place{8, 20}));
    EXPECT_EQ(a.description, "object \"a\", input \"a\"");
    EXPECT_EQ(a.given->Text(), "0");
    EXPECT_EQ(a.value->Text(), "1.5");
    EXPECT_THAT(a.texts, ElementsAre("1.50"));
    EXPECT_EQ(inputs.objects[1].set[1].name, "b");
}

TEST_F(NetworkInputsTest, haveAllTextsInTheOrderInWhichTheyWereRead)
{
    const NetworkInputs inputs =
        read("[[object]]\nname = 'a'\ntype = 'Adder'\nset.a = { exact = ['1', '2'] }\n", {"a.a=3"});
    EXPECT_THAT(faults.lines(), IsEmpty());
    ASSERT_EQ(inputs.objects[0].set.size(), 1u);
    const NetworkInputs::Input& a = inputs.objects[0].set[0];
    EXPECT_THAT(a.texts, ElementsAre("1", "2", "3"));
    EXPECT_EQ(a.value->Text(), "3");
    EXPECT_FALSE(a.place) << "the last text comes from the command line";
    EXPECT_EQ(a.description, "--set=a.a=3");
}

TEST_F(NetworkInputsTest, countConnections)
{
    const NetworkInputs inputs =
        read("[[object]]\nname = 'a'\ntype = 'Adder'\nconnect = { a = 'a.sum', b = 'a.sum' }\n");
    EXPECT_EQ(inputs.connectionCount, 2u);
    EXPECT_TRUE(inputs.objects[0].set.empty());
}

TEST_F(NetworkInputsTest, reportUnknownTypesSeparately)
{
    const NetworkInputs inputs = read("[[object]]\nname = 'odd'\ntype = 'Strange'\nset.a = 1\n"
                                      "[[object]]\nname = 'a'\ntype = 'Adder'\nconnect.a = 'odd.out'\n");
    EXPECT_THAT(faults.lines(), IsEmpty());
    EXPECT_THAT(unknown.lines(), ElementsAre("net:4:8: object \"odd\": no library has an object type \"Strange\""));
    EXPECT_FALSE(inputs.objects[0].isKnown);
    EXPECT_TRUE(inputs.objects[1].isKnown);
}

TEST_F(NetworkInputsTest, reportASettingThatAnObjectOfUnknownTypeWouldLose)
{
    read("[[object]]\nname = 'odd'\ntype = 'Strange'\n", {"odd.a=1"});
    EXPECT_THAT(faults.lines(), ElementsAre("--set=odd.a=1: object \"odd\" has no inputs because its type is unknown"));
}

TEST_F(NetworkInputsTest, leaveNoObjects)
{
    read("[[object]]\nname = 'u'\ntype = 'Unfinishable'\n[[object]]\nname = 'e'\ntype = 'Listener'\n");
    EXPECT_THAT(faults.lines(), IsEmpty()) << "no object is set up";
    EXPECT_EQ(Orla::VManagedObject::find("u"), nullptr);
    EXPECT_EQ(Orla::VManagedObject::find("e"), nullptr);
}

} // namespace NetworkInputsTest
