#include <tarn/reference/ManualPages.hpp>

#include <tarn/network/GraphPicture.hpp>
#include <tarn/network/NetworkGraph.hpp>
#include <tarn/reference/Markup.hpp>
#include <tarn/reference/PageNames.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionText.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace Tarn {

namespace {

using Input = ObjectTypeDescription::Input;
using Output = ObjectTypeDescription::Output;

constexpr char IndexPage[] = "index";
constexpr char InputsId[] = "inputs";
constexpr char OutputsId[] = "outputs";
constexpr char ValuesId[] = "value-types";

// If pages listed all related types, their size would grow with the square of the number of types.
constexpr std::size_t MostNeighbours = 20;
constexpr std::size_t MostReaders = 8;

// Texts of large values, such as pictures, would fill the page.
constexpr std::size_t LongestText = 200;

std::string shortened(const std::string& text)
{
    if (text.size() <= LongestText)
        return text;
    std::size_t end = LongestText;
    while (end > 0 && Loam::isContinuation(text[end]))
        --end;
    return text.substr(0, end) + "...";
}

struct ValuePage {
    ValueTypeDescription type;
    bool isRegistered = true;
    std::string file;
};

// An input or an output of an object type.
struct Slot {
    std::size_t object = 0;
    std::size_t number = 0; // among the inputs or outputs
};

struct ObjectPage {
    const ObjectTypeDescription* type = nullptr;
    std::string file;
    std::vector<std::string> inputIds;
    std::vector<std::string> outputIds;
};

struct Category {
    std::string name; // empty for types without one
    std::string id;
    std::vector<std::size_t> objects;
};

class Manual {
public:
    using Write = std::function<void(const std::string& file, const std::string& content)>;

    Manual(const std::vector<ValueTypeDescription>& values, const std::vector<ObjectTypeDescription>& objects)
    {
        m_names.reserve(IndexPage);
        m_names.reserve("manual"); // the style
        addObjects(objects);
        for (const ValueTypeDescription& type : values)
            addValue({type, true, {}});
        for (const ObjectPage& page : m_objects)
            addUses(page);
        std::ranges::stable_sort(m_values, {}, [](const ValuePage& page) { return page.type.label; });
        for (std::size_t i = 0; i < m_values.size(); ++i) {
            m_values[i].file = m_names.add("value-" + m_values[i].type.label);
            m_valueNumbers[m_values[i].type.name] = i;
        }
        addCategories();
    }

    void write(const Write& write) const
    {
        write(StyleFile, styleText());
        for (std::size_t i = 0; i < m_objects.size(); ++i) {
            write(m_objects[i].file + ".svg", drawingOf(*m_objects[i].type));
            for (const Markup* const markup : {&htmlMarkup(), &markdownMarkup()})
                write(m_objects[i].file + markup->ending(), objectPage(*markup, i));
        }
        for (const ValuePage& page : m_values) {
            for (const Markup* const markup : {&htmlMarkup(), &markdownMarkup()})
                write(page.file + markup->ending(), valuePage(*markup, page));
        }
        for (const Markup* const markup : {&htmlMarkup(), &markdownMarkup()})
            write(IndexPage + markup->ending(), indexPage(*markup));
    }

private:
    void addObjects(const std::vector<ObjectTypeDescription>& objects)
    {
        for (const ObjectTypeDescription& type : objects) {
            const std::size_t object = m_objects.size();
            ObjectPage page{&type, m_names.add(type.name), {}, {}};
            PageNames ids;
            for (const std::string_view id : {InputsId, OutputsId})
                ids.reserve(id);
            for (const Input& input : type.inputs) {
                page.inputIds.push_back(ids.add("in-" + input.name));
                // The page of a type without objects has no tables to link to.
                if (type.failure.empty() && isListed(input.description))
                    m_readers[input.type].push_back({object, page.inputIds.size() - 1});
            }
            for (const Output& output : type.outputs) {
                page.outputIds.push_back(ids.add("out-" + output.name));
                if (type.failure.empty())
                    m_writers[output.type].push_back({object, page.outputIds.size() - 1});
            }
            m_libraries.insert(libraryOf(type));
            m_objects.push_back(std::move(page));
        }
    }

    void addValue(ValuePage page)
    {
        if (m_valueNumbers.try_emplace(page.type.name, m_values.size()).second)
            m_values.push_back(std::move(page));
    }

    // Adds the value types of inputs and outputs that no creator is registered for.
    void addUses(const ObjectPage& page)
    {
        const auto add = [&](const auto& slot) {
            ValueTypeDescription type;
            type.name = slot.type;
            type.label = slot.typeLabel;
            addValue({std::move(type), false, {}});
        };
        std::ranges::for_each(page.type->inputs, add);
        std::ranges::for_each(page.type->outputs, add);
    }

