#include <tarn/types/DescriptionText.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/TomlText.hpp>

#include <loam/Numbers.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>

namespace Tarn {

namespace {

using Orla::VLimits;
using Orla::VSlotDescription;
using Orla::VVisibility;

// In the order of the enumerators.
constexpr std::array TextKinds{"text", "input file", "output file", "folder", "colour", "web page", "multi-line text"};
constexpr std::array Visibilities{"ordinary", "advanced", "hidden", "private state"};

std::string textKindOf(const VSlotDescription::Parts& parts)
{
    std::string text = TextKinds.at(static_cast<std::size_t>(parts.textKind));
    for (std::size_t i = 0; i < parts.extensions.size(); ++i)
        text += (i == 0 ? " (." : ", .") + parts.extensions[i];
    return parts.extensions.empty() ? text : text + ')';
}

Json finiteOrNull(double number)
{
    return std::isfinite(number) ? Json(number) : Json(nullptr);
}

Json limitsJson(const VLimits& limits)
{
    if (!limits.isSet())
        return nullptr;
    return {{"from", finiteOrNull(limits.from)},
            {"to", finiteOrNull(limits.to)},
            {"excludesFrom", limits.excludesFrom},
            {"excludesTo", limits.excludesTo}};
}

} // namespace

std::vector<std::string> factsOf(const VSlotDescription& description)
{
    const VSlotDescription::Parts& parts = description.parts();
    std::vector<std::string> facts;
    if (const std::string limits = description.limitsText(); !limits.empty())
        facts.push_back(limits);
    const bool hasUnit = !facts.empty() && facts.back() != "finite";
    if (!parts.unit.empty() && !hasUnit)
        facts.push_back("in " + parts.unit);
    if (parts.softLimits.isSet())
        facts.push_back("usually " + Loam::numberText(parts.softLimits.from) + " to "
                        + Loam::numberText(parts.softLimits.to));
    if (parts.step > 0)
        facts.push_back("in steps of " + Loam::numberText(parts.step));
    if (parts.isLogarithmic)
        facts.push_back("logarithmic scale");
    if (parts.textKind != Orla::VTextKind::Plain)
        facts.push_back(textKindOf(parts));
    if (!parts.conditionInput.empty())
        facts.push_back(conditionOf(description));
    if (parts.visibility != VVisibility::Ordinary)
        facts.push_back(Visibilities.at(static_cast<std::size_t>(parts.visibility)));
    return facts;
}

std::string conditionOf(const VSlotDescription& description)
{
    const VSlotDescription::Parts& parts = description.parts();
    if (parts.conditionInput.empty())
        return {};
    std::string text = "only if " + parts.conditionInput + " is ";
    for (std::size_t i = 0; i < parts.conditionValues.size(); ++i)
        text += (i == 0 ? "\"" : " or \"") + parts.conditionValues[i] + '"';
    return text;
}

std::string summaryOf(const VSlotDescription* description)
{
    if (!description)
        return {};
    std::string summary = description->parts().sentence;
    const std::vector<std::string> facts = factsOf(*description);
    if (facts.empty())
        return summary;
    if (summary.ends_with('.'))
        summary.pop_back();
    for (const std::string& fact : facts)
        summary += "; " + fact;
    return summary + '.';
}

std::string exampleNameOf(const ObjectTypeDescription& type)
{
    std::string name = type.name;
    if (!name.empty() && name.front() >= 'A' && name.front() <= 'Z')
        name.front() = static_cast<char>(name.front() - 'A' + 'a');
    return name;
}

std::string exampleNetworkLines(const ObjectTypeDescription& type)
{
    std::string lines = "[[object]]\nname = " + tomlString(Loam::validUtf8(exampleNameOf(type)))
                        + "\ntype = " + tomlString(Loam::validUtf8(type.name)) + '\n';
    for (const ObjectTypeDescription::Input& input : type.inputs) {
        const bool isAdvanced = input.description && input.description->parts().visibility != VVisibility::Ordinary;
        if (input.level > 0 || input.findsPartner || input.exampleText.empty() || isAdvanced)
            continue;
        lines += "set." + tomlKey(Loam::validUtf8(input.name)) + " = " + tomlString(Loam::validUtf8(input.exampleText))
                 + '\n';
    }
    return lines;
}

std::string exampleNetwork(const ObjectTypeDescription& type)
{
    std::string network = "format = 1\n";
    if (const std::string library = libraryOf(type); library != StandardLibrary)
        network += "libraries = [" + tomlString(Loam::validUtf8(library)) + "]\n";
    network += '\n' + exampleNetworkLines(type);
    const auto output = std::ranges::find_if(type.outputs, &isListed, &ObjectTypeDescription::Output::description);
    if (output == type.outputs.end())
        return network;
    return network + "\n[[column]]\ntitle = " + tomlString(Loam::validUtf8(output->name))
           + "\nvalue = " + tomlString(Loam::validUtf8(exampleNameOf(type) + '.' + output->name)) + '\n';
}

std::string libraryOf(const ObjectTypeDescription& type)
{
    return std::filesystem::path(type.library).stem().string();
}

bool needsFile(const ObjectTypeDescription::Input& input)
{
    return input.initialText.empty() && input.description
           && input.description->parts().textKind == Orla::VTextKind::InputFile
           && input.description->parts().conditionInput.empty();
}

Json slotDescriptionJson(const VSlotDescription* description)
{
    if (!description)
        return nullptr;
    const VSlotDescription::Parts& parts = description->parts();
    Json condition;
    if (!parts.conditionInput.empty())
        condition = {{"input", parts.conditionInput}, {"values", parts.conditionValues}};
    return {{"sentence", parts.sentence},
            {"unit", orNull(parts.unit)},
            {"limits", limitsJson(parts.limits)},
            {"softLimits", limitsJson(parts.softLimits)},
            {"step", parts.step > 0 ? Json(parts.step) : Json(nullptr)},
            {"isLogarithmic", parts.isLogarithmic},
            {"isFinite", parts.isFinite},
            {"textKind", TextKinds.at(static_cast<std::size_t>(parts.textKind))},
            {"extensions", parts.extensions},
            {"visibility", Visibilities.at(static_cast<std::size_t>(parts.visibility))},
            {"condition", condition}};
}

Json typeDescriptionJson(const std::optional<Orla::VTypeDescription::Parts>& description)
{
    if (!description)
        return nullptr;
    return {{"sentence", description->sentence},
            {"details", orNull(description->details)},
            {"category", orNull(description->category)},
            {"keywords", description->keywords},
            {"page", orNull(description->page)}};
}

bool isListed(const VSlotDescription* description)
{
    return !description || description->parts().visibility < VVisibility::Hidden;
}

} // namespace Tarn
