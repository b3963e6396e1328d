#include <trellis/ValueNotifierList.hpp>

#include "support/TestNetwork.hpp"

#include <functional>

namespace ValueNotifierListTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Listener : VValueListener {
    explicit Listener(std::function<void()> theReaction = {}) : reaction{std::move(theReaction)} {}

    void valueChanged(const ValueNotifierList& source, const StrongPtr<ValuePool>& pool) override
    {
        ++notifications;
        lastSource = &source;
        lastPool = pool;
        if (reaction)
            reaction();
    }

    std::function<void()> reaction;
    int notifications = 0;
    const ValueNotifierList* lastSource = nullptr;
    StrongPtr<ValuePool> lastPool;
};

class ValueNotifierListTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
    StrongPtr<VParameter> parameter = testParameter("limit");

    void change() const { parameter->notifyValueChange(nullptr, pool); }
};

} // namespace

TEST_F(ValueNotifierListTest, notifiesEachListenerOnce)
{
    const auto first = Loam::makeStrong<Listener>();
    const auto second = Loam::makeStrong<Listener>();
    EXPECT_TRUE(parameter->addListener(first));
    EXPECT_TRUE(parameter->addListener(second));
    EXPECT_FALSE(parameter->addListener(first));
    EXPECT_FALSE(parameter->addListener(nullptr));
    change();
    EXPECT_EQ(first->notifications, 1);
    EXPECT_EQ(second->notifications, 1);
    EXPECT_EQ(first->lastSource, parameter.get());
    EXPECT_EQ(first->lastPool, pool);
}

TEST_F(ValueNotifierListTest, notifiesOfTheInitialValueWithoutAPool)
{
    const auto listener = Loam::makeStrong<Listener>();
    parameter->addListener(listener);
    parameter->touch();
    EXPECT_EQ(listener->notifications, 1);
    EXPECT_FALSE(listener->lastPool);
}

TEST_F(ValueNotifierListTest, notifiesInTheOrderOfAdding)
{
    std::vector<int> order;
    std::vector<StrongPtr<Listener>> listeners;
    for (int i = 0; i < 5; ++i) {
        listeners.push_back(Loam::makeStrong<Listener>([&order, i] { order.push_back(i); }));
        parameter->addListener(listeners.back());
    }
    parameter->removeListener(*listeners[1]);
    change();
    EXPECT_THAT(order, ElementsAre(0, 2, 3, 4));
}

TEST_F(ValueNotifierListTest, doesNotKeepListenersAlive)
{
    auto listener = Loam::makeStrong<Listener>();
    parameter->addListener(listener);
    EXPECT_EQ(listener.referenceBlock()->strongCount(), 1u);
    listener.reset();
    change();
}

TEST_F(ValueNotifierListTest, removesDestroyedListeners)
{
    auto listener = Loam::makeStrong<Listener>();
    parameter->addListener(listener);
    const WeakPtrImpl<Listener> watch = listener;
    listener.reset();
    EXPECT_EQ(watch.referenceBlock()->weakCount(), 2u);
    change();
    EXPECT_EQ(watch.referenceBlock()->weakCount(), 1u) << "otherwise the list grows with every listener";
}

TEST_F(ValueNotifierListTest, removesAListenerOnce)
{
    const auto listener = Loam::makeStrong<Listener>();
    EXPECT_FALSE(parameter->removeListener(*listener));
    parameter->addListener(listener);
    EXPECT_TRUE(parameter->removeListener(*listener));
    EXPECT_FALSE(parameter->removeListener(*listener));
    change();
    EXPECT_EQ(listener->notifications, 0);
    EXPECT_TRUE(parameter->addListener(listener));
    change();
    EXPECT_EQ(listener->notifications, 1);
}

TEST_F(ValueNotifierListTest, notifiesAListenerAddedMeanwhileFromTheNextTimeOn)
{
    const auto late = Loam::makeStrong<Listener>();
    // Many, to make the list reallocate.
    std::vector<StrongPtr<Listener>> more;
    const auto first = Loam::makeStrong<Listener>([&] {
        parameter->addListener(late);
        for (int i = 0; i < 100; ++i) {
            more.push_back(Loam::makeStrong<Listener>());
            parameter->addListener(more.back());
        }
    });
    const auto second = Loam::makeStrong<Listener>();
    parameter->addListener(first);
    parameter->addListener(second);
    change();
    EXPECT_EQ(second->notifications, 1);
    EXPECT_EQ(late->notifications, 0);
    first->reaction = nullptr;
    change();
    EXPECT_EQ(late->notifications, 1);
    EXPECT_EQ(second->notifications, 2);
}