    void addCategories()
    {
        std::map<std::string, std::vector<std::size_t>> categories;
        for (std::size_t i = 0; i < m_objects.size(); ++i) {
            const auto& description = m_objects[i].type->description;
            categories[description ? description->category : std::string()].push_back(i);
        }
        PageNames ids;
        ids.reserve(ValuesId);
        // Types without a category come last.
        auto others = categories.extract(std::string());
        for (auto& [name, objects] : categories)
            m_categories.push_back({name, ids.add("category-" + name), std::move(objects)});
        if (!others.empty())
            m_categories.push_back({{}, ids.add("other"), std::move(others.mapped())});
        for (std::size_t i = 0; i < m_categories.size(); ++i) {
            for (const std::size_t object : m_categories[i].objects)
                m_categoryOf[object] = i;
        }
    }

    static std::string titleOf(const Category& category)
    {
        return category.name.empty() ? "Other types" : category.name;
    }

    static std::string drawingOf(const ObjectTypeDescription& type)
    {
        NetworkGraph::Object box{exampleNameOf(type), type.name, {}, {}};
        for (const Input& input : type.inputs) {
            if (isListed(input.description))
                box.inputs.push_back(input.name);
        }
        for (const Output& output : type.outputs) {
            if (isListed(output.description))
                box.outputs.push_back(output.name);
        }
        NetworkGraph graph;
        graph.objects.push_back(std::move(box));
        return drawGraph(dotText(graph), PictureFormat::Svg);
    }

    const ValuePage& valueOf(const std::string& type) const { return m_values[m_valueNumbers.at(type)]; }

    template<class AnySlot>
    std::string typeLink(const Markup& markup, const AnySlot& slot) const
    {
        return markup.link(valueOf(slot.type).file, {}, markup.text(slot.typeLabel));
    }

    std::string inputLink(const Markup& markup, const Slot& slot) const
    {
        const ObjectPage& page = m_objects[slot.object];
        return markup.link(page.file, page.inputIds[slot.number],
                           markup.text(page.type->name + '.' + page.type->inputs[slot.number].name));
    }

    std::string outputLink(const Markup& markup, const Slot& slot) const
    {
        const ObjectPage& page = m_objects[slot.object];
        return markup.link(page.file, page.outputIds[slot.number],
                           markup.text(page.type->name + '.' + page.type->outputs[slot.number].name));
    }

    // Returns the inputs of all types that can read the output.
    std::string readersOf(const Markup& markup, const Output& output) const
    {
        const auto found = m_readers.find(output.type);
        if (found == m_readers.end())
            return {};
        std::string links;
        const std::size_t count = std::min(found->second.size(), MostReaders);
        for (std::size_t i = 0; i < count; ++i)
            links += (i == 0 ? "" : ", ") + inputLink(markup, found->second[i]);
        if (const std::size_t more = found->second.size() - count; more > 0)
            links += ", " + markup.link(valueOf(output.type).file, InputsId, std::to_string(more) + " more");
        return links;
    }

    static std::string noteOn(const Markup& markup, const Input& input)
    {
        std::string note = markup.text(summaryOf(input.description));
        const auto add = [&](const std::string& sentence) { note += (note.empty() ? "" : " ") + sentence; };
        if (!input.choices.empty()) {
            std::string choices;
            for (const std::string& choice : input.choices)
                choices += (choices.empty() ? "" : ", ") + markup.code(shortened(choice));
            add("Choices: " + choices + '.');
        }
        if (input.findsPartner)
            add(input.partner.empty() ? "Connected automatically."
                                      : "Connected automatically to " + markup.code(input.partner) + '.');
        if (input.level > 0)
            add("Expert level " + std::to_string(input.level) + '.');
        return note;
    }

    std::string inputTable(const Markup& markup, std::size_t object, bool listed) const
    {
        const ObjectPage& page = m_objects[object];
        std::vector<Markup::Row> rows;
        for (std::size_t i = 0; i < page.type->inputs.size(); ++i) {
            const Input& input = page.type->inputs[i];
            if (isListed(input.description) == listed)
                rows.push_back({page.inputIds[i],
                                {markup.code(input.name), typeLink(markup, input),
                                 markup.code(shortened(input.initialText)), noteOn(markup, input)}});
        }
        return rows.empty() ? std::string() : markup.table({"Input", "Type", "Initial text", "Meaning"}, rows);
    }

