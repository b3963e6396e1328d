#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <trellis/VNetwork.hpp>

#include <memory>

namespace NetworkCoreTest {

// The part of a network that its objects share, observed through `VNetwork`.

using namespace Orla;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

class NetworkCoreTest : public FrameworkTest {};

} // namespace

TEST_F(NetworkCoreTest, isTheDefaultNetworkOutsideAScope)
{
    const auto node = makeNode("node");
    EXPECT_EQ(&VNetwork::current(), &VNetwork::defaultNetwork());
    EXPECT_EQ(node->network(), &VNetwork::defaultNetwork());
}

TEST_F(NetworkCoreTest, isCurrentInTheInnermostScope)
{
    VNetwork outer;
    VNetwork inner;
    const VNetwork::Scope outerScope{outer};
    {
        const VNetwork::Scope innerScope{inner};
        EXPECT_EQ(&VNetwork::current(), &inner);
        EXPECT_EQ(makeNode("node")->network(), &inner);
    }
    EXPECT_EQ(&VNetwork::current(), &outer);
    EXPECT_EQ(makeNode("node")->network(), &outer);
}

TEST_F(NetworkCoreTest, isTheDefaultOneAgainAfterTheCurrentNetworkIsDestroyed)
{
    auto network = std::make_unique<VNetwork>();
    const VNetwork::Scope scope{*network};
    network.reset();
    EXPECT_EQ(&VNetwork::current(), &VNetwork::defaultNetwork());
    EXPECT_EQ(makeNode("node")->network(), &VNetwork::defaultNetwork());
}

TEST_F(NetworkCoreTest, detachesAlsoTheObjectsThatTookThePlacesOfDestroyedOnes)
{
    Nodes nodes;
    {
        VNetwork network;
        const VNetwork::Scope scope{network};
        for (int i = 0; i < 6; ++i)
            nodes.push_back(makeNode("first"));
        nodes.erase(nodes.begin() + 1, nodes.begin() + 4);
        for (int i = 0; i < 5; ++i)
            nodes.push_back(makeNode("second"));
        for (const StrongPtr<Node>& node : nodes)
            EXPECT_TRUE(connect(nodes.front(), node));
    }
    for (const StrongPtr<Node>& node : nodes)
        EXPECT_FALSE(node->findSlot("in")->isConnected());
}

TEST_F(NetworkCoreTest, isUsedWhileOtherThreadsUseOtherNetworks)
{
    inThreads(4, [](unsigned seed) {
        for (unsigned round = 0; round < 50; ++round) {
            VNetwork network;
            const VNetwork::Scope scope{network};
            const Nodes nodes = makeRandomNetwork(seed * 50 + round);
            for (const StrongPtr<Node>& node : nodes)
                VObject::finishCreation(node);
            const auto pool = Loam::makeStrong<ValuePool>();
            EXPECT_EQ(VScheduler::scheduleAll(pool), nodes.size());
            EXPECT_EQ(VScheduler::run(pool).updates, nodes.size());
        }
    });
}

} // namespace NetworkCoreTest
