#include <tarn/types/DescriptionCheck.hpp>

#include <tarn/libraries/Libraries.hpp>

#include "tarn/DescribedObjects.hpp"

#include <fathom/Double.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObject.hpp>

#include <gmock/gmock.h>

#include <string>

namespace DescriptionCheckTest {

using namespace Tarn;
using Orla::describe;
using testing::HasSubstr;

namespace {

class Kettle final : public Orla::VObject {
public:
    Kettle() : VObject{"kettle", 0, {}} {}
    bool update(Orla::VRequest&, double) override { return true; }

    Orla::TypedSlot<Orla::Enum> mode{this, "mode", Orla::Enum{"slow", "fast"}, describe("How it heats.")};
    Orla::TypedSlot<double> time{this, "time", 1.0, describe("How long.").onlyIf("mode", "slow")};
    Orla::TypedSlot<double> power{this, "power", 1.0, describe("The power.").to(5)};
    Orla::VOutput<double> heat{this, "heat", 0.0};
    Orla::VOutput<double> sum{this, "sum", 0.0, describe("The heat so far.").asPrivateState()};
};

std::string reasonFor(const std::string& type)
{
    const ProcessResult result = runDescribed("check", object("a", type) + object("b", type));
    EXPECT_EQ(result.status, 2);
    return result.err;
}

} // namespace

TEST(DescriptionCheck, acceptsDescriptionsThatFitTheirObject)
{
    EXPECT_TRUE(checkDescriptions(*Loam::makeStrong<Kettle>()));
}

TEST(DescriptionCheck, reportsAWrongDescriptionOncePerType)
{
    EXPECT_EQ(reasonFor("Overheated"),
              "net.toml:5:8: object \"a\": the description of type \"Overheated\" is wrong: input \"power\": its "
              "initial value is outside its limits: found 11 kW, expected a number at most 10 kW\n"
              "net.toml: 1 fault\n");
    EXPECT_THAT(reasonFor("MissingCondition"),
                HasSubstr("input \"power\": its condition refers to the input \"mode\", which does not exist\n"));
    EXPECT_THAT(reasonFor("SelfCondition"), HasSubstr("input \"power\": its condition refers to the input itself\n"));
    EXPECT_THAT(reasonFor("RefusedCondition"), HasSubstr("input \"night\": its condition refers to the text \"low\", "
                                                         "which the input \"power\" refuses\n"));
}

TEST(DescriptionCheck, checksTheNumbersOfAValue)
{
    const auto kettle = Loam::makeStrong<Kettle>();
    const auto power = kettle->power.slot();
    EXPECT_TRUE(checkLimits(*power, *Loam::makeStrong<Orla::VValue<double>>(5.0)));
    EXPECT_EQ(checkLimits(*power, *Loam::makeStrong<Orla::VValue<double>>(6.0)).reason(),
              "found 6, expected a number at most 5");
    EXPECT_TRUE(checkLimits(*kettle->time.slot(), *Loam::makeStrong<Orla::VValue<double>>(6.0)));
}

TEST(DescriptionCheck, findsOutWhetherAConditionIsMet)
{
    const auto kettle = Loam::makeStrong<Kettle>();
    EXPECT_TRUE(isApplicable(*kettle, *kettle->time.slot()));
    EXPECT_TRUE(isApplicable(*kettle, *kettle->power.slot())) << "it has no condition";
    EXPECT_TRUE(kettle->mode.slot()->setInitialText("fast"));
    EXPECT_FALSE(isApplicable(*kettle, *kettle->time.slot()));
}

TEST(DescriptionCheck, recognisesPrivateState)
{
    const auto kettle = Loam::makeStrong<Kettle>();
    EXPECT_TRUE(isPrivateState(*kettle->findOutput("sum")));
    EXPECT_FALSE(isPrivateState(*kettle->findOutput("heat")));
}

TEST(DescriptionCheck, keepsPrivateStateFromOtherObjects)
{
    const ProcessResult result = runDescribed(
        "check", object("oven", "Heater") + object("other", "Heater", "connect = { plain = 'oven.sum' }\n"));
    EXPECT_THAT(result.err, HasSubstr("output \"sum\" of object \"oven\" of type Heater is private state\n"));
}

} // namespace DescriptionCheckTest
