#include <tarn/reference/ManualPages.hpp>

#include <loam/Utf8.hpp>

#include <trellis/VSlotDescription.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <string>

namespace ManualPagesTest {

using namespace Tarn;
using testing::AllOf;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

using Files = std::map<std::string, std::string>;

Files filesOf(const std::vector<ValueTypeDescription>& values, const std::vector<ObjectTypeDescription>& objects)
{
    Files files;
    writeManual(values, objects, [&](const std::string& file, const std::string& content) {
        EXPECT_TRUE(files.emplace(file, content).second) << file;
    });
    return files;
}

ObjectTypeDescription::Input input(const std::string& name, const Orla::VSlotDescription* description = nullptr)
{
    ObjectTypeDescription::Input input;
    input.name = name;
    input.type = "double";
    input.typeLabel = "number";
    input.initialText = input.exampleText = "5";
    input.description = description;
    return input;
}

ObjectTypeDescription objectType(const std::string& name, const std::string& category = {})
{
    ObjectTypeDescription type;
    type.name = name;
    type.library = "/lib/fathom/houses.so";
    type.inputs = {input("power")};
    type.outputs = {{"heat", "double", "number", nullptr}};
    type.description.emplace();
    type.description->sentence = "Is a " + name + ".";
    type.description->category = category;
    return type;
}

ValueTypeDescription number()
{
    ValueTypeDescription type;
    type.name = "double";
    type.label = "number";
    type.defaultText = "0";
    return type;
}

std::size_t sizeOf(std::size_t types)
{
    std::vector<ObjectTypeDescription> objects;
    for (std::size_t i = 0; i < types; ++i)
        objects.push_back(objectType("Type" + std::to_string(100000 + i), "Many"));
    std::size_t size = 0;
    writeManual({number()}, objects, [&](const std::string&, const std::string& content) { size += content.size(); });
    return size;
}

} // namespace

TEST(ManualPages, areOnePerTypeInBothFormatsWithADrawingOfEachObject)
{
    EXPECT_THAT(filesOf({number()}, {objectType("Heater")}),
                UnorderedElementsAre(Key("manual.css"), Key("index.html"), Key("index.md"), Key("Heater.html"),
                                     Key("Heater.md"), Key("Heater.svg"), Key("value-number.html"),
                                     Key("value-number.md")));
}

TEST(ManualPages, showTablesDrawingExampleAndRelatedTypes)
{
    const auto power = Orla::VSlotDescription::of(Orla::describe("The power.").in("kW").from(0).parts());
    ObjectTypeDescription heater = objectType("Heater", "Houses");
    heater.inputs = {input("power", power.get())};
    const Files files = filesOf({number()}, {heater, objectType("Stove", "Houses"), objectType("Boat", "Ships")});
    const std::string& page = files.at("Heater.md");
    EXPECT_THAT(page, AllOf(HasSubstr("# Heater\n\nIs a Heater.\n\n"), HasSubstr("![The object with its"),
                            HasSubstr("](Heater.svg)")));
    EXPECT_THAT(page, HasSubstr("| `power` | [number](value-number.md) | `5` | The power; at least 0 kW. |\n"));
    EXPECT_THAT(page, HasSubstr("| `heat` | [number](value-number.md) |  | [Heater.power](Heater.md), "
                                "[Stove.power](Stove.md), [Boat.power](Boat.md) |\n"));
    EXPECT_THAT(page, HasSubstr("libraries = [\"houses\"]\n\n[[object]]\nname = \"heater\"\ntype = \"Heater\"\n"
                                "set.power = \"5\"\n\n[[column]]\ntitle = \"heat\"\nvalue = \"heater.heat\"\n"));
    EXPECT_THAT(page, HasSubstr("## Other types of the category Houses\n\n- [Stove](Stove.md)\n"));
    EXPECT_THAT(files.at("Heater.svg"), AllOf(HasSubstr("<svg "), HasSubstr(">power<"), HasSubstr(">heat<")));
    EXPECT_THAT(files.at("value-number.md"),
                AllOf(HasSubstr("## Inputs of this type\n\n- [Heater.power](Heater.md)\n"),
                      HasSubstr("## Outputs of this type\n\n- [Heater.heat](Heater.md)\n")));
    EXPECT_THAT(files.at("index.md"), AllOf(HasSubstr("3 object types of the library `houses`, and 1 value type."),
                                            HasSubstr("## Houses\n\n| Object type | Meaning |\n|---|---|\n"
                                                      "| [Heater](Heater.md) | Is a Heater. |\n"
                                                      "| [Stove](Stove.md) | Is a Stove. |\n\n## Ships\n")));
}

