#include <tarn/types/TypeCatalogue.hpp>

#include <fathom/Double.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VConnectionTypeColors.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VObjectCreator.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

namespace TypeCatalogueTest {

using namespace Tarn;
using Orla::StrongPtr;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Preferences = StrongPtr<Orla::VCreationPreferences>;

class Pendulum final : public Orla::VObject, public Orla::TimeDependent, public Orla::VChartDependent {
public:
    Pendulum(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , VChartDependent{"chart", 9}
        , m_length{this, "length", 1.5, 2}
        , m_angle{this, "angle", 0.0}
    {
        ++living;
    }
    ~Pendulum() override { --living; }

    bool update(Orla::VRequest&, double) override { return true; }

    static inline int living = 0;

private:
    Orla::TypedSlot<double> m_length;
    Orla::VOutput<double> m_angle;
};

const Orla::VObjectType<Pendulum> pendulumType{"Pendulum"};

// Throws after a partner has been created for it.
class Unhinged final : public Orla::VObject, public Orla::VChartDependent {
public:
    Unhinged(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, VChartDependent{"chart", 0}
    {
        throw std::runtime_error("no hinge");
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

const Orla::VObjectType<Unhinged> unhingedType{"Unhinged"};

// A value type that no input has and whose text form throws.
struct Secret {
    friend bool operator==(const Secret&, const Secret&) = default;
};

} // namespace

} // namespace TypeCatalogueTest

template<>
struct Orla::VValueTrait<TypeCatalogueTest::Secret> {
    using Secret = TypeCatalogueTest::Secret;

    static std::string Text(const Secret&) { throw std::runtime_error("it is secret"); }
    static bool setValueFromText(Secret&, const std::string&) { return true; }
};

namespace TypeCatalogueTest {

TEST(TypeCatalogue, describesAnObjectTypeAndLeavesNoObject)
{
    const TypeCatalogue catalogue{{}};
    const auto found = catalogue.objectTypes("Pendulum");
    ASSERT_EQ(found.size(), 1u);
    const ObjectTypeDescription& type = found[0];
    EXPECT_EQ(type.name, "Pendulum");
    EXPECT_THAT(type.library, HasSubstr("tarn-test"));
    EXPECT_EQ(type.failure, "");
    EXPECT_EQ(type.hiddenInputs, 0u);
    ASSERT_EQ(type.inputs.size(), 4u);
    EXPECT_EQ(type.inputs[0].name, "time");
    EXPECT_EQ(type.inputs[0].type, "VTime");
    EXPECT_EQ(type.inputs[0].typeLabel, "time");
    EXPECT_EQ(type.inputs[0].level, 5);
    EXPECT_TRUE(type.inputs[0].findsPartner);
    EXPECT_EQ(type.inputs[0].partner, "");
    EXPECT_EQ(type.inputs[1].name, "range");
    EXPECT_FALSE(type.inputs[1].findsPartner);
    EXPECT_EQ(type.inputs[2].name, "chart");
    EXPECT_TRUE(type.inputs[2].findsPartner);
    EXPECT_EQ(type.inputs[2].partner, "ChartSelector.CurrentChart");
    EXPECT_EQ(type.inputs[3].name, "length");
    EXPECT_EQ(type.inputs[3].type, "double");
    EXPECT_EQ(type.inputs[3].level, 2);
    EXPECT_EQ(type.inputs[3].initialText, "1.5");
    ASSERT_EQ(type.outputs.size(), 2u);
    EXPECT_EQ(type.outputs[0].name, "time");
    EXPECT_EQ(type.outputs[1].name, "angle");
    EXPECT_EQ(type.outputs[1].type, "double");
    EXPECT_EQ(type.outputs[1].typeLabel, "number");

    EXPECT_EQ(Pendulum::living, 0);
    EXPECT_EQ(Orla::VManagedObject::count(), 0u);
}

TEST(TypeCatalogue, countsTheInputsItHides)
{
    const TypeCatalogue catalogue{{}};
    const auto found = catalogue.objectTypes("Pendulum", 5);
    ASSERT_EQ(found.size(), 1u);
    ASSERT_EQ(found[0].inputs.size(), 2u);
    EXPECT_EQ(found[0].inputs[0].name, "time");
    EXPECT_EQ(found[0].inputs[1].name, "length");
    EXPECT_EQ(found[0].hiddenInputs, 2u);
    EXPECT_EQ(found[0].outputs.size(), 2u);
}

TEST(TypeCatalogue, describesValueTypesWithTheirColours)
{
    Orla::VValue<Secret>::myTypedValueCreator();
    Orla::VConnectionTypeColors::set(typeid(Secret), "#123456");
    const TypeCatalogue catalogue{{}};
    const auto number = catalogue.valueTypes("double");
    ASSERT_EQ(number.size(), 1u);
    EXPECT_EQ(number[0].colour, "green");
    EXPECT_EQ(number[0].defaultText, "0");
    EXPECT_EQ(number[0].failure, "");
    EXPECT_TRUE(number[0].isInput);
    EXPECT_THAT(number[0].components, IsEmpty());
    const auto time = catalogue.valueTypes("VTime");
    ASSERT_EQ(time.size(), 1u);
    EXPECT_EQ(time[0].colour, "#B8860B");
    EXPECT_EQ(catalogue.valueTypes("float")[0].colour, "");
    EXPECT_THAT(time[0].components, ElementsAre("time", "range", "dt"));
    const auto secret = catalogue.valueTypes("Secret");
    ASSERT_EQ(secret.size(), 1u);
    EXPECT_EQ(secret[0].colour, "#123456");
    EXPECT_FALSE(secret[0].isInput);
    EXPECT_EQ(secret[0].failure, "it is secret");
    EXPECT_THAT(catalogue.valueTypes("Pendulum"), IsEmpty());
    EXPECT_THAT(catalogue.objectTypes("double"), IsEmpty());
}

TEST(TypeCatalogue, findsValueTypesByTheirNamesInCodeAndByTheirLabels)
{
    const TypeCatalogue catalogue{{}};
    for (const char* name : {"FixedArray<int,3>", "integer triple"}) {
        SCOPED_TRACE(name);
        const auto found = catalogue.valueTypes(name);
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].name, "FixedArray<int,3>");
        EXPECT_EQ(found[0].label, "integer triple");
    }
    EXPECT_THAT(catalogue.valueTypes("triple"), IsEmpty());
}

TEST(TypeCatalogue, givesTheReasonIfAnObjectCannotBeCreated)
{
    const auto found = TypeCatalogue{{}}.objectTypes("Unhinged");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].name, "Unhinged");
    EXPECT_EQ(found[0].failure, "no hinge");
    EXPECT_THAT(found[0].inputs, IsEmpty());
    EXPECT_EQ(Orla::VManagedObject::count(), 0u);
}