    std::string outputTable(const Markup& markup, std::size_t object, bool listed) const
    {
        const ObjectPage& page = m_objects[object];
        std::vector<Markup::Row> rows;
        for (std::size_t i = 0; i < page.type->outputs.size(); ++i) {
            const Output& output = page.type->outputs[i];
            if (isListed(output.description) == listed)
                rows.push_back({page.outputIds[i],
                                {markup.code(output.name), typeLink(markup, output),
                                 markup.text(summaryOf(output.description)), readersOf(markup, output)}});
        }
        return rows.empty() ? std::string() : markup.table({"Output", "Type", "Meaning", "Can be read by"}, rows);
    }

    static std::string exampleOf(const Markup& markup, const ObjectTypeDescription& type)
    {
        std::string files;
        std::string others;
        for (const Input& input : type.inputs) {
            const bool isLeftOut = input.level == 0 && !input.findsPartner && isListed(input.description)
                                   && input.exampleText.empty()
                                   && (!input.description || input.description->parts().conditionInput.empty());
            if (needsFile(input))
                files += (files.empty() ? "" : ", ") + markup.code(input.name);
            else if (isLeftOut)
                others += (others.empty() ? "" : ", ") + markup.code(input.name);
        }
        std::string text = markup.heading(2, "example", "Example");
        if (!files.empty())
            text += markup.paragraph("Before you run this network, set or connect " + files + '.');
        if (!others.empty())
            text += markup.paragraph("The network leaves these inputs empty: " + others + '.');
        return text + markup.network(exampleNetwork(type));
    }

    std::string neighboursOf(const Markup& markup, std::size_t object) const
    {
        const Category& category = m_categories[m_categoryOf.at(object)];
        const std::vector<std::size_t>& all = category.objects;
        if (all.size() < 2)
            return {};
        const auto place = static_cast<std::size_t>(std::ranges::lower_bound(all, object) - all.begin());
        const std::size_t last = std::min(std::max(place, MostNeighbours / 2) + MostNeighbours / 2 + 1, all.size());
        const std::size_t first = last > MostNeighbours + 1 ? last - MostNeighbours - 1 : 0;
        std::vector<std::string> links;
        for (std::size_t i = first; i < last; ++i) {
            if (i != place)
                links.push_back(markup.link(m_objects[all[i]].file, {}, markup.text(m_objects[all[i]].type->name)));
        }
        if (last - first < all.size())
            links.push_back(markup.link(IndexPage, category.id, "All " + std::to_string(all.size())));
        return markup.heading(2, "category",
                              category.name.empty() ? "Other types without a category"
                                                    : "Other types of the category " + markup.text(category.name))
               + markup.list(links);
    }

    std::string objectPage(const Markup& markup, std::size_t object) const
    {
        const ObjectTypeDescription& type = *m_objects[object].type;
        const Category& category = m_categories[m_categoryOf.at(object)];
        std::string body = markup.paragraph(markup.link(IndexPage, {}, "Manual") + " / "
                                            + markup.link(IndexPage, category.id, markup.text(titleOf(category))));
        body += markup.heading(1, {}, markup.text(type.name));
        std::string facts = "Object type of the library " + markup.code(libraryOf(type)) + '.';
        if (type.description) {
            const auto& [sentence, details, categoryName, keywords, page] = *type.description;
            body += markup.paragraph(markup.text(sentence));
            body += paragraphsOf(markup, details);
            for (std::size_t i = 0; i < keywords.size(); ++i)
                facts +=
                    (i == 0 ? " Keywords: " : ", ") + markup.text(keywords[i]) + (i + 1 == keywords.size() ? "." : "");
            if (!page.empty())
                facts += " More information: " + markup.webLink(page);
        }
        body += markup.paragraph(facts);
        if (!type.failure.empty())
            return markup.page(
                type.name,
                body + markup.paragraph("Objects of this type cannot be made: " + markup.text(type.failure) + '.'));
        body += markup.picture(m_objects[object].file + ".svg", "The object with its inputs and outputs");
        body += section(markup, InputsId, "Inputs", inputTable(markup, object, true));
        body += section(markup, OutputsId, "Outputs", outputTable(markup, object, true));
        body += section(markup, {}, "Hidden inputs and outputs",
                        inputTable(markup, object, false) + outputTable(markup, object, false));
        body += exampleOf(markup, type);
        return markup.page(type.name, body + neighboursOf(markup, object));
    }

