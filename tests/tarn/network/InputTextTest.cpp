#include <tarn/network/InputText.hpp>

#include <trellis/VObjectCreator.hpp>

#include "tarn/DescribedObjects.hpp"
#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <string>

namespace InputTextTest {

using namespace Tarn;
using testing::HasSubstr;

namespace {

class InputTextTest : public LoadedLibraries {
protected:
    InputTextTest() { EXPECT_TRUE(m_described.load("describedobjects")); }
    ~InputTextTest() override
    {
        m_object.reset();
        EXPECT_TRUE(m_described.unload());
    }

    // Returns the text of the value that an input of a heater has, or why it is refused.
    std::string read(const std::string& input, const std::string& text)
    {
        if (!m_object)
            m_object = Orla::VObjectCreator::find("Heater")->create("heater", 0, nullptr);
        const Orla::StrongPtr<Orla::VSlot> slot = m_object->findSlot(input);
        const auto value = readInputText(*slot, slot->ownParameter()->newValue(), text);
        return value ? (*value)->Text() : value.reason();
    }

private:
    Libraries m_described{{ODD_LIBRARIES_FOLDER}};
    Orla::StrongPtr<Orla::VObject> m_object;
};

ProcessResult evaluateHeater(const std::string& settings, std::vector<std::string> options = {})
{
    options.push_back("--table=-");
    return runDescribed("run", object("oven", "Heater", settings) + column("heat", "oven.heat"), options);
}

} // namespace

TEST_F(InputTextTest, acceptsNumbersWithinTheLimits)
{
    EXPECT_EQ(read("power", "0"), "0");
    EXPECT_EQ(read("power", "9.5"), "9.5");
    EXPECT_EQ(read("plain", "1e9"), "1000000000");
}

TEST_F(InputTextTest, refusesEachNumberOutsideTheLimits)
{
    EXPECT_EQ(read("power", "10"), "found 10 kW, expected a number at least 0 and below 10 kW");
    EXPECT_EQ(read("power", "-0.5"), "found -0.5 kW, expected a number at least 0 and below 10 kW");
    EXPECT_EQ(read("power", "nan"), "found nan kW, expected a number at least 0 and below 10 kW");
    EXPECT_EQ(read("night", "22:49"), "found 49 h, expected numbers from 0 to 48 h");
}

TEST_F(InputTextTest, refusesUnitsInsteadOfIgnoringThem)
{
    EXPECT_EQ(read("power", "5 kW"), "5");
    EXPECT_EQ(read("power", "5 MW"),
              "the text \"5 MW\" is refused, expected numbers in kW; found \"MW\", and units are not converted");
    EXPECT_EQ(read("night", "22 h:23 min"), "the text \"22 h:23 min\" is refused, expected numbers in h; found "
                                            "\"min\", and units are not converted");
    EXPECT_EQ(read("power", "5\u00b5W"), "the text \"5\u00b5W\" is refused, expected numbers in kW; found "
                                         "\"\u00b5W\", and units are not converted");
}

TEST_F(InputTextTest, showsWhatWouldBeAccepted)
{
    EXPECT_EQ(read("power", "much"),
              "the text \"much\" is refused, expected a value of type number, at least 0 and below 10 kW");
    EXPECT_EQ(read("night", "late"), "the text \"late\" is refused, expected a value of type range, from 0 to 48 h, "
                                     "for example \"4.5:10\"");
    EXPECT_EQ(read("mode", "curv3"), "the text \"curv3\" is refused, expected \"curve\", \"constant\" or \"off\"");
    EXPECT_EQ(read("room", "celler"), "the text \"celler\" is refused, expected \"cellar\", \"hall\" or \"attic\"");
}

TEST_F(InputTextTest, selectsAChoiceByItsName)
{
    EXPECT_EQ(read("room", "attic"), "attic@hall|attic|cellar|");
    EXPECT_EQ(read("room", "attic@hall|attic|cellar|"), "attic@hall|attic|cellar|");
    EXPECT_EQ(read("mode", "off"), "off{constant}{curve}{off}");
}

TEST(InputText, namesAChoiceThatTheObjectOffersLater)
{
    const auto picked = [](const std::string& settings) {
        return evaluate(object("places", "Picker", "set = { offered = 'Africa,Asia', " + settings + " }\n")
                        + column("chosen", "places.chosen"));
    };
    EXPECT_EQ(picked("one = 'Asia'").out, "step,chosen\n0,Asia\n");
    EXPECT_THAT(picked("one = 'Asai'").err, HasSubstr("\"Asai\" is not among the 2 choices; did you mean \"Asia\"?"));
    EXPECT_THAT(picked("many = 'Asai'").err, HasSubstr("\"Asai\" is not among the 2 choices; did you mean \"Asia\"?"));
}

TEST(InputText, isCheckedInNetworksOverridesAndSweeps)
{
    const ProcessResult inFile = evaluateHeater("set.power = 12\n");
    EXPECT_EQ(inFile.status, 2);
    EXPECT_THAT(inFile.err, HasSubstr("net.toml:6:13: object \"oven\", input \"power\": found 12 kW, expected a "
                                      "number at least 0 and below 10 kW\n"));
    EXPECT_THAT(evaluateHeater("", {"--set=oven.power=12"}).err,
                HasSubstr("--set=oven.power=12: found 12 kW, expected a number at least 0 and below 10 kW\n"));
    EXPECT_THAT(evaluateHeater("", {"--sweep=oven.power=1,12"}).err,
                HasSubstr("cannot vary \"oven.power\": found 12 kW, expected a number at least 0 and below 10 kW\n"));
    EXPECT_EQ(evaluateHeater("set.power = 2\n").out, "step,heat\n0,2\n");
}

} // namespace InputTextTest
