#include <tarn/network/NetworkBuilder.hpp>

#include <tarn/network/NetworkParser.hpp>

#include <trellis/VObject.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace NetworkBuilderTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class NetworkBuilderTest : public LoadedLibraries {
protected:
    /// Builds the network of these objects and columns, and returns its faults.
    std::vector<std::string> faultsOf(const std::string& text)
    {
        Faults faults{"net"};
        const NetworkFile file = parseNetwork("format = 1\n" + text, faults);
        m_network = buildNetwork(file, {}, {}, faults);
        return faults.lines();
    }

    const Network& network() const noexcept { return m_network; }

private:
    Network m_network;
};

} // namespace

TEST_F(NetworkBuilderTest, announcesTheObjects)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a'\ntype = 'Adder'\n"
                         "[[object]]\nname = 'b'\ntype = 'Adder'\nconnect = { a = 'a.sum' }\n"
                         "[[column]]\ntitle = 'sum'\nvalue = 'b.sum'\n"),
                IsEmpty());
    EXPECT_EQ(network().objectCount, 2u);
    EXPECT_EQ(network().connected.size(), 1u);
    EXPECT_EQ(network().columns.size(), 1u);
    EXPECT_EQ(Orla::VManagedObject::count(), 2u);
    EXPECT_TRUE(Orla::VManagedObject::find("b"));
}

TEST_F(NetworkBuilderTest, findsAProviderThatTheFileListsLast)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'reader'\ntype = 'TimeReader'\n"
                         "[[object]]\nname = 'clock'\ntype = 'GlobalTime'\n"),
                IsEmpty());
    const Orla::StrongPtr<Orla::VObject> reader{Orla::VManagedObject::find("reader")};
    const Orla::StrongPtr<Orla::VObject> clock{Orla::VManagedObject::find("clock")};
    ASSERT_TRUE(reader && clock);
    EXPECT_EQ(reader->findSlot("time")->parameter(), clock->findOutput("GlobalTime")->parameter());
    EXPECT_EQ(Orla::VManagedObject::count(), 2u);
}

TEST_F(NetworkBuilderTest, finishesNoObjectIfThereAreFaults)
{
    EXPECT_EQ(faultsOf("[[object]]\nname = 'a'\ntype = 'Adder'\n[[object]]\nname = 'b'\ntype = 'Volume'\n").size(), 1u);
    EXPECT_EQ(Orla::VManagedObject::count(), 0u);
}

TEST_F(NetworkBuilderTest, finishesNoObjectIfThereWereFaultsBefore)
{
    EXPECT_EQ(faultsOf("[[object]]\nname = 'a'\ntype = 'Adder'\ncolour = 1\n").size(), 1u);
    EXPECT_EQ(Orla::VManagedObject::count(), 0u);
    EXPECT_EQ(network().objectCount, 0u);
}

TEST_F(NetworkBuilderTest, reportsASetUpFunctionThatThrows)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a'\ntype = 'Unfinishable'\n"),
                ElementsAre("net:2:1: object \"a\" cannot be set up: no partner"));
    EXPECT_EQ(network().objectCount, 0u);
}

} // namespace NetworkBuilderTest
