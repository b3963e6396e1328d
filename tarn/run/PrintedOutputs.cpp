#include <tarn/run/PrintedOutputs.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/libraries/FailureOf.hpp>
#include <tarn/text/Faults.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>

#include <stdexcept>
#include <string_view>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VSlot;

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

    /// Sets \p output and \p member to the output that \p reference names. Returns an empty
    /// string, or why there is no such output.
    std::string find(const std::string& reference, StrongPtr<VSlot>& output, std::string& member) const
    {
        if (reference.find('.') == std::string::npos)
            return "expected OBJECT.OUTPUT";
        std::string_view rest;
        const std::size_t number = m_names.findAtStart(reference, rest);
        if (number == ObjectNames::npos)
            return "no object is named " + inQuotes(reference.substr(0, reference.find('.')))
                   + insteadOf(reference.substr(0, reference.find('.')), m_names.names());
        const Orla::VObject& object = *m_objects[number];
        output = findSlotAtStart(object.outputs(), rest, '.');
        if (!output) {
            const std::string name(rest.substr(0, rest.find('.')));
            return object.describe() + " has no output " + inQuotes(name)
                   + (object.findSlot(name) ? "; that is an input" : insteadOf(name, namesOf(object.outputs())));
        }
        if (rest.size() == output->name().size())
            return {};
        member = rest.substr(output->name().size() + 1);
        const std::type_info& type = output->type();
        if (!member.empty() && Orla::VValueComponents::typeOf(type, member))
            return {};
        return "values of type " + Loam::Typename(type) + " have no component " + inQuotes(member)
               + insteadOf(member, Orla::VValueComponents::names(type));
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
        Output output{.reference = reference, .slot = {}, .member = {}};
        if (const std::string why = objects.find(reference, output.slot, output.member); !why.empty())
            faults.add("--print=" + printable(reference) + ": " + why);
        else
            m_outputs.push_back(std::move(output));
    }
}

std::string PrintedOutputs::lines(const StrongPtr<Orla::ValuePool>& pool, std::vector<std::string>& failures) const
{
    std::string lines;
    for (const Output& output : m_outputs) {
        std::string text;
        const std::string why = failureOf([&] {
            StrongPtr<Orla::VValueBase> value = output.slot->getLocalValue(pool);
            if (value && !output.member.empty())
                value = value->component(output.member);
            if (!value)
                throw std::runtime_error("it has no value");
            text = value->Text();
        });
        if (why.empty())
            lines += escaped(output.reference) + ": " + escaped(text) + '\n';
        else
            failures.push_back("output " + inQuotes(output.reference) + " cannot be printed: " + why);
    }
    return lines;
}

} // namespace Tarn
