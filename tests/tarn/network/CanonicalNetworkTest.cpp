#include <tarn/network/CanonicalNetwork.hpp>

#include <fathom/Double.hpp>
#include <fathom/VValue.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace CanonicalNetworkTest {

using namespace Tarn;

namespace {

constexpr Place Here{1, 1};

// An object whose type is not registered, with two inputs in the file.
NetworkFile fileWithAnObject()
{
    NetworkFile file;
    NetworkFile::Object& object = file.objects.emplace_back();
    object.name = {"a", Here};
    object.type = {"Unknown", Here};
    object.description = "object \"a\"";
    object.texts = {{{"late", Here}, {"2", Here}}, {{"early", Here}, {"01", Here}}};
    object.connections = {{{"z", Here}, {"b.out", Here}}, {{"y", Here}, {"c.out", Here}}};
    return file;
}

NetworkInputs::Input input(const std::string& name, double value, const std::string& text)
{
    return {.name = name,
            .type = &typeid(double),
            .place = {},
            .description = "input \"" + name + "\"",
            .given = Loam::makeStrong<Orla::VValue<double>>(0.0),
            .value = Loam::makeStrong<Orla::VValue<double>>(value),
            .texts = {text},
            .namesResult = false};
}

} // namespace

TEST(CanonicalNetwork, hasTheTextsOfTheValuesInTheOrderOfTheInputs)
{
    NetworkInputs inputs;
    inputs.objects.push_back({true, {"early", "late", "y", "z"}, {input("early", 1, "01"), input("late", 2, "2")}});
    Faults faults{"net.toml"};
    const CanonicalNetwork canonical{fileWithAnObject(), inputs, faults};
    EXPECT_TRUE(faults.empty());
    const NetworkFile::Object& object = canonical.file().objects.front();
    ASSERT_EQ(object.texts.size(), 2u);
    EXPECT_EQ(object.texts[0].input.text, "early");
    EXPECT_EQ(object.texts[0].value.text, "1");
    EXPECT_EQ(object.texts[1].input.text, "late");
    EXPECT_EQ(object.connections[0].input.text, "y");
    EXPECT_EQ(object.connections[1].input.text, "z");
}

TEST(CanonicalNetwork, keepsObjectsOfUnknownTypeAsTheyAre)
{
    NetworkInputs inputs;
    inputs.objects.push_back({false, {}, {}});
    Faults faults{"net.toml"};
    const CanonicalNetwork canonical{fileWithAnObject(), inputs, faults};
    EXPECT_EQ(canonical.file().objects.front().texts.front().input.text, "late");
}

TEST(CanonicalNetwork, hasAFaultForAValueThatNoTextRestores)
{
    NetworkInputs inputs;
    inputs.objects.push_back({true, {"early"}, {input("early", 1, "text of another value")}});
    inputs.objects.front().set.front().value = Loam::makeStrong<Orla::VValue<int>>(7);
    inputs.objects.front().set.front().texts = {"none"};
    Faults faults{"net.toml"};
    const CanonicalNetwork canonical{fileWithAnObject(), inputs, faults};
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults.all().front().message,
              "input \"early\": the value cannot be kept: no text that a file can hold restores it");
}

TEST(CanonicalNetwork, isNotWrittenIfItWouldReadBackDifferently)
{
    NetworkFile file = fileWithAnObject();
    file.objects.front().kept = "this is not TOML";
    EXPECT_THROW(canonicalText(file, Faults{"net.toml"}), std::logic_error);
}

} // namespace CanonicalNetworkTest
