#include <fathom/VObjectStatus.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VTypeLabel.hpp>

#include <loam/Typename.hpp>

namespace Orla {

VObjectStatus::VObjectStatus() = default;

VObjectStatus::VObjectStatus(const std::string& theText) : text{theText}
{
}

VObjectStatus::~VObjectStatus() = default;

std::string VValueTrait<VObjectStatus>::Text(const VObjectStatus& status)
{
    return status.text;
}

bool VValueTrait<VObjectStatus>::setValueFromText(VObjectStatus& status, const std::string& text)
{
    status.text = text;
    return true;
}

namespace {

std::string marked(std::string_view start, const std::string& text)
{
    std::string result(start);
    result += text;
    result += StatusMarkup::End;
    return result;
}

} // namespace

StatusIndicator::StatusIndicator(VObject* object, const std::string& initialText, int /*level*/,
                                 const std::string& outputName)
    : m_output{new VValueParameter<VObjectStatus>(VObjectStatus{initialText}, outputName, nullptr)}
{
    if (!object)
        return;
    m_output->setSource(object);
    // A status reports why an update failed, so its readers must get it even then.
    if (const StrongPtr<VSlot> slot = object->registerOutput(m_output, outputName)) {
        slot->setFlag(VSlot::StaysValid);
        slot->describe(describe("What the object reports."));
    }
}

StatusIndicator::~StatusIndicator() = default;

void StatusIndicator::show(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    // Without an owner, the variable would be in the pool itself, visible to all.
    if (!m_output->owner())
        return;
    const VOutputAssignmentContext<VObjectStatus> output{m_output, pool};
    VObjectStatus status;
    output >> status;
    if (status.text == text)
        return;
    status.text = text;
    output << status;
}

std::string StatusIndicator::escaped(const std::string& plain)
{
    std::string result;
    result.reserve(plain.size());
    for (const char c : plain) {
        switch (c) {
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '&':
            result += "&amp;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

void StatusIndicator::setStatusInfo(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    show(pool, text);
}

void StatusIndicator::setStatusWarning(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    show(pool, marked(StatusMarkup::StartOfWarning, text));
}

void StatusIndicator::setStatusError(const StrongPtr<ValuePool>& pool, const std::string& text, bool announce) const
{
    show(pool, marked(StatusMarkup::StartOfError, text));
    if (!announce)
        return;
    std::string message = Loam::Typename(typeid(*this));
    if (pool)
        message += "{" + pool->Name() + "}";
    if (const StrongPtr<VSlotContainer> source = m_output->source().lock(); source && source->object())
        message += " \"" + source->object()->Name() + "\"";
    VActionNotifier::Warning(message + " Error: " + text);
}

CatchStatus::CatchStatus(const std::string& name, int level,
                         const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : VObject{name, level, preferences}, StatusIndicator{this, {}, level, Slotname}
{
}

CatchStatus::~CatchStatus() = default;

bool CatchStatus::update(VRequest& request, double precision)
{
    try {
        safeUpdate(request, precision);
    } catch (const char* message) {
        setStatusInfo(request.valuePool(), message ? message : "");
    }
    return true;
}

template class FATHOM_TEMPLATE VTypedValueBase<VObjectStatus>;
template class FATHOM_TEMPLATE VValue<VObjectStatus>;
template class FATHOM_TEMPLATE TypedValueCreator<VObjectStatus>;
template class FATHOM_TEMPLATE VValueParameter<VObjectStatus>;
template FATHOM_TEMPLATE bool operator<<(const VOutputAssignmentContext<VObjectStatus>&, const VObjectStatus&);
template FATHOM_TEMPLATE bool operator>>(const VOutputAssignmentContext<VObjectStatus>&, VObjectStatus&);

namespace {

const VTypeLabel objectStatusLabel{typeid(VObjectStatus), "status"};

} // namespace

} // namespace Orla
