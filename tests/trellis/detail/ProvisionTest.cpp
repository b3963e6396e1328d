#include <trellis/VConnectable.hpp>
#include <trellis/VObjectCreator.hpp>

#include "support/TestNetwork.hpp"

namespace ProvisionTest {

// Providers that are created for an input, observed through `VObject` and `VConnectable`.

using namespace Orla;

namespace {

// Passes an input on and may have an output of the same type.
struct Passing : Node {
    Passing(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        registerOutput(addInput("in", 5.0));
        if (withOutput)
            addOutput("out", 6.0);
    }
    static inline bool withOutput = true;
};

// Needs a provider of its own kind during its set-up.
struct Clock : Node {
    Clock(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        addInput("reference");
        addOutput("out");
        setupFunctions().insert([](VSlotContainer* container, const VSlotSet& inputs) {
            ++requests;
            static_cast<Clock*>(container->object())->attachUniqueObject(inputs.find("reference"), nullptr, true);
        });
    }
    static inline int requests = 0;
};

class ProvisionTest : public FrameworkTest {};

} // namespace

TEST_F(ProvisionTest, prefersARealOutputToAPassedInput)
{
    const VObjectType<Passing> type{"Passing"};
    for (const bool withOutput : {true, false}) {
        Passing::withOutput = withOutput;
        const auto node = makeNode("node");
        const StrongPtr<VObject> provider =
            VObject::attachNewObject(node.get(), node->findSlot("in"), "Passing", nullptr);
        ASSERT_TRUE(provider);
        EXPECT_EQ(node->findSlot("in")->parameter(), provider->findOutput(withOutput ? "out" : "in")->parameter());
        VManagedObject::remove(provider);
    }
}

TEST_F(ProvisionTest, doesNotCreateAProviderForAProviderOfTheSameKind)
{
    auto unique = Loam::makeStrong<VCreationPreferences>();
    unique->add("unique");
    const VObjectType<Clock> type{"Clock", unique, &typeid(double)};
    Clock::requests = 0;
    const auto node = makeNode("node");
    EXPECT_TRUE(node->attachUniqueObject(node->findSlot("in"), nullptr, true));
    EXPECT_EQ(Clock::requests, 1) << "a second clock would have asked for a third";
    EXPECT_EQ(VManagedObject::count(), 1u);
    VManagedObject::remove(VManagedObject::find("Clock"));
}

} // namespace ProvisionTest
