#include <fathom/VRunningCell.hpp>

#include "Recorders.hpp"

#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace VRunningCellTest {

using namespace Orla;

namespace {

// An object whose update is defined by the test.
class Probe final : public VObject {
public:
    Probe() : VObject{"probe", 0, nullptr} { enableRequestProcessing(); }

    bool update(VRequest& request, double) override
    {
        if (work)
            work(*request.valuePool());
        return true;
    }

    VSlotPlace inputPlace() const { return in.slot()->place(); }
    VSlotPlace outputPlace() const { return findOutput("out")->place(); }

    std::function<void(ValuePool& pool)> work;
    const TypedSlot<std::string> in{this, "in", "initial input", 0};
    const VOutput<std::string> out{this, "out", "initial output", nullptr};
};

// A value that overrides access to its content, so it must not be accessed as a plain one.
class Overriding final : public VValue<std::string> {
    using VValue::VValue;
};

class VRunningCellTest : public testing::Test {
protected:
    // Runs the probe, and calls `work` during its update.
    void duringUpdate(const std::function<void(ValuePool& pool)>& work) const
    {
        m_probe->work = work;
        VScheduler::schedule(m_probe, 0, m_pool);
        EXPECT_EQ(VScheduler::run(m_pool).updates, 1u);
        m_probe->work = nullptr;
    }

    const StrongPtr<Probe> m_probe{new Probe};
    const StrongPtr<Probe> m_other{new Probe};
    const StrongPtr<ValuePool> m_pool{new ValuePool};
};

} // namespace

TEST_F(VRunningCellTest, isFoundOnlyWhileTheObjectOfItsSlotIsUpdated)
{
    const auto isFound = [](ValuePool* pool, const VSlotPlace& place) {
        return bool(VRunningCell<std::string>{pool, place});
    };
    EXPECT_FALSE(isFound(m_pool.get(), m_probe->inputPlace()));
    duringUpdate([&](ValuePool& pool) {
        EXPECT_TRUE(isFound(&pool, m_probe->inputPlace()));
        EXPECT_FALSE(isFound(&pool, m_other->inputPlace()));
        EXPECT_FALSE(isFound(nullptr, m_probe->inputPlace()));
    });
    EXPECT_FALSE(isFound(m_pool.get(), m_probe->inputPlace()));
}

TEST_F(VRunningCellTest, returnsNoValueOfAnotherType)
{
    duringUpdate([&](ValuePool& pool) {
        const VRunningCell<double> cell{&pool, m_probe->inputPlace()};
        EXPECT_EQ(cell.plain(), nullptr);
        EXPECT_EQ(cell.typed(), nullptr);
    });
}

TEST_F(VRunningCellTest, returnsAPlainValueEachTime)
{
    duringUpdate([&](ValuePool& pool) {
        const VRunningCell<std::string> cell{&pool, m_probe->inputPlace()};
        for (int i = 0; i < 2; ++i) {
            ASSERT_NE(cell.plain(), nullptr);
            EXPECT_EQ(cell.plain()->content(), "initial input");
            EXPECT_EQ(cell.typed(), cell.plain());
        }
    });
}

TEST_F(VRunningCellTest, returnsAValueOfADerivedClassOnlyAsATypedOne)
{
    const StrongPtr<Overriding> value{new Overriding{"overridden"}};
    VScheduler::schedule(m_other, 0, m_pool);
    VScheduler::run(m_pool);
    m_pool->createVariable(m_other->out.parameter().get(), value);
    ASSERT_TRUE(m_probe->attachOutput(m_other->findOutput("out"), m_probe->in.slot(), ""));
    duringUpdate([&](ValuePool& pool) {
        const VRunningCell<std::string> cell{&pool, m_probe->inputPlace()};
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(cell.plain(), nullptr);
            EXPECT_EQ(cell.typed(), value.get());
        }
    });
}

TEST_F(VRunningCellTest, isWritableForAnEnabledOutputButNotForAConnectedInput)
{
    ASSERT_TRUE(m_probe->attachOutput(m_other->findOutput("out"), m_probe->in.slot(), ""));
    duringUpdate([&](ValuePool& pool) {
        const VRunningCell<std::string> input{&pool, m_probe->inputPlace()};
        EXPECT_EQ(input.writable(), nullptr);
        const VRunningCell<std::string> output{&pool, m_probe->outputPlace()};
        ASSERT_NE(output.writable(), nullptr);
        EXPECT_EQ(output.writable()->content(), "initial output");
        m_probe->out.parameter()->setEnabled(false);
        EXPECT_EQ(output.writable(), nullptr);
        m_probe->out.parameter()->setEnabled(true);
        EXPECT_NE(output.writable(), nullptr);
    });
}

TEST_F(VRunningCellTest, noticesThatAnOutputIsReadBeforeItIsWritten)
{
    const auto update = [this](const std::function<void(const StrongPtr<ValuePool>&)>& work) {
        const StrongPtr<ValuePool> pool(new ValuePool);
        m_probe->work = [&](ValuePool& running) { work(running.root()); };
        VScheduler::schedule(m_probe, 0, pool);
        VScheduler::run(pool);
        const std::optional<VHistory> history = VScheduler::history(pool);
        return history ? history->slot : "none";
    };
    const VOutput<std::string>& out = m_probe->out;
    std::string text;
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) { out.value(pool); }), "out");
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) { out(pool) >> text; }), "out");
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) { m_probe->in.value(pool); }), "none");
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) { m_other->out.value(pool); }), "none");
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) {
                  out(pool) << "written";
                  out.value(pool);
              }),
              "none");
    EXPECT_EQ(update([&](const StrongPtr<ValuePool>& pool) {
                  out(pool) <<= "initial output";
                  out(pool) >> text;
              }),
              "none");
}

TEST_F(VRunningCellTest, announcesWhatItWrites)
{
    ASSERT_TRUE(m_other->attachOutput(m_probe->findOutput("out"), m_other->in.slot(), ""));
    VScheduler::schedule(m_other, 0, m_pool);
    VScheduler::run(m_pool);
    const Changes changes{m_probe->out.parameter()};
    std::string read;
    m_other->work = [&](ValuePool& pool) {
        read = VRunningCell<std::string>{&pool, m_other->inputPlace()}.plain()->content();
    };
    m_probe->work = [&](ValuePool& pool) {
        const VRunningCell<std::string> cell{&pool, m_probe->outputPlace()};
        const Loam::Ageable::Age before = cell.writable()->age().stamp();
        cell.write(*cell.writable(), "written");
        EXPECT_GT(cell.writable()->age().stamp(), before);
    };
    VScheduler::schedule(m_probe, 0, m_pool);
    EXPECT_EQ(VScheduler::run(m_pool).updates, 2u);
    EXPECT_EQ(read, "written");
    EXPECT_EQ(changes.count(), 1);
}

} // namespace VRunningCellTest
