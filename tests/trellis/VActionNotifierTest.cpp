#include <trellis/VActionNotifier.hpp>

#include "support/TestNetwork.hpp"

namespace VActionNotifierTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

struct Notifier : VActionNotifier {
    explicit Notifier(const std::string& theName = {}, bool shows = false) : name{theName}, showsWarnings{shows} {}

    bool warned(const std::string& message) override
    {
        events.push_back(name + " warned: " + message);
        if (reaction)
            reaction();
        return showsWarnings;
    }
    void objectCreated(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                       const StrongPtr<VObjectCreator>&) override
    {
        events.push_back(name + " created: " + object->Name() + " with " + std::to_string(interfaces.size()));
        wasRegistered = object->isRegistered();
    }
    void objectRemoved(const StrongPtr<VManagedObject>& object) override
    {
        events.push_back(name + " removed: " + object->Name());
        wasRegistered = object->isRegistered();
    }

    std::string name;
    bool showsWarnings;
    std::function<void()> reaction;
    bool wasRegistered = false;
    static inline std::vector<std::string> events;
};

// Here warnings reach only the notifiers of the tests.
class VActionNotifierTest : public testing::Test {
protected:
    VActionNotifierTest() { Notifier::events.clear(); }
    StrongPtr<Notifier> first{new Notifier("first", true)};
    StrongPtr<Notifier> second{new Notifier("second")};

    static std::string onStandardError(const std::string& message,
                                       void (*notify)(const std::string&) = &VActionNotifier::Warning)
    {
        testing::internal::CaptureStderr();
        notify(message);
        return testing::internal::GetCapturedStderr();
    }
};

} // namespace

TEST_F(VActionNotifierTest, isAddedAndRemovedOnce)
{
    EXPECT_TRUE(VActionNotifier::add(first));
    EXPECT_FALSE(VActionNotifier::add(first));
    EXPECT_FALSE(VActionNotifier::add(nullptr));
    EXPECT_TRUE(VActionNotifier::remove(first));
    EXPECT_FALSE(VActionNotifier::remove(first));
    EXPECT_FALSE(VActionNotifier::remove(nullptr));
}

TEST_F(VActionNotifierTest, receivesWarningsInTheOrderOfAdding)
{
    VActionNotifier::add(second);
    VActionNotifier::add(first);
    VActionNotifier::Warning("careful");
    EXPECT_THAT(Notifier::events, ElementsAre("second warned: careful", "first warned: careful"));
}

TEST_F(VActionNotifierTest, receivesFailuresAsWarningsByDefault)
{
    struct Discerning : Notifier {
        using Notifier::Notifier;
        bool failed(const std::string& message) override
        {
            events.push_back(name + " failed: " + message);
            return true;
        }
    };
    const StrongPtr<VActionNotifier> discerning{new Discerning("third")};
    VActionNotifier::add(second);
    EXPECT_EQ(onStandardError("careful", &VActionNotifier::Error), "careful\n");
    VActionNotifier::add(discerning);
    EXPECT_EQ(onStandardError("broken", &VActionNotifier::Error), "");
    EXPECT_THAT(Notifier::events,
                ElementsAre("second warned: careful", "second warned: broken", "third failed: broken"));
}

TEST_F(VActionNotifierTest, writesWarningsToStandardErrorUnlessTheyAreShown)
{
    EXPECT_EQ(onStandardError("lost? 100%"), "lost? 100%\n");
    VActionNotifier::add(second);
    EXPECT_EQ(onStandardError("not shown"), "not shown\n");
    VActionNotifier::add(first);
    EXPECT_EQ(onStandardError("shown"), "");
    const auto plain = Loam::makeStrong<VActionNotifier>();
    VActionNotifier::remove(first);
    VActionNotifier::add(plain);
    EXPECT_EQ(onStandardError("not shown"), "not shown\n");
}

TEST_F(VActionNotifierTest, writesNoControlCharactersToStandardError)
{
    EXPECT_EQ(onStandardError("a\x1b[31m\nb\\n"), "a\\x1b[31m\\nb\\n\n");
    EXPECT_EQ(onStandardError("\u202e", &VActionNotifier::Error), "\\u202e\n");
}

TEST_F(VActionNotifierTest, isNotKeptAlive)
{
    VActionNotifier::add(first);
    first.reset();
    EXPECT_EQ(onStandardError("not shown"), "not shown\n");
}

TEST_F(VActionNotifierTest, mayAddAndRemoveNotifiersDuringAWarning)
{
    auto doomed = Loam::makeStrong<Notifier>("doomed");
    auto removed = Loam::makeStrong<Notifier>("removed");
    const auto late = Loam::makeStrong<Notifier>("late");
    first->reaction = [&] {
        VActionNotifier::add(late);
        VActionNotifier::remove(removed);
        VActionNotifier::remove(first);
        doomed.reset();
    };
    for (const auto& notifier : {first, removed, doomed, second})
        VActionNotifier::add(notifier);
    VActionNotifier::Warning("careful");
    EXPECT_THAT(Notifier::events, ElementsAre("first warned: careful", "second warned: careful"));
    Notifier::events.clear();
    EXPECT_NE(onStandardError("again"), "");
    EXPECT_THAT(Notifier::events, ElementsAre("second warned: again", "late warned: again"));
}

TEST_F(VActionNotifierTest, mayWarnDuringAWarning)
{
    VActionNotifier::add(first);
    first->reaction = [this] {
        first->reaction = nullptr;
        VActionNotifier::Warning("inner");
    };
    VActionNotifier::Warning("outer");
    EXPECT_THAT(Notifier::events, ElementsAre("first warned: outer", "first warned: inner"));
}

TEST_F(VActionNotifierTest, isNotifiedOfAnnouncedAndRemovedObjects)
{
    VActionNotifier::add(first);
    Loam::InterfaceContainer interfaces;
    interfaces.add(Loam::makeStrong<VCreationPreferences>());
    StrongPtr<VManagedObject> object = makeNode("node");
    VActionNotifier::VObjectCreation(object, interfaces, nullptr);
    EXPECT_TRUE(first->wasRegistered);
    EXPECT_EQ(VManagedObject::find("node"), object);
    VManagedObject::remove(object);
    EXPECT_FALSE(first->wasRegistered);
    EXPECT_THAT(Notifier::events, ElementsAre("first created: node with 1", "first removed: node"));
    VActionNotifier::VObjectCreation(nullptr, {}, nullptr);
    EXPECT_EQ(Notifier::events.size(), 2u);
    EXPECT_EQ(VManagedObject::count(), 0u);
}

} // namespace VActionNotifierTest
