#include <trellis/VObserver.hpp>

#include "support/TestNetwork.hpp"

#include <stdexcept>

namespace VObserverTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Listener final : public VObserver {
public:
    void becameDue(const VObject& object, Cause cause, const VParameter* changed, double precision) noexcept override
    {
        const char* const causes[] = {"scheduled", "changed", "connected", "cancelled"};
        std::string text = object.Name() + " due: " + causes[static_cast<int>(cause)];
        if (changed)
            text += ' ' + changed->Name() + " of " + changed->owner()->object()->Name();
        if (precision != 0)
            text += " with " + std::to_string(static_cast<int>(precision));
        m_events.push_back(text);
    }

    void began(const VObject& object) noexcept override { m_events.push_back(object.Name() + " began"); }

    void ended(const VObject& object, Result result) noexcept override
    {
        const char* const results[] = {"well", "badly", "cancelled"};
        m_events.push_back(object.Name() + " ended " + results[static_cast<int>(result)]);
    }

    void startedWaiting(const VObject& object) noexcept override { m_events.push_back(object.Name() + " waits"); }
    void stoppedWaiting(const VObject& object) noexcept override { m_events.push_back(object.Name() + " continues"); }

    std::vector<std::string> events() { return std::exchange(m_events, {}); }

private:
    std::vector<std::string> m_events;
};

class VObserverTest : public FrameworkTest {
protected:
    VObserverTest() { EXPECT_TRUE(VScheduler::observe(pool, &listener)); }
    ~VObserverTest() override { VScheduler::observe(pool, nullptr); }

    Listener listener;
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(VObserverTest, isNotifiedOfUpdatesAndTheirCausesInOrder)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    connect(a, b);
    VScheduler::schedule(a, 3, pool);
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), ElementsAre("a due: scheduled with 3", "a began", "b due: changed out of a",
                                               "a ended well", "b began", "b ended well"));
    a->write(pool, "in", 5.0);
    EXPECT_THAT(listener.events(), ElementsAre("a due: changed in of a"));
}

TEST_F(VObserverTest, isNotifiedOfTheFirstCauseOnly)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    const auto sum = makeNode("sum", {"left", "right"});
    connect(a, sum, "left");
    connect(b, sum, "right");
    runAll({a, b, sum}, pool);
    listener.events();
    b->write(pool, "out", 7.0);
    a->write(pool, "out", 8.0);
    VScheduler::schedule(sum, 9, pool);
    EXPECT_THAT(listener.events(), ElementsAre("sum due: changed out of b"));
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), ElementsAre("sum began", "sum ended well"));
}

TEST_F(VObserverTest, isNotifiedOfConnections)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    runAll({a, b}, pool);
    listener.events();
    connect(a, b);
    EXPECT_THAT(listener.events(), ElementsAre("b due: connected"));
}

TEST_F(VObserverTest, isNotifiedOfTheResultsOfUpdates)
{
    const auto a = makeNode("a");
    a->work = [](Node&, VRequest&, double) { return false; };
    VScheduler::schedule(a, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), ElementsAre("a due: scheduled", "a began", "a ended badly"));

    a->work = [](Node&, VRequest&, double) -> bool { throw std::runtime_error("no"); };
    VScheduler::schedule(a, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), ElementsAre("a due: scheduled", "a began", "a ended badly"));
    EXPECT_EQ(warnings().size(), 2u);

    a->work = [](Node&, VRequest& request, double) {
        request.cancel();
        return true;
    };
    VScheduler::schedule(a, 2, pool);
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(),
                ElementsAre("a due: scheduled with 2", "a began", "a ended cancelled", "a due: cancelled with 2"));
}

TEST_F(VObserverTest, isNotifiedOfObjectsThatWaitForAFailedOne)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    runAll({source, reader}, pool);
    source->work = [](Node&, VRequest&, double) { return false; };
    VScheduler::schedule(source, 0, pool);
    listener.events();
    VScheduler::run(pool);
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_THAT(listener.events(), ElementsAre("source began", "source ended badly", "reader waits"));
    source->work = [](Node&, VRequest&, double) { return true; };
    VScheduler::schedule(source, 0, pool);
    listener.events();
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), ElementsAre("source began", "source ended well", "reader continues"));
}

TEST_F(VObserverTest, isNotNotifiedOfOtherPoolsNorAfterItsRemoval)
{
    const auto a = makeNode("a");
    const StrongPtr<ValuePool> other{new ValuePool("other")};
    VScheduler::schedule(a, 0, other);
    VScheduler::run(other);
    EXPECT_THAT(listener.events(), IsEmpty());

    EXPECT_TRUE(VScheduler::observe(pool, nullptr));
    VScheduler::schedule(a, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(listener.events(), IsEmpty());
    EXPECT_FALSE(VScheduler::observe(nullptr, &listener));
}

TEST_F(VObserverTest, mayBeRemovedByAnUpdate)
{
    const auto a = makeNode("a");
    a->work = [this](Node&, VRequest&, double) { return VScheduler::observe(pool, nullptr); };
    VScheduler::schedule(a, 0, pool);
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
    EXPECT_THAT(listener.events(), ElementsAre("a due: scheduled", "a began"));
}

} // namespace VObserverTest