TEST_F(ValueNotifierListTest, doesNotNotifyAListenerRemovedMeanwhile)
{
    const auto removed = Loam::makeStrong<Listener>();
    const auto following = Loam::makeStrong<Listener>();
    const auto remover = Loam::makeStrong<Listener>([&] { parameter->removeListener(*removed); });
    const auto leaver = Loam::makeStrong<Listener>();
    leaver->reaction = [&] { parameter->removeListener(*leaver); };
    for (const auto& listener : {leaver, remover, removed, following})
        parameter->addListener(listener);
    change();
    EXPECT_EQ(removed->notifications, 0);
    EXPECT_EQ(following->notifications, 1);
    change();
    EXPECT_EQ(leaver->notifications, 1);
    EXPECT_EQ(remover->notifications, 2);
    EXPECT_EQ(following->notifications, 2);
}

TEST_F(ValueNotifierListTest, notifiesAListenerRemovedAndAddedAgainFromTheNextTimeOn)
{
    const auto moved = Loam::makeStrong<Listener>();
    const auto mover = Loam::makeStrong<Listener>([&] {
        EXPECT_TRUE(parameter->removeListener(*moved));
        EXPECT_TRUE(parameter->addListener(moved));
    });
    parameter->addListener(mover);
    parameter->addListener(moved);
    change();
    EXPECT_EQ(moved->notifications, 0);
    mover->reaction = nullptr;
    change();
    EXPECT_EQ(moved->notifications, 1);
}

TEST_F(ValueNotifierListTest, survivesListenersDestroyedMeanwhile)
{
    auto doomed = Loam::makeStrong<Listener>();
    StrongPtr<Listener> itself;
    const auto first = Loam::makeStrong<Listener>([&] { doomed.reset(); });
    itself = Loam::makeStrong<Listener>([&] { itself.reset(); });
    const auto last = Loam::makeStrong<Listener>();
    parameter->addListener(first);
    parameter->addListener(itself);
    parameter->addListener(doomed);
    parameter->addListener(last);
    change();
    EXPECT_FALSE(doomed);
    EXPECT_FALSE(itself);
    EXPECT_EQ(last->notifications, 1);
    change();
    EXPECT_EQ(last->notifications, 2);
}

TEST_F(ValueNotifierListTest, survivesItsOwnDestructionMeanwhile)
{
    const auto first = Loam::makeStrong<Listener>([&] { parameter.reset(); });
    const auto second = Loam::makeStrong<Listener>();
    parameter->addListener(first);
    parameter->addListener(second);
    change();
    EXPECT_FALSE(parameter);
    EXPECT_EQ(second->notifications, 1);
    EXPECT_EQ(livingTestValues, 0u);
}

TEST_F(ValueNotifierListTest, notifiesOfChangesMadeByAListener)
{
    const auto second = Loam::makeStrong<Listener>();
    const auto first = Loam::makeStrong<Listener>();
    first->reaction = [&] {
        if (first->notifications < 3) {
            change();
            parameter->removeListener(*second);
        }
    };
    parameter->addListener(first);
    parameter->addListener(second);
    change();
    EXPECT_EQ(first->notifications, 3);
    EXPECT_EQ(second->notifications, 1) << "only the innermost notification preceded its removal";
    change();
    EXPECT_EQ(second->notifications, 1);
}

TEST_F(ValueNotifierListTest, worksAfterAListenerThrows)
{
    const auto thrower = Loam::makeStrong<Listener>([] { throw 1; });
    const auto leaver = Loam::makeStrong<Listener>();
    parameter->addListener(thrower);
    parameter->addListener(leaver);
    EXPECT_THROW(change(), int);
    parameter->removeListener(*thrower);
    change();
    EXPECT_EQ(leaver->notifications, 1);
}

TEST_F(ValueNotifierListTest, returnsItsLivingShadowsInOrder)
{
    auto first = Loam::makeStrong<ValuePool>("first");
    const auto second = Loam::makeStrong<ValuePool>("second");
    parameter->addShadow(first);
    parameter->addShadow(first);
    parameter->addShadow(second);
    parameter->addShadow(nullptr);
    EXPECT_THAT(parameter->shadows(), ElementsAre(first, second));

    const auto other = testParameter("other");
    other->addShadow(pool);
    other->copyShadows(*parameter);
    EXPECT_THAT(other->shadows(), ElementsAre(pool, first, second));
    first.reset();
    EXPECT_THAT(parameter->shadows(), ElementsAre(second));
    EXPECT_THAT(other->shadows(), ElementsAre(pool, second));
}

TEST_F(ValueNotifierListTest, forgetsDestroyedShadows)
{
    std::vector<WeakPtrImpl<ValuePool>> watched;
    for (int i = 0; i < 1000; ++i) {
        const auto shortLived = Loam::makeStrong<ValuePool>();
        parameter->addShadow(shortLived);
        watched.emplace_back(shortLived);
    }
    EXPECT_THAT(parameter->shadows(), IsEmpty());
    const auto remembered = std::ranges::count_if(
        watched, [](const WeakPtrImpl<ValuePool>& each) { return each.referenceBlock()->weakCount() > 1; });
    EXPECT_LT(remembered, 20);
}

} // namespace ValueNotifierListTest
