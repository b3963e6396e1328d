#include <trellis/VSlotDescription.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

namespace VSlotDescriptionTest {

using namespace Orla;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

template<VDescribes What>
StrongPtr<VSlotDescription> stored(const VDescription<What>& description)
{
    return VSlotDescription::of(description.parts());
}

VSlotDescription::Parts partsWith(VLimits limits)
{
    VSlotDescription::Parts parts;
    parts.sentence = "A number.";
    parts.limits = limits;
    return parts;
}

} // namespace

TEST(VSlotDescription, isStoredOncePerContent)
{
    const auto first = stored(describe("Stored once.").in("m"));
    EXPECT_EQ(stored(describe("Stored once.").in("m")), first);
    EXPECT_NE(stored(describe("Stored once.").in("km")), first);
    EXPECT_NE(stored(describe("Stored once.").in("m").onlyIf("mode", "a")), first);
    EXPECT_EQ(VSlotDescription::of(first->parts()), first);
    EXPECT_NE(first->number(), 0u);
    EXPECT_EQ(VSlotDescription::withNumber(first->number()), first.get());
    EXPECT_EQ(VSlotDescription::withNumber(0), nullptr);
}

TEST(VSlotDescription, isStoredOnceByManyThreads)
{
    std::vector<StrongPtr<VSlotDescription>> found(8);
    {
        std::vector<std::jthread> threads;
        for (auto& each : found)
            threads.emplace_back([&each] { each = stored(describe("Stored by threads.")); });
    }
    for (const auto& each : found)
        EXPECT_EQ(each, found.front());
}

TEST(VSlotDescription, copiesTheDeclaredParts)
{
    const VSlotDescription::Parts parts =
        stored(describe("A file.").asInputFile("json").onlyIf("mode", "a", "b"))->parts();
    EXPECT_EQ(parts.sentence, "A file.");
    EXPECT_EQ(parts.textKind, VTextKind::InputFile);
    EXPECT_EQ(parts.extensions, std::vector<std::string>{"json"});
    EXPECT_EQ(parts.conditionInput, "mode");
    EXPECT_EQ(parts.conditionValues, (std::vector<std::string>{"a", "b"}));
}

TEST(VSlotDescription, acceptsNumbersWithinItsLimits)
{
    const auto limited = stored(describe("A number.").above(0).to(5));
    EXPECT_TRUE(limited->accepts(5));
    EXPECT_FALSE(limited->accepts(0));
    EXPECT_FALSE(limited->accepts(5.5));
    EXPECT_FALSE(limited->accepts(nan));
    const auto finite = stored(describe("A number.").finite());
    EXPECT_TRUE(finite->accepts(-1e300));
    EXPECT_FALSE(finite->accepts(infinity));
    EXPECT_FALSE(finite->accepts(nan));
    EXPECT_TRUE(stored(describe("A number."))->accepts(nan));
}

TEST(VSlotDescription, writesLimitsWithTheirUnit)
{
    EXPECT_EQ(stored(describe("A number.").in("km").from(0).to(1e7))->limitsText(), "from 0 to 10000000 km");
    EXPECT_EQ(stored(describe("A number.").above(0))->limitsText(), "above 0");
    EXPECT_EQ(stored(describe("A number.").in("s").from(0.5))->limitsText(), "at least 0.5 s");
    EXPECT_EQ(stored(describe("A number.").to(5))->limitsText(), "at most 5");
    EXPECT_EQ(stored(describe("A number.").above(0).below(1))->limitsText(), "above 0 and below 1");
    EXPECT_EQ(stored(describe("A number.").in("m").above(0).finite())->limitsText(), "above 0 m and finite");
    EXPECT_EQ(stored(describe("A number.").in("m").finite())->limitsText(), "finite");
    EXPECT_EQ(stored(describe("A number.").in("m"))->limitsText(), "");
    EXPECT_EQ(stored(describe("A number.").in("m"))->withUnit("5"), "5 m");
    EXPECT_EQ(stored(describe("A number."))->withUnit("5"), "5");
}

TEST(VSlotDescription, refusesContradictionsThatAreKnownOnlyAtRunTime)
{
    EXPECT_NO_THROW(VSlotDescription::of(partsWith({0, 1})));
    for (const VLimits& limits : {VLimits{nan, 1}, VLimits{0, nan}, VLimits{2, 1}, VLimits{1, 1, true},
                                  VLimits{infinity, infinity}, VLimits{-infinity, -infinity}})
        EXPECT_THROW(VSlotDescription::of(partsWith(limits)), std::invalid_argument);
    const auto faultWith = [](auto change) {
        VSlotDescription::Parts parts = partsWith({});
        change(parts);
        return VSlotDescription::faultOf(parts);
    };
    using Parts = VSlotDescription::Parts;
    EXPECT_EQ(faultWith([](Parts&) {}), "");
    EXPECT_EQ(faultWith([](Parts& parts) { parts.sentence.clear(); }), "a description needs a sentence");
    EXPECT_EQ(faultWith([](Parts& parts) {
                  parts.softLimits = {3, 2};
              }),
              "the soft limits must be two numbers in ascending order");
    EXPECT_EQ(faultWith([](Parts& parts) { parts.step = -1; }), "the step must be a positive number");
    EXPECT_EQ(faultWith([](Parts& parts) { parts.step = infinity; }), "the step must be a positive number");
    EXPECT_EQ(faultWith([](Parts& parts) {
                  parts.textKind = VTextKind::Folder;
                  parts.isFinite = true;
              }),
              "a text has no limits and no step");
    EXPECT_EQ(faultWith([](Parts& parts) { parts.conditionInput = "mode"; }),
              "a condition must name an input and its values");
}

} // namespace VSlotDescriptionTest
