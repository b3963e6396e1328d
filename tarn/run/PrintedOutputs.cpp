#include <tarn/run/PrintedOutputs.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/text/Messages.hpp>

#include <utility>

namespace Tarn {

using Loam::Result;
using Orla::StrongPtr;

PrintedOutputs::PrintedOutputs(const Session& session, const std::vector<std::string>& references, Faults& faults)
{
    for (const std::string& reference : references) {
        if (Result<OutputReference> found = session.core()->findOutput(reference))
            m_outputs.push_back({reference, *std::move(found)});
        else
            faults.add(FaultKind::Option, "--print=" + printable(reference) + ": " + found.reason());
    }
}

std::string PrintedOutputs::lines(const StrongPtr<Orla::ValuePool>& pool, std::vector<std::string>& failures) const
{
    std::string lines;
    for (const auto& [name, output] : m_outputs) {
        if (const Result<std::string> text = output.text(pool))
            lines += escaped(name) + ": " + escaped(*text) + '\n';
        else
            failures.push_back("output " + inQuotes(name) + " cannot be printed: " + text.reason());
    }
    return lines;
}

} // namespace Tarn
