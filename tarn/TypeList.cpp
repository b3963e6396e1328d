#include <tarn/TypeList.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/Environment.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

std::string section(const std::string& title, const Rows& rows)
{
    std::size_t width = 0;
    for (const auto& [name, note] : rows)
        width = std::max(width, name.size());
    std::string text = title + ":\n";
    for (const auto& [name, note] : rows)
        text += "  " + name + std::string(width - name.size() + 2, ' ') + note + '\n';
    return text;
}

} // namespace

std::string typeList()
{
    Rows values;
    for (const std::string& name : Orla::VValueCreator::names()) {
        if (const auto creator = Orla::VValueCreator::find(name))
            values.emplace_back(name, Orla::TypedSlotCreator::find(creator->valueType()) ? "value and input" : "value");
    }
    Rows objects;
    for (const std::string& name : Orla::VObjectCreator::names()) {
        if (const auto creator = Orla::VObjectCreator::find(name))
            objects.emplace_back(name, Loam::getLibraryPath(&creator->objectType()));
    }
    return section("Value types", values) + '\n' + section("Object types", objects);
}

} // namespace Tarn
