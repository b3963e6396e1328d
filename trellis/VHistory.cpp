#include <trellis/VHistory.hpp>

namespace Orla {

std::string VHistory::text() const
{
    const std::string subject = "object \"" + object + "\" ";
    switch (cause) {
    case Cause::Declared:
        break;
    case Cause::KeepsState:
        return subject + "keeps state in its members";
    case Cause::Loop:
        return subject + "is a member of a loop";
    case Cause::ReadsOutput:
        return subject + "reads its earlier output \"" + slot + '"';
    case Cause::ChangesInput:
        return subject + "changes its input \"" + slot + '"';
    case Cause::WritesFile:
        return subject + "writes files";
    }
    return subject + "depends on its earlier updates";
}

} // namespace Orla
