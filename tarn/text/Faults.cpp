#include <tarn/text/Faults.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/text/SimilarMessages.hpp>

#include <algorithm>
#include <utility>

namespace Tarn {

Faults::Faults(std::string file) : m_file{printable(file)}
{
}

void Faults::add(FaultKind kind, Place place, const std::string& message)
{
    m_faults.push_back({kind, place, message});
}

std::vector<std::string> Faults::lines() const
{
    std::vector<const Fault*> sorted;
    for (const Fault& fault : m_faults)
        sorted.push_back(&fault);
    std::ranges::stable_sort(sorted, [](const Fault* a, const Fault* b) {
        return a->place && b->place ? a->place < b->place : bool(a->place) && !b->place;
    });

    std::vector<std::string> lines;
    SimilarMessages similar;
    for (const Fault* fault : sorted) {
        if (!similar.add(fault->message))
            continue;
        const auto [line, column] = fault->place;
        lines.push_back(fault->place
                            ? m_file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + fault->message
                            : fault->message);
    }
    for (const std::string& more : similar.summary())
        lines.push_back(m_file + ": " + more);
    return lines;
}

} // namespace Tarn
