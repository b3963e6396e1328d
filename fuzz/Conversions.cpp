#include "Conversions.hpp"

#include "Support.hpp"

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/Conversion.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/text/PlacedText.hpp>
#include <tarn/text/ReadFile.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VObjectCreator.hpp>

#include <optional>

namespace Fuzz {

namespace {

using Tarn::Conversion;
using Tarn::Faults;
using Tarn::NetworkInputs;

NetworkInputs inputsOf(const std::string& text, const std::vector<std::string>& overrides)
{
    Faults faults{"network"};
    Faults unknown{"network"};
    const Tarn::NetworkFile file = Tarn::parseNetwork(
        text, faults, [](const std::string& type) { return bool(Orla::VObjectCreator::find(type)); });
    NetworkInputs inputs = Tarn::readInputs(file, overrides, {}, faults, unknown);
    Tarn::removeAnnouncedObjects();
    require(faults.empty(), "a network that was converted has no faults");
    return inputs;
}

void requireSame(const NetworkInputs::Input& found, const NetworkInputs::Input& expected)
{
    requireEqual(found.name, expected.name, "inputs keep their names");
    requireEqual(found.value->Text(), expected.value->Text(), "inputs keep the texts of their values");
    // NaN, for example, differs from itself.
    const bool isComparable = !expected.value->isDifferentFrom(expected.value->copy());
    require(!isComparable || !found.value->isDifferentFrom(expected.value), "inputs keep their values");
}

void requireSame(const NetworkInputs& found, const NetworkInputs& expected)
{
    require(found.objects.size() == expected.objects.size(), "a conversion keeps all objects");
    require(found.connectionCount == expected.connectionCount, "a conversion keeps all connections");
    for (std::size_t object = 0; object < found.objects.size(); ++object) {
        const auto& inputs = found.objects[object].set;
        const auto& originals = expected.objects[object].set;
        require(inputs.size() == originals.size(), "a conversion keeps all texts of inputs");
        for (std::size_t input = 0; input < inputs.size(); ++input)
            requireSame(inputs[input], originals[input]);
    }
}

// Every fault in the file begins with FILE:LINE:COLUMN.
void checkFaults(const Faults& faults, const std::string& text)
{
    const Tarn::Place end = Tarn::placeAt(text, text.size());
    for (const std::string& line : faults.lines()) {
        require(!line.empty(), "a fault has a message");
        if (!line.starts_with(faults.file() + ":"))
            continue;
        const std::string place = line.substr(faults.file().size() + 1);
        const unsigned long number = std::strtoul(place.c_str(), nullptr, 10);
        require(number >= 1 && number <= end.line, "a fault is inside the file: " + line);
    }
}

} // namespace

bool checkConversion(const std::string& path, const std::vector<std::string>& overrides)
{
    const std::size_t objects = Orla::VManagedObject::count();
    const std::string original = Tarn::readFile(path);
    std::string text;
    {
        const Conversion conversion{path, overrides};
        checkFaults(conversion.faults(), original);
        checkFaults(conversion.unknown(), original);
        if (!conversion.faults().empty())
            return false;
        text = conversion.text();
    }
    const Conversion again{fileWith("again.toml", text), {}};
    require(again.faults().empty(), "a converted network has no faults: "
                                        + (again.faults().empty() ? "" : again.faults().lines().front()) + "\n" + text);
    requireEqual(again.text(), text, "converting a converted network does not change it");
    requireSame(inputsOf(text, {}), inputsOf(original, overrides));
    require(Orla::VManagedObject::count() == objects, "a conversion leaves no objects");
    return true;
}

} // namespace Fuzz