TEST(TypeCatalogue, releasesPartnersAndLibraries)
{
    // If anything were left, the program would warn that the libraries stay in memory.
    for (const std::string type : {"Listener", "Follower", "Chartmaker", "TimeReader", "HalfMade", "Everything"}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(runTarn({"describe", type, "--library=testobjects"}).err, "");
    }
    const ProcessResult hoarder = runTarn({"describe", "Hoarder", "--library=testobjects"});
    EXPECT_EQ(hoarder.status, 0);
    EXPECT_EQ(hoarder.err,
              "tarn: warning: The library \"testobjects\" stays in memory because Adder \"hoard\" is still in use\n");
}

TEST(TypeCatalogue, reportsRefusedLibraries)
{
    const TypeCatalogue catalogue{{"none"}};
    EXPECT_THAT(catalogue.refusals(), testing::Contains(HasSubstr("library \"none\" was not found")));
}

TEST(TypeCatalogue, namesTypesThatSeveralLibrariesDefineWithTheirLibrary)
{
    const TarnProcess::Options both{.environment = {"TARN_LIBRARIES=" TEST_OBJECTS_FOLDER ":" ODD_LIBRARIES_FOLDER},
                                    .shell = {}};
    const std::vector<std::string> libraries{"--library=testobjects", "--library=rivalobjects"};
    const ProcessResult described = runTarn({"describe", "Adder", libraries[0], libraries[1]}, both);
    EXPECT_THAT(described.out, HasSubstr("Object type testobjects:Adder, " TEST_OBJECTS_FOLDER "/testobjects.so\n"));
    EXPECT_THAT(described.out, HasSubstr("Object type rivalobjects:Adder, " ODD_LIBRARIES_FOLDER "/rivalobjects.so\n"));
    const ProcessResult one = runTarn({"describe", "rivalobjects:Adder", libraries[0], libraries[1]}, both);
    EXPECT_EQ(one.status, 0);
    EXPECT_THAT(one.out, testing::StartsWith("Object type rivalobjects:Adder, "));
    EXPECT_THAT(one.out, testing::Not(HasSubstr("testobjects:")));
    const ProcessResult types = runTarn({"types", libraries[0], libraries[1]}, both);
    EXPECT_THAT(types.out, HasSubstr("\n  rivalobjects:Adder "));
    EXPECT_THAT(types.out, HasSubstr("\n  testobjects:Adder "));
}

} // namespace TypeCatalogueTest