    std::string valuePage(const Markup& markup, const ValuePage& page) const
    {
        const ValueTypeDescription& type = page.type;
        std::string body = markup.paragraph(markup.link(IndexPage, {}, "Manual") + " / "
                                            + markup.link(IndexPage, ValuesId, "Value types"));
        body += markup.heading(1, {}, markup.text(type.label));
        std::vector<Markup::Row> rows;
        const auto add = [&](const char* title, const std::string& inner) {
            if (!inner.empty())
                rows.push_back({{}, {title, inner}});
        };
        add("Name in code", markup.code(type.name));
        if (!page.isRegistered)
            add("Use", "Values are made only by objects.");
        else if (!type.failure.empty())
            add("Use", "Values cannot be made: " + markup.text(type.failure));
        else
            add("Use", type.isInput ? "Values and inputs" : "Values");
        add("Default text", markup.code(shortened(type.defaultText)));
        add("Example", markup.code(shortened(type.example)));
        add("Colour of connections", markup.code(type.colour));
        std::string components;
        for (const std::string& component : type.components)
            components += (components.empty() ? "" : ", ") + markup.code(component);
        add("Components", components);
        body += markup.table({"Property", "Value"}, rows);
        body += uses(markup, InputsId, "Inputs of this type", m_readers, type.name, &Manual::inputLink);
        body += uses(markup, OutputsId, "Outputs of this type", m_writers, type.name, &Manual::outputLink);
        return markup.page(type.label, body);
    }

    using Slots = std::map<std::string, std::vector<Slot>>;

    std::string uses(const Markup& markup, const char* id, const char* title, const Slots& slots,
                     const std::string& type, std::string (Manual::*link)(const Markup&, const Slot&) const) const
    {
        const auto found = slots.find(type);
        if (found == slots.end())
            return {};
        std::vector<std::string> links;
        for (const Slot& slot : found->second)
            links.push_back((this->*link)(markup, slot));
        return markup.heading(2, id, title) + markup.list(links);
    }

    std::string indexPage(const Markup& markup) const
    {
        std::string libraries;
        for (const std::string& library : m_libraries)
            libraries += (libraries.empty() ? "" : ", ") + markup.code(library);
        std::string body = markup.heading(1, {}, "Manual");
        body += markup.paragraph(counted(m_objects.size(), "object type") + " of "
                                 + (m_libraries.size() == 1 ? "the library " : "the libraries ") + libraries + ", and "
                                 + counted(m_values.size(), "value type") + '.');
        for (const Category& category : m_categories) {
            std::vector<Markup::Row> rows;
            for (const std::size_t object : category.objects) {
                const ObjectTypeDescription& type = *m_objects[object].type;
                rows.push_back({{},
                                {markup.link(m_objects[object].file, {}, markup.text(type.name)),
                                 type.description ? markup.text(type.description->sentence) : std::string()}});
            }
            body += markup.heading(2, category.id, markup.text(titleOf(category)))
                    + markup.table({"Object type", "Meaning"}, rows);
        }
        std::vector<Markup::Row> rows;
        for (const ValuePage& page : m_values)
            rows.push_back({{},
                            {markup.link(page.file, {}, markup.text(page.type.label)), markup.code(page.type.name),
                             markup.code(shortened(page.type.defaultText))}});
        body +=
            section(markup, ValuesId, "Value types",
                    rows.empty() ? std::string() : markup.table({"Value type", "Name in code", "Default text"}, rows));
        return markup.page("Manual", body);
    }

    static std::string section(const Markup& markup, const char* id, const char* title, const std::string& content)
    {
        return content.empty() ? content : markup.heading(2, id ? id : "", title) + content;
    }

    static std::string paragraphsOf(const Markup& markup, std::string_view text)
    {
        std::string paragraphs;
        while (!text.empty()) {
            const std::size_t end = std::min(text.find("\n\n"), text.size());
            if (const std::string inner = markup.text(text.substr(0, end)); !inner.empty())
                paragraphs += markup.paragraph(inner);
            text.remove_prefix(std::min(end + 2, text.size()));
        }
        return paragraphs;
    }

    PageNames m_names;
    std::vector<ObjectPage> m_objects;
    std::vector<ValuePage> m_values;
    std::map<std::string, std::size_t> m_valueNumbers; // by name of the type
    Slots m_readers;                                   // listed inputs, by type
    Slots m_writers;                                   // outputs, by type
    std::set<std::string> m_libraries;
    std::vector<Category> m_categories;
    std::map<std::size_t, std::size_t> m_categoryOf; // by object
};

} // namespace

void writeManual(const std::vector<ValueTypeDescription>& values, const std::vector<ObjectTypeDescription>& objects,
                 const std::function<void(const std::string& file, const std::string& content)>& write)
{
    Manual{values, objects}.write(write);
}

} // namespace Tarn