TEST(ManualPages, listHiddenInputsInASectionOfTheirOwn)
{
    const auto hidden = Orla::VSlotDescription::of(Orla::describe("A number.").hidden().parts());
    ObjectTypeDescription heater = objectType("Heater");
    heater.inputs.push_back(input("serial", hidden.get()));
    const Files files = filesOf({number()}, {heater});
    const std::string& page = files.at("Heater.md");
    ASSERT_THAT(page, HasSubstr("| `serial` |"));
    EXPECT_LT(page.find("## Hidden inputs and outputs"), page.find("| `serial` |"));
    EXPECT_THAT(files.at("Heater.svg"), Not(HasSubstr("serial")));
    EXPECT_THAT(files.at("value-number.md"), Not(HasSubstr("serial")));
}

TEST(ManualPages, stateWhatAnExampleNeeds)
{
    const auto file = Orla::VSlotDescription::of(Orla::describe("The file.").asInputFile().parts());
    ObjectTypeDescription reader = objectType("Reader");
    reader.inputs.push_back(input("file", file.get()));
    reader.inputs.push_back(input("grid"));
    for (ObjectTypeDescription::Input& each : reader.inputs) {
        if (each.name != "power")
            each.initialText = each.exampleText = {};
    }
    EXPECT_THAT(filesOf({}, {reader}).at("Reader.md"),
                HasSubstr("Before you run this network, set or connect `file`.\n\n"
                          "The network leaves these inputs empty: `grid`.\n\n"));
}

TEST(ManualPages, describeTypesOfValuesThatAreNotRegistered)
{
    const Files files = filesOf({}, {objectType("Heater")});
    EXPECT_THAT(files.at("value-number.md"), HasSubstr("| Use | Values are made only by objects. |"));
    EXPECT_THAT(files.at("Heater.md"), HasSubstr("[number](value-number.md)"));
}

TEST(ManualPages, giveTheReasonWhyObjectsCannotBeMade)
{
    ObjectTypeDescription broken = objectType("Broken");
    broken.failure = "no <licence>";
    const std::string page = filesOf({}, {broken}).at("Broken.html");
    EXPECT_THAT(page, HasSubstr("<p>Objects of this type cannot be made: no &lt;licence&gt;.</p>"));
    EXPECT_THAT(page, Not(HasSubstr("Example")));
    // They would lead to tables that do not exist.
    EXPECT_THAT(filesOf({}, {broken}).at("value-number.html"), Not(HasSubstr("Broken.html")));
}

TEST(ManualPages, areValidAndHarmlessWhateverNamesAndDescriptionsContain)
{
    const std::string bad = "</code><script>alert(1)</script>\x1b\x01\xff\"'&|`\n";
    Orla::VSlotDescription::Parts parts;
    parts.sentence = bad;
    parts.unit = bad;
    const auto description = Orla::VSlotDescription::of(parts);
    ObjectTypeDescription type = objectType(bad, bad);
    type.library = "/lib/" + bad;
    type.description->details = bad + "\n\n" + bad;
    type.description->keywords = {bad};
    type.description->page = "https://" + bad;
    type.inputs = {input(bad, description.get())};
    type.inputs[0].initialText = type.inputs[0].exampleText = bad;
    type.inputs[0].partner = bad;
    type.inputs[0].choices = {bad};
    type.outputs = {{bad, bad, bad, description.get()}};
    ValueTypeDescription value = number();
    value.label = value.name = value.example = value.colour = value.defaultText = value.failure = bad;
    value.components = {bad};
    for (const auto& [file, content] : filesOf({value, number()}, {type})) {
        SCOPED_TRACE(file);
        EXPECT_TRUE(std::ranges::all_of(file, [](unsigned char c) { return c > 0x20 && c < 0x7F && c != '/'; }));
        EXPECT_TRUE(Loam::isUtf8(content));
        // Code in Markdown shows markup literally.
        EXPECT_TRUE(file.ends_with(".md") || content.find("<script") == std::string::npos);
        EXPECT_TRUE(std::ranges::none_of(content, [](unsigned char c) { return c < 0x20 && c != '\n'; }));
    }
}

TEST(ManualPages, growWithTheNumberOfTypesNotWithItsSquare)
{
    const std::size_t few = sizeOf(100);
    EXPECT_LT(sizeOf(400), 4 * few + few / 2);
}

TEST(ManualPages, ofManyTypesLeadToAllOfThem)
{
    std::vector<ObjectTypeDescription> objects;
    for (int i = 0; i < 30; ++i)
        objects.push_back(objectType("Type" + std::to_string(10 + i), "Many"));
    const Files files = filesOf({number()}, objects);
    const std::string& page = files.at("Type10.html");
    EXPECT_THAT(page, HasSubstr("<li><a href=\"index.html#category-Many\">All 30</a></li>"));
    EXPECT_THAT(page, HasSubstr(", <a href=\"value-number.html#inputs\">22 more</a></td>"));
    EXPECT_THAT(page, Not(HasSubstr("Type39")));
    EXPECT_THAT(files.at("Type39.html"), HasSubstr("Type38"));
}

} // namespace ManualPagesTest
