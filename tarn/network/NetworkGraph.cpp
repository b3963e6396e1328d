#include <tarn/network/NetworkGraph.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>

#include <loam/StringUtil.hpp>
#include <loam/Typename.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <map>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <unordered_set>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VSlot;
using Orla::VSlotContainer;

constexpr char Uncoloured[] = "black";
constexpr char Font[] = "sans-serif";

// Polishing the layout of larger graphs takes minutes for little improvement.
constexpr std::size_t MostPolished = 100;
constexpr char FewerRounds[] = ", nslimit=1, nslimit1=1, mclimit=0.1";

// Even a few rounds over 10,000 objects take half a minute, and so does releasing what the
// default ranking allocates; both grow with the square of the size.
constexpr char NoRounds[] = ", newrank=true, nslimit=0, nslimit1=0, mclimit=0.01, splines=line";

// Returns the registered names of object types; empty for a class that has several.
std::map<std::type_index, std::string> registeredNames()
{
    std::map<std::type_index, std::string> names;
    for (const std::string& name : Orla::VObjectCreator::names()) {
        const StrongPtr<Orla::VObjectCreator> creator = Orla::VObjectCreator::find(name);
        if (!creator)
            continue;
        if (const auto [entry, isNew] = names.emplace(creator->objectType(), name); !isNew)
            entry->second.clear();
    }
    return names;
}

class Walk {
public:
    explicit Walk(const Network& network)
    {
        for (const StrongPtr<VSlot>& input : network.connected)
            m_explicit.insert(input.get());
    }

    NetworkGraph perform()
    {
        for (const StrongPtr<Orla::VManagedObject>& managed : announcedObjects()) {
            if (const StrongPtr<Orla::VObject> object{managed})
                numberOf(object);
        }
        // Unannounced containers are appended on the way.
        for (std::size_t number = 0; number < m_containers.size(); ++number) {
            const StrongPtr<VSlotContainer> container = m_containers[number];
            for (std::size_t slot = 0; slot < container->inputs().size(); ++slot)
                addConnection({number, slot}, *container->inputs()[slot]);
        }
        return std::move(m_graph);
    }

private:
    std::size_t numberOf(const StrongPtr<VSlotContainer>& container)
    {
        const auto [entry, isNew] = m_numbers.emplace(container.get(), m_containers.size());
        if (isNew) {
            const VSlotContainer& self = *container;
            const Orla::VObject* const object = self.object();
            std::string type = m_types[typeid(self)];
            if (type.empty())
                type = self.typeName();
            m_containers.push_back(container);
            m_graph.objects.push_back({object ? object->Name() : std::string(), type, visibleNamesOf(self.inputs()),
                                       visibleNamesOf(self.outputs())});
        }
        return entry->second;
    }

    void addConnection(NetworkGraph::End input, const VSlot& slot)
    {
        if (!slot.isConnected() && slot.ownsParameter())
            return;
        const StrongPtr<Orla::VParameter>& parameter = slot.parameter();
        const StrongPtr<VSlotContainer> source = parameter->owner();
        if (!source)
            return; // destroyed; only its last value remains
        const auto isIt = [&](const StrongPtr<VSlot>& each) { return each->parameter() == parameter; };
        NetworkGraph::Connection connection{.output = {numberOf(source), 0},
                                            .passesInputOn = false,
                                            .input = input,
                                            .member = slot.member(),
                                            .type = Orla::VTypeLabel::of(slot.type()),
                                            .colour = Orla::VConnectionTypeColors::get(slot.type()),
                                            .isImplicit = !m_explicit.contains(&slot)};
        const Orla::VSlotSet* slots = &source->outputs();
        auto found = std::find_if(slots->begin(), slots->end(), isIt);
        if (found == slots->end()) {
            connection.passesInputOn = true;
            slots = &source->inputs();
            found = std::find_if(slots->begin(), slots->end(), isIt);
            if (found == slots->end())
                return; // no longer offered
        }
        if (isPrivateState(**found))
            return; // the drawing omits it
        connection.output.slot = static_cast<std::size_t>(
            std::count_if(slots->begin(), found, [](const auto& each) { return !isPrivateState(*each); }));
        m_graph.connections.push_back(std::move(connection));
    }

    std::map<std::type_index, std::string> m_types = registeredNames();
    std::unordered_set<const VSlot*> m_explicit;
    std::unordered_map<const VSlotContainer*, std::size_t> m_numbers;
    std::vector<StrongPtr<VSlotContainer>> m_containers;
    NetworkGraph m_graph;
};

bool isPlainLetter(char letter) noexcept
{
    return letter == '#' || (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z')
           || (letter >= 'A' && letter <= 'Z');
}

// Returns how many letters after an ampersand make it look like an entity, or 0.
std::size_t entityLength(std::string_view rest) noexcept
{
    const auto end = static_cast<std::size_t>(std::ranges::find_if_not(rest, isPlainLetter) - rest.begin());
    return end > 0 && end < rest.size() && rest[end] == ';' ? end + 1 : 0;
}

// Returns a piece of text that is not joined with the preceding one.
std::string apart(std::string_view piece)
{
    return "<FONT FACE=\"" + std::string(Font) + "\">" + std::string(piece) + "</FONT>";
}

// Returns the text for a label in Graphviz's HTML-like language. It is drawn literally: line
// breaks break lines, other control characters of ASCII appear as control pictures, and those
// beyond ASCII as numbers.
std::string inLabel(const std::string& raw)
{
    const std::string text = Loam::StringUtil::unicodeEscaped(Loam::validUtf8(raw));
    std::string label;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        if (text[i] == '&') {
            label += "&amp;";
            // Text that looks like an entity once this one is decoded would be decoded again
            // on the way to the picture, unless it is split into two pieces.
            if (const std::size_t length = entityLength(std::string_view(text).substr(i + 1))) {
                label += apart(std::string_view(text).substr(i + 1, length));
                i += length;
            }
        } else if (text[i] == '\\') {
            label += '\\';
            // Escapes in one piece would be replaced, such as "\N" by the name of the node.
            if (i + 1 < text.size() && (isPlainLetter(text[i + 1]) || text[i + 1] == '\\')) {
                label += apart(std::string_view(text).substr(i + 1, 1));
                ++i;
            }
        } else if (text[i] == '<') {
            label += "&lt;";
        } else if (text[i] == '>') {
            label += "&gt;";
        } else if (text[i] == '"') {
            label += "&quot;";
        } else if (text[i] == '\n') {
            label += "<BR/>";
        } else if (code < 0x20) {
            Loam::appendUtf8(label, U'\u2400' + code);
        } else if (code == 0x7F) {
            label += "\u2421";
        } else {
            label += text[i];
        }
    }
    return label;
}

