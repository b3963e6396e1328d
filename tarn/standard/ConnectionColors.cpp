#include <fathom/Action.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VConnectionTypeColors.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VInteractionEvent.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VStringList.hpp>
#include <fathom/VTime.hpp>

#include <typeinfo>

// Connection colours of the most common types, for a white background. They differ in
// lightness too.

namespace {

using Loam::StringList;
using Loam::StrongPtr;

const bool areSet = [] {
    const struct {
        const std::type_info& type;
        const char* color;
    } colors[] = {
        {typeid(Orla::VTime), "#B8860B"},
        {typeid(Orla::Range), "#8FA31E"},
        {typeid(Orla::VChart), "#8E44AD"},
        {typeid(Orla::VChartList), "#C39BD3"},
        {typeid(Orla::VInteractionEvent), "#E67E22"},
        {typeid(StrongPtr<Orla::VAction>), "#C0392B"},
        {typeid(Orla::VCamera), "#2471A3"},
        {typeid(Orla::VObjectStatus), "#16A085"},
        {typeid(std::string), "#7F8C8D"},
        {typeid(Orla::Enum), "#5D6D7E"},
        {typeid(Orla::FlagList), "#5D6D7E"},
        {typeid(StrongPtr<Orla::StringSelection, StringList>), "#5D6D7E"},
        {typeid(StrongPtr<Orla::MultipleStringSelection, StringList>), "#5D6D7E"},
    };
    for (const auto& [type, color] : colors)
        Orla::VConnectionTypeColors::set(type, color);
    return true;
}();

} // namespace
