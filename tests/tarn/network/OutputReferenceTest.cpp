#include <tarn/network/OutputReference.hpp>

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VTime.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace OutputReferenceTest {

using namespace Tarn;
using Orla::StrongPtr;

namespace {

struct Riddle {
    friend bool operator==(const Riddle&, const Riddle&) = default;
};

} // namespace

} // namespace OutputReferenceTest

template<>
struct Orla::VValueTrait<OutputReferenceTest::Riddle> {
    using Riddle = OutputReferenceTest::Riddle;

    static std::string Text(const Riddle&) { throw std::runtime_error("guess"); }
    static bool setValueFromText(Riddle&, const std::string&) { return true; }
};

namespace OutputReferenceTest {

namespace {

class Sphinx final : public Orla::VObject {
public:
    explicit Sphinx(const std::string& name) : VObject{name, 0, nullptr} {}

    bool update(Orla::VRequest&, double) override { return true; }

private:
    Orla::TypedSlot<double> m_in{this, "in", 0, 0};
    Orla::VOutput<Orla::VTime> m_time{this, "time", Orla::VTime{2, 0, 5}};
    Orla::VOutput<Orla::VTime> m_range{this, "time.range", Orla::VTime{3, 1, 7}};
    Orla::VOutput<Riddle> m_riddle{this, "riddle", Riddle{}};
};

class OutputReferenceTest : public testing::Test {
protected:
    Loam::Result<OutputReference> find(const std::string& text) const
    {
        return OutputReference::find(*m_sphinx, "object \"sphinx\"", text);
    }

    std::string textOf(const std::string& text) const
    {
        const Loam::Result<OutputReference> reference = find(text);
        if (!reference)
            return "refused: " + reference.reason();
        const Loam::Result<std::string> value = reference->text(Loam::makeStrong<Orla::ValuePool>());
        return value ? *value : "failed: " + value.reason();
    }

private:
    StrongPtr<Sphinx> m_sphinx = Loam::makeStrong<Sphinx>("sphinx");
};

} // namespace

TEST_F(OutputReferenceTest, readsAnOutputOrAComponentOfItsValue)
{
    EXPECT_EQ(textOf("time"), "2[0,5]@5");
    EXPECT_EQ(textOf("time.dt"), "5");
    EXPECT_EQ(textOf("time.range.range.end"), "7");
}

TEST_F(OutputReferenceTest, prefersTheOutputWithTheLongestName)
{
    EXPECT_EQ(textOf("time.range"), "3[1,7]@6");
    EXPECT_EQ(textOf("time.range.time"), "3");
}

TEST_F(OutputReferenceTest, refusesAnythingButOutputs)
{
    EXPECT_EQ(textOf("tine"), "refused: object \"sphinx\" has no output \"tine\"; did you mean \"time\"?");
    EXPECT_EQ(textOf("in"), "refused: object \"sphinx\" has no output \"in\"; that is an input");
    EXPECT_EQ(textOf("Zanzibar.dt"),
              "refused: object \"sphinx\" has no output \"Zanzibar\"; available: time, time.range, riddle");
    EXPECT_EQ(textOf("time."), "refused: found nothing after the last dot, expected the name of a component");
}

TEST_F(OutputReferenceTest, checksTheComponentOnRequest)
{
    EXPECT_TRUE(find("time.dt")->checkMember());
    EXPECT_TRUE(find("time")->checkMember());
    EXPECT_EQ(find("time.tme")->checkMember().reason(),
              "values of type time have no component \"tme\"; did you mean \"time\"?");
}

TEST_F(OutputReferenceTest, failsWithAReasonIfTheValueHasNoText)
{
    EXPECT_EQ(textOf("time.tme"), "failed: it has no value");
    EXPECT_EQ(textOf("riddle"), "failed: guess");
}

} // namespace OutputReferenceTest
