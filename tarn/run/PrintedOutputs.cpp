#include <tarn/run/PrintedOutputs.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/text/Faults.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VObject.hpp>

#include <string_view>

namespace Tarn {

namespace {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;

// The announced objects by name; of several with the same name, the first one counts.
class Objects {
public:
    Objects()
    {
        for (const StrongPtr<Orla::VManagedObject>& managed : announcedObjects()) {
            const StrongPtr<Orla::VObject> object{managed};
            if (object && m_names.add(object->Name(), m_objects.size()))
                m_objects.push_back(object);
        }
    }

    Result<OutputReference> find(const std::string& reference) const
    {
        if (reference.find('.') == std::string::npos)
            return Failure{"expected OBJECT.OUTPUT"};
        std::string_view rest;
        const std::size_t number = m_names.findAtStart(reference, rest);
        if (number == ObjectNames::npos)
            return Failure{"no object is named " + inQuotes(reference.substr(0, reference.find('.')))
                           + insteadOf(reference.substr(0, reference.find('.')), m_names.names())};
        const Orla::VObject& object = *m_objects[number];
        Result<OutputReference> found = OutputReference::find(object, object.describe(), rest);
        if (!found)
            return found;
        if (const Result<void> fits = found->checkMember(); !fits)
            return Failure{fits.reason()};
        return found;
    }

private:
    std::vector<StrongPtr<Orla::VObject>> m_objects;
    ObjectNames m_names;
};

} // namespace

PrintedOutputs::PrintedOutputs(const std::vector<std::string>& references, Faults& faults)
{
    if (references.empty())
        return;
    const Objects objects;
    for (const std::string& reference : references) {
        if (Result<OutputReference> found = objects.find(reference))
            m_outputs.push_back({reference, *std::move(found)});
        else
            faults.add("--print=" + printable(reference) + ": " + found.reason());
    }
}

std::string PrintedOutputs::lines(const StrongPtr<Orla::ValuePool>& pool, std::vector<std::string>& failures) const
{
    std::string lines;
    for (const auto& [name, output] : m_outputs) {
        if (const Result<std::string> text = output.text(pool))
            lines += escaped(name) + ": " + escaped(*text) + '\n';
        else
            failures.push_back("output " + inQuotes(name) + " cannot be printed: " + text.reason());
    }
    return lines;
}

} // namespace Tarn
