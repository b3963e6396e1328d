#include <tarn/network/DifferenceReport.hpp>

#include <tarn/text/JsonText.hpp>
#include <tarn/text/Messages.hpp>

#include <utility>

namespace Tarn {

namespace {

using Side = NetworkDifference::Side;
using OptionalSide = std::optional<Side>;

const char* kindName(NetworkDifference::Kind kind) noexcept
{
    using Kind = NetworkDifference::Kind;
    switch (kind) {
    case Kind::Library:
        return "library";
    case Kind::Chart:
        return "chart";
    case Kind::Time:
        return "time";
    case Kind::Object:
        return "object";
    case Kind::Name:
        return "name";
    case Kind::Input:
        return "input";
    case Kind::Entry:
        return "entry";
    case Kind::Column:
        return "column";
    case Kind::ColumnOrder:
        return "columnOrder";
    }
    return "";
}

std::string startOf(const ComparedFiles& files, const NetworkDifference& difference)
{
    const auto text = [](const std::string& file, Place place) {
        return printable(file) + ':' + std::to_string(place.line) + ':' + std::to_string(place.column) + ": ";
    };
    const auto& [kind, object, part, before, after, owner] = difference;
    if (after && after->place)
        return text(files.after, after->place);
    if (before && before->place)
        return text(files.before, before->place);
    return owner ? text(files.after, owner) : printable(files.after) + ": ";
}

std::string quotedList(const std::vector<std::string>& texts, const char* between)
{
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : between) + inQuotes(text);
    return list;
}

std::string spelled(const OptionalSide& side, const char* absent)
{
    if (!side)
        return absent;
    if (!side->reads.empty())
        return inQuotes(side->reads) + (side->isAutomatic ? " (connected automatically)" : "");
    return quotedList(side->texts, " then ");
}

// Returns `AFTER instead of BEFORE`.
std::string replacementOf(const NetworkDifference& difference, const char* absent)
{
    return spelled(difference.after, absent) + " instead of " + spelled(difference.before, absent);
}

std::string stepOf(const NetworkDifference& difference)
{
    return difference.after ? " is added" : " is removed";
}

std::string messageOfObject(const NetworkDifference& difference)
{
    const auto& [kind, object, part, before, after, owner] = difference;
    const std::string start = "object " + inQuotes(object);
    if (before && after)
        return start
               + (before->texts == after->texts
                      ? ": its type " + inQuotes(after->texts.front()) + " is known to only one of the networks"
                      : ": type " + replacementOf(difference, ""));
    return start + " of type " + spelled(before ? before : after, "") + stepOf(difference);
}

std::string messageOfInput(const NetworkDifference& difference)
{
    const auto& [kind, object, part, before, after, owner] = difference;
    // A verb distinguishes the name of an output from a text.
    const bool read = before && !before->reads.empty();
    const bool reads = after && !after->reads.empty();
    return "object " + inQuotes(object) + ", input " + inQuotes(part) + ": " + (reads ? "reads " : "")
           + spelled(after, "the declared value") + " instead of " + (read && !reads ? "reading " : "")
           + spelled(before, "the declared value");
}

std::string messageOfEntry(const NetworkDifference& difference)
{
    // TOML has quotes and escapes of its own.
    const auto text = [](const OptionalSide& side) { return side ? onOneLine(side->texts.front()) : "nothing"; };
    return "object " + inQuotes(difference.object) + ", " + onOneLine(difference.part) + " = " + text(difference.after)
           + " instead of " + text(difference.before);
}

std::string messageOfColumn(const NetworkDifference& difference)
{
    const std::string start = "column " + inQuotes(difference.part);
    return difference.before && difference.after
               ? start + ": " + replacementOf(difference, "")
               : start + stepOf(difference) + ": "
                     + spelled(difference.before ? difference.before : difference.after, "");
}

std::string messageOf(const NetworkDifference& difference)
{
    using Kind = NetworkDifference::Kind;
    const auto& [kind, object, part, before, after, owner] = difference;
    switch (kind) {
    case Kind::Library:
        return "library " + spelled(before ? before : after, "") + stepOf(difference);
    case Kind::Chart:
        return "chart " + replacementOf(difference, "none");
    case Kind::Time:
        return "the time is provided by " + replacementOf(difference, "");
    case Kind::Object:
        return messageOfObject(difference);
    case Kind::Name:
        return "object " + inQuotes(object) + " is renamed to " + spelled(after, "");
    case Kind::Input:
        return messageOfInput(difference);
    case Kind::Entry:
        return messageOfEntry(difference);
    case Kind::Column:
        return messageOfColumn(difference);
    case Kind::ColumnOrder:
        return "columns in another order: " + quotedList(after->texts, ", ") + " instead of "
               + quotedList(before->texts, ", ");
    }
    return {};
}

Json jsonOf(const OptionalSide& side)
{
    if (!side)
        return nullptr;
    const auto& [place, texts, reads, isAutomatic] = *side;
    return {{"place", place ? Json{{"line", place.line}, {"column", place.column}} : Json(nullptr)},
            {"texts", reads.empty() ? Json(texts) : Json(nullptr)},
            {"reads", orNull(reads)},
            {"isAutomatic", isAutomatic}};
}

} // namespace

std::string differencesText(const ComparedFiles& files, const std::vector<NetworkDifference>& differences)
{
    std::string text;
    for (const NetworkDifference& difference : differences)
        text += startOf(files, difference) + messageOf(difference) + '\n';
    return text;
}

std::string differencesJson(const ComparedFiles& files, const std::vector<NetworkDifference>& differences,
                            const std::vector<std::string>& unknown)
{
    Json list = Json::array();
    for (const NetworkDifference& difference : differences)
        list.push_back({{"kind", kindName(difference.kind)},
                        {"object", orNull(difference.object)},
                        {"part", orNull(difference.part)},
                        {"before", jsonOf(difference.before)},
                        {"after", jsonOf(difference.after)}});
    const Json report = {
        {"before", files.before}, {"after", files.after}, {"differences", std::move(list)}, {"unknown", unknown}};
    return indented(report);
}

} // namespace Tarn
