#include <tarn/run/PrintedOutputs.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Context.hpp>
#include <tarn/text/Messages.hpp>

#include <algorithm>
#include <string_view>

namespace Tarn {

using Loam::Result;
using Orla::StrongPtr;

namespace {

// Returns true if `text` is `pattern` with some text for each "*".
bool matches(std::string_view text, std::string_view pattern)
{
    std::size_t at = 0;
    std::size_t used = 0;
    std::size_t star = std::string_view::npos; // the last one
    std::size_t afterStar = 0;                 // where the text for it ends
    while (at < text.size()) {
        if (used < pattern.size() && pattern[used] == '*') {
            star = used++;
            afterStar = at;
        } else if (used < pattern.size() && pattern[used] == text[at]) {
            ++used;
            ++at;
        } else if (star != std::string_view::npos) {
            used = star + 1;
            at = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', used) == std::string_view::npos;
}

} // namespace

PrintedOutputs::PrintedOutputs(const Session& session, const std::vector<std::string>& references, Faults& faults)
{
    for (const std::string& reference : references) {
        if (const Result<OutputReference> output = session.core()->findOutput(reference))
            m_slots.push_back({reference, false});
        else if (session.core()->findInput(reference))
            m_slots.push_back({reference, true});
        else if (reference.find('*') != std::string::npos)
            addMatches(session, reference, faults);
        else
            faults.add(FaultKind::Option, "--print=" + printable(reference) + ": " + output.reason());
    }
}

void PrintedOutputs::addMatches(const Session& session, const std::string& pattern, Faults& faults)
{
    const std::size_t before = m_slots.size();
    for (const std::string& object : session.objects()) {
        for (const std::string& output : session.core()->outputsOf(object)) {
            if (std::string name = object + '.' + output; matches(name, pattern))
                m_slots.push_back({std::move(name), false});
        }
    }
    if (m_slots.size() == before)
        faults.add(FaultKind::Option, "--print=" + printable(pattern) + ": no output matches the pattern");
}

std::string PrintedOutputs::lines(const Context& context, std::vector<std::string>& failures) const
{
    std::string lines;
    for (const auto& [name, isInput] : m_slots) {
        const Result<StrongPtr<Orla::VValueBase>> value = isInput ? context.value(name) : context.output(name);
        const Result<std::string> text =
            value ? Loam::attempt([&value = *value] { return value->Text(); }) : Loam::Failure{value.reason()};
        if (text)
            lines += escaped(name) + ": " + escaped(*text) + '\n';
        else
            failures.push_back((isInput ? "input " : "output ") + inQuotes(name)
                               + " cannot be printed: " + text.reason());
    }
    return lines;
}

} // namespace Tarn
