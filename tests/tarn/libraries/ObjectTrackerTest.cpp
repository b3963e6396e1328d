#include <tarn/libraries/ObjectTracker.hpp>

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <gtest/gtest.h>

namespace ObjectTrackerTest {

using namespace Tarn;
using Orla::StrongPtr;

namespace {

class Source final : public Orla::VObject {
public:
    Source(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, m_out{this, "out", 0.0}
    {
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    Orla::VOutput<double> m_out;
};

// A network with one object, which the tracker has counted.
struct CountedNetwork {
    CountedNetwork()
    {
        Orla::VActionNotifier::add(tracker);
        Orla::VObject::finishCreation(object);
        value = object->findOutput("out")->getLocalValue(pool);
        tracker->countValues(pool);
    }

    void close()
    {
        value.reset();
        pool.reset();
        Orla::VManagedObject::remove(object);
        object.reset();
        Orla::VActionNotifier::remove(tracker);
    }

    StrongPtr<ObjectTracker> tracker = Loam::makeStrong<ObjectTracker>();
    StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>();
    StrongPtr<Orla::VObject> object = Loam::makeStrong<Source>("source", 0, nullptr);
    StrongPtr<Orla::VValueBase> value;
};

} // namespace

TEST(ObjectTracker, findsNothingWhenEverythingIsDestroyed)
{
    CountedNetwork network;
    network.close();
    EXPECT_EQ(network.tracker->survivor(), std::nullopt);
}

TEST(ObjectTracker, findsAnObjectThatIsStillHeld)
{
    CountedNetwork network;
    const StrongPtr<Orla::VObject> held = network.object;
    network.close();
    EXPECT_EQ(network.tracker->survivor(), "object \"source\"");
}

TEST(ObjectTracker, findsAParameterThatIsStillHeld)
{
    CountedNetwork network;
    const StrongPtr<Orla::VParameter> held = network.object->findOutput("out")->parameter();
    network.close();
    EXPECT_EQ(network.tracker->survivor(), "a parameter \"out\"");
}

TEST(ObjectTracker, findsAValueThatIsStillHeld)
{
    CountedNetwork network;
    const StrongPtr<Orla::VValueBase> held = network.value;
    network.close();
    EXPECT_EQ(network.tracker->survivor(), "a value of type number");
}

TEST(ObjectTracker, findsACreatorThatIsStillHeld)
{
    const Orla::VObjectType<Source> type{"CensusTestSource"};
    const StrongPtr<Orla::VObjectCreator> held = Orla::VObjectCreator::find("CensusTestSource");
    ASSERT_TRUE(held);
    EXPECT_EQ(ObjectTracker{}.survivor(), "the creator of \"CensusTestSource\"");
}

TEST(ObjectTracker, findsObjectsThatWereRemovedEarlier)
{
    CountedNetwork network;
    const StrongPtr<Orla::VObject> held = Loam::makeStrong<Source>("removed", 0, nullptr);
    Orla::VObject::finishCreation(held);
    Orla::VManagedObject::remove(held);
    network.close();
    EXPECT_EQ(network.tracker->survivor(), "object \"removed\"");
}

TEST(ObjectTracker, staysSmallAsObjectsComeAndGo)
{
    CountedNetwork network;
    const auto makeAndRemove = [] {
        const StrongPtr<Orla::VObject> object = Loam::makeStrong<Source>("one of many", 0, nullptr);
        Orla::VObject::finishCreation(object);
        Orla::VManagedObject::remove(object);
        return Orla::WeakPtrImpl<Orla::VObject>(object);
    };
    const Orla::WeakPtrImpl<Orla::VObject> first = makeAndRemove();
    EXPECT_EQ(first.referenceBlock()->weakCount(), 2u); // the tracker and this test
    for (int i = 0; i < 2000; ++i)
        makeAndRemove();
    EXPECT_EQ(first.referenceBlock()->weakCount(), 1u);
    network.close();
}

} // namespace ObjectTrackerTest
