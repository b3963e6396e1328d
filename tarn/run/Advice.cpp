#include <tarn/run/Advice.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionCheck.hpp>
#include <tarn/types/DescriptionText.hpp>

#include <trellis/VObject.hpp>

#include <algorithm>
#include <cstddef>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VSlot;
using Orla::VSlotContainer;

// What is read in the current network, and which containers the readings lead to.
class Readings {
public:
    explicit Readings(const Network& network)
    {
        for (const StrongPtr<Orla::VManagedObject>& managed : announcedObjects()) {
            if (const StrongPtr<Orla::VObject> object{managed})
                add(object);
        }
        // Unannounced containers are appended on the way.
        for (std::size_t number = 0; number < m_containers.size(); ++number)
            follow(m_containers[number]);
        for (const Network::Column& column : network.columns)
            readFromOutside(*column.output.output);
        for (const auto& [object, output] : StatusReport::findOutputs())
            readFromOutside(*output);
    }

    bool isRead(const VSlot& output) const { return m_read.contains(output.parameter().get()); }

    // Returns the containers from which connections lead to a result.
    std::unordered_set<const VSlotContainer*> useful() const
    {
        std::unordered_set<const VSlotContainer*> reached(m_results.begin(), m_results.end());
        std::vector<const VSlotContainer*> due(reached.begin(), reached.end());
        while (!due.empty()) {
            const VSlotContainer* const reader = due.back();
            due.pop_back();
            const auto [first, last] = m_sources.equal_range(reader);
            for (auto each = first; each != last; ++each) {
                if (reached.insert(each->second).second)
                    due.push_back(each->second);
            }
        }
        return reached;
    }

private:
    void add(const StrongPtr<VSlotContainer>& container)
    {
        if (m_known.insert(container.get()).second)
            m_containers.push_back(container);
    }

    void follow(const StrongPtr<VSlotContainer>& container)
    {
        for (const StrongPtr<VSlot>& input : container->inputs()) {
            if (input->hasFlag(VSlot::NamesResult))
                m_results.insert(container.get());
            if (!input->isConnected() && input->ownsParameter())
                continue;
            m_read.insert(input->parameter().get());
            if (const StrongPtr<VSlotContainer> source = input->parameter()->owner()) {
                m_sources.emplace(container.get(), source.get());
                add(source);
            }
        }
    }

    void readFromOutside(const VSlot& output)
    {
        m_read.insert(output.parameter().get());
        m_results.insert(output.container());
        // The output may pass on one of another container.
        if (const StrongPtr<VSlotContainer> source = output.parameter()->owner())
            m_results.insert(source.get());
    }

    std::vector<StrongPtr<VSlotContainer>> m_containers;
    std::unordered_set<const VSlotContainer*> m_known;
    std::unordered_set<const VSlotContainer*> m_results;
    std::unordered_multimap<const VSlotContainer*, const VSlotContainer*> m_sources; // by reader
    std::unordered_set<const Orla::VParameter*> m_read;
};

class Adviser {
public:
    Adviser(const Network& network, const std::string& title)
        : m_readings{network}, m_useful{m_readings.useful()}, m_advice{title}
    {
    }

    void examine(const StrongPtr<Orla::VObject>& object, const NetworkFile::Object& entry)
    {
        for (const StrongPtr<VSlot>& input : object->inputs()) {
            if (!input->description() && m_undescribed.emplace(entry.type.text, input->name()).second)
                add(FaultKind::Input, entry.type.place,
                    "the type " + inQuotes(entry.type.text) + " does not describe its input "
                        + inQuotes(input->name()));
        }
        for (const NetworkFile::InputText& text : entry.texts)
            examineCondition(*object, entry, text.input, "is set");
        for (const NetworkFile::Setting& connection : entry.connections)
            examineCondition(*object, entry, connection.input, "is connected");
        for (const StrongPtr<VSlot>& output : object->outputs()) {
            if (!isPrivateState(*output) && !m_readings.isRead(*output))
                add(FaultKind::Connection, entry.place,
                    entry.description + ": the output " + inQuotes(output->name()) + " is never read");
        }
        if (!m_useful.contains(object.get()))
            add(FaultKind::Object, entry.place, entry.description + " reaches no file, column or status");
    }

    Faults take() { return std::move(m_advice); }

private:
    void examineCondition(const Orla::VObject& object, const NetworkFile::Object& entry, const PlacedText& input,
                          const char* how)
    {
        const StrongPtr<VSlot> slot = object.inputs().find(input.text);
        if (slot && !isApplicable(object, *slot))
            add(FaultKind::Input, input.place,
                entry.description + ": the input " + inQuotes(input.text) + ' ' + how + ", but matters "
                    + conditionOf(*slot->description()));
    }

    void add(FaultKind kind, Place place, const std::string& message)
    {
        m_advice.add(kind, place, "advice: " + message);
    }

    Readings m_readings;
    std::unordered_set<const VSlotContainer*> m_useful;
    std::set<std::pair<std::string, std::string>> m_undescribed; // type and input
    Faults m_advice;
};

} // namespace

Faults adviceOn(const Network& network, const NetworkFile& file, const std::string& title)
{
    Adviser adviser{network, title};
    for (std::size_t i = 0; i < std::min(network.objects.size(), file.objects.size()); ++i) {
        if (const StrongPtr<Orla::VObject> object{network.objects[i]})
            adviser.examine(object, file.objects[i]);
    }
    return adviser.take();
}

} // namespace Tarn
