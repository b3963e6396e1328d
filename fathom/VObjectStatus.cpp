#include <fathom/VObjectStatus.hpp>

#include <trellis/VActionNotifier.hpp>

#include <loam/Typename.hpp>

#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

namespace Orla {

namespace {

constexpr std::string_view startOfWarning = "<FONT COLOR=magenta>";
constexpr std::string_view startOfError = "<FONT COLOR=red>";
constexpr std::string_view endOfMark = "</FONT>";

constexpr bool isLetter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr char lowered(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Returns the length of the tag at the start of `text`, or 0 if it is not a tag.
std::size_t endOfTag(std::string_view text)
{
    const std::size_t first = text.substr(0, 2) == "</" ? 2 : 1;
    if (text.size() <= first || !(isLetter(text[first]) || (first == 1 && text[first] == '!')))
        return 0;
    char quote = 0;
    for (std::size_t i = first; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0) {
            if (c == quote)
                quote = 0;
        } else if ((c == '"' || c == '\'') && text[i - 1] == '=') {
            quote = c;
        } else if (c == '>') {
            return i + 1;
        }
    }
    return text.find('>') + 1; // an unclosed quote; 0 without a ">"
}

bool breaksTheLine(std::string_view tag)
{
    return tag.size() >= 4 && lowered(tag[1]) == 'b' && lowered(tag[2]) == 'r' && !isLetter(tag[3]);
}

void appendUtf8(std::string& text, std::uint32_t code)
{
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto appendLast = [&](unsigned shift) { append(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        appendLast(0);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        appendLast(6);
        appendLast(0);
    } else {
        append(0xF0 | code >> 18);
        appendLast(12);
        appendLast(6);
        appendLast(0);
    }
}

// Excludes control characters, which could affect a terminal.
constexpr bool isPrintable(std::uint32_t code) noexcept
{
    return code == '\t' || code == '\n' || (code >= 0x20 && code < 0x7F) || (code >= 0xA0 && code < 0xD800)
           || (code >= 0xE000 && code <= 0x10FFFF);
}

// Returns the character of the entity `name`, the text between "&" and ";", or 0 if it is
// unknown.
std::uint32_t characterOf(std::string_view name)
{
    constexpr struct {
        std::string_view name;
        std::uint32_t code;
    } entities[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '}};
    for (const auto& entity : entities) {
        if (name == entity.name)
            return entity.code;
    }
    if (name.size() < 2 || name[0] != '#')
        return 0;
    const bool isHexadecimal = lowered(name[1]) == 'x';
    const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const char* const last = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), last, code, isHexadecimal ? 16 : 10);
    return read.ec == std::errc{} && read.ptr == last && isPrintable(code) ? code : 0;
}

} // namespace

VObjectStatus::VObjectStatus() = default;

VObjectStatus::VObjectStatus(const std::string& theText) : text{theText}
{
}

VObjectStatus::~VObjectStatus() = default;

VObjectStatus::Severity VObjectStatus::severity() const
{
    if (text.ends_with(endOfMark)) {
        if (text.starts_with(startOfError))
            return Severity::Error;
        if (text.starts_with(startOfWarning))
            return Severity::Warning;
    }
    return Severity::Information;
}

std::string VObjectStatus::plainText() const
{
    std::string plain;
    // Found once, so a text of many "<" without a later ">" takes no longer.
    const std::size_t lastClosing = text.rfind('>');
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = std::string_view(text).substr(i);
        if (rest[0] == '<' && lastClosing != std::string::npos && i < lastClosing) {
            if (const std::size_t length = endOfTag(rest)) {
                if (breaksTheLine(rest.substr(0, length)))
                    plain += '\n';
                i += length;
                continue;
            }
        } else if (rest[0] == '&') {
            constexpr std::size_t longest = 10; // "&#x10FFFF;"
            const std::size_t end = rest.substr(0, longest).find(';');
            const bool hasEnd = end != std::string_view::npos;
            const std::uint32_t code = hasEnd ? characterOf(rest.substr(1, end - 1)) : 0;
            if (code != 0) {
                appendUtf8(plain, code);
                i += end + 1;
                continue;
            }
        }
        plain += rest[0];
        ++i;
    }
    return plain;
}

std::string VObjectStatus::marked(Severity severity, const std::string& plain)
{
    if (severity == Severity::Information)
        return plain;
    std::string result(severity == Severity::Warning ? startOfWarning : startOfError);
    result += plain;
    result += endOfMark;
    return result;
}

std::string VObjectStatus::escaped(const std::string& plain)
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

std::string VValueTrait<VObjectStatus>::Text(const VObjectStatus& status)
{
    return status.text;
}

bool VValueTrait<VObjectStatus>::setValueFromText(VObjectStatus& status, const std::string& text)
{
    status.text = text;
    return true;
}

StatusIndicator::StatusIndicator(VObject* object, const std::string& initialText, int /*level*/,
                                 const std::string& outputName)
    : m_output{new VValueParameter<VObjectStatus>(VObjectStatus{initialText}, outputName, nullptr)}
{
    if (!object)
        return;
    m_output->setSource(object);
    // A status reports why an update failed, so its readers must get it even then.
    if (const StrongPtr<VSlot> slot = object->registerOutput(m_output, outputName))
        slot->setFlag(VSlot::StaysValid);
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

void StatusIndicator::setStatusInfo(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    show(pool, text);
}

void StatusIndicator::setStatusWarning(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    show(pool, VObjectStatus::marked(VObjectStatus::Severity::Warning, text));
}

void StatusIndicator::setStatusError(const StrongPtr<ValuePool>& pool, const std::string& text, bool announce) const
{
    show(pool, VObjectStatus::marked(VObjectStatus::Severity::Error, text));
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

} // namespace Orla