bool isHexDigit(char letter) noexcept
{
    return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
}

// Returns a colour that Graphviz may understand; Graphviz itself reports unknown names.
std::string drawnColour(const std::string& colour)
{
    const std::string_view digits = std::string_view(colour).substr(colour.starts_with('#') ? 1 : 0);
    if (!colour.starts_with('#')) {
        const bool isName = !digits.empty() && std::ranges::all_of(digits, isPlainLetter)
                            && digits.find('#') == std::string_view::npos && !(digits[0] >= '0' && digits[0] <= '9');
        return isName ? colour : Uncoloured;
    }
    if (!std::ranges::all_of(digits, isHexDigit))
        return Uncoloured;
    if (digits.size() == 6 || digits.size() == 8)
        return colour;
    if (digits.size() != 3)
        return Uncoloured;
    std::string doubled = "#";
    for (const char digit : digits)
        doubled.append(2, digit);
    return doubled;
}

// \p start is the start of the cell's attributes, which end with the row's number.
std::string cellOf(const std::vector<std::string>& names, std::size_t row, const std::string& start)
{
    return row < names.size() ? "<TD " + start + std::to_string(row) + "\">" + inLabel(names[row]) + "</TD>"
                              : "<TD></TD>";
}

std::string boxOf(const NetworkGraph::Object& object)
{
    std::string box = "<TABLE BORDER=\"1\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"4\">"
                      "<TR><TD COLSPAN=\"2\" BGCOLOR=\"gray90\">";
    if (!object.name.empty())
        box += "<B>" + inLabel(object.name) + "</B><BR/>";
    box += inLabel(object.type) + "</TD></TR>";
    for (std::size_t row = 0; row < std::max(object.inputs.size(), object.outputs.size()); ++row) {
        box += "<TR>";
        box += cellOf(object.inputs, row, "ALIGN=\"LEFT\" PORT=\"in");
        box += cellOf(object.outputs, row, "ALIGN=\"RIGHT\" PORT=\"out");
        box += "</TR>";
    }
    return box + "</TABLE>";
}

const char* layoutOptions(std::size_t objects) noexcept
{
    if (objects > MostLaidOutWell)
        return NoRounds;
    return objects > MostPolished ? FewerRounds : "";
}

std::string legendOf(const NetworkGraph& graph)
{
    std::map<std::string, std::string> colours;
    bool hasImplicit = false;
    for (const NetworkGraph::Connection& connection : graph.connections) {
        colours[connection.type] = drawnColour(connection.colour);
        hasImplicit |= connection.isImplicit;
    }
    std::string rows;
    for (const auto& [type, colour] : colours)
        rows +=
            "<TR><TD BGCOLOR=\"" + colour + "\" WIDTH=\"24\"></TD><TD ALIGN=\"LEFT\">" + inLabel(type) + "</TD></TR>";
    if (hasImplicit)
        rows += "<TR><TD COLSPAN=\"2\" ALIGN=\"LEFT\">dashed: connected automatically</TD></TR>";
    return "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"4\">" + rows + "</TABLE>";
}

} // namespace

NetworkGraph NetworkGraph::of(const Network& network)
{
    return Walk{network}.perform();
}

std::string dotText(const NetworkGraph& graph)
{
    const std::string font(Font);
    std::string text = "digraph network {\n";
    text += "    graph [rankdir=LR" + std::string(layoutOptions(graph.objects.size())) + "]\n";
    text += "    node [shape=plain, fontname=\"" + font + "\", fontsize=11]\n";
    text += "    edge [fontname=\"" + font + "\", fontsize=9, arrowsize=0.6]\n";
    for (std::size_t number = 0; number < graph.objects.size(); ++number)
        text += "    object" + std::to_string(number) + " [label=<" + boxOf(graph.objects[number]) + ">]\n";
    for (const NetworkGraph::Connection& connection : graph.connections) {
        const auto& [output, passesInputOn, input, member, type, colour, isImplicit] = connection;
        text += "    object" + std::to_string(output.object) + (passesInputOn ? ":in" : ":out")
                + std::to_string(output.slot) + (passesInputOn ? ":w" : ":e") + " -> object"
                + std::to_string(input.object) + ":in" + std::to_string(input.slot) + ":w [color=\""
                + drawnColour(colour) + '"';
        if (isImplicit)
            text += ", style=dashed";
        if (!member.empty())
            text += ", label=<" + inLabel(member) + ">";
        text += "]\n";
    }
    if (!graph.connections.empty())
        text += "    legend [label=<" + legendOf(graph) + ">]\n";
    return text + "}\n";
}

} // namespace Tarn
