#include <trellis/VTypeLabel.hpp>

#include <loam/TypeInfo.hpp>
#include <loam/Typename.hpp>

#include <algorithm>
#include <mutex>
#include <vector>

namespace Orla {

namespace {

struct LabelTable {
    std::mutex mutex;
    std::vector<const VTypeLabel*> labels; // in the order of their declaration
};

LabelTable& labelTable()
{
    // Never destroyed, because objects that outlive all static objects look labels up.
    static LabelTable& theTable = *new LabelTable;
    return theTable;
}

} // namespace

VTypeLabel::VTypeLabel(const std::type_info& type, const std::string& label, const std::string& example)
    : m_key{Loam::typeKey(type)}, m_label{label}, m_example{example}
{
    const std::lock_guard lock{labelTable().mutex};
    if (!label.empty())
        labelTable().labels.push_back(this);
}

VTypeLabel::~VTypeLabel()
{
    const std::lock_guard lock{labelTable().mutex};
    std::erase(labelTable().labels, this);
}

std::string VTypeLabel::of(const std::type_info& type)
{
    const std::string key = Loam::typeKey(type);
    const std::string name = Loam::Typename(type);
    const std::lock_guard lock{labelTable().mutex};
    const std::vector<const VTypeLabel*>& labels = labelTable().labels;
    const auto own = std::ranges::find(labels, key, &VTypeLabel::m_key);
    const std::string& text = own == labels.end() ? name : (*own)->m_label;
    const auto first = std::ranges::find(labels, text, &VTypeLabel::m_label);
    return first == labels.end() || (*first)->m_key == key ? text : text + " (" + name + ')';
}

std::string VTypeLabel::exampleOf(const std::type_info& type)
{
    const std::string key = Loam::typeKey(type);
    const std::lock_guard lock{labelTable().mutex};
    const std::vector<const VTypeLabel*>& labels = labelTable().labels;
    const auto own = std::ranges::find(labels, key, &VTypeLabel::m_key);
    return own == labels.end() ? std::string() : (*own)->m_example;
}

} // namespace Orla
