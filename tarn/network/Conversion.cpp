#include <tarn/network/Conversion.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/RelativePathRewriter.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

bool hasLibrary(const std::string& folder, const std::string& name)
{
    return std::ranges::any_of(Libraries::searchPath(folder), [&](const std::string& place) {
        std::error_code error;
        return fs::exists(place + '/' + name + ".so", error);
    });
}

} // namespace

Conversion::Conversion(const std::string& path, const std::vector<std::string>& overrides)
    : Conversion{NetworkReading{NetworkSource{path}, overrides}}
{
}

Conversion::Conversion(const NetworkReading& reading)
    : m_faults{reading.faults()}
    , m_unknown{reading.unknown()}
    , m_folder{reading.folder()}
    , m_connectionCount{reading.inputs().connectionCount}
{
    if (m_faults.empty())
        m_canonical = CanonicalNetwork{reading.file(), reading.inputs(), m_faults};
}

std::vector<std::string> Conversion::moveTo(const std::string& folder)
{
    const RelativePathRewriter rewriter{m_folder, folder};
    std::vector<std::string> messages;
    if (!rewriter.isNeeded())
        return messages;
    const auto start = [](const NetworkFile::Object& object, const NetworkFile::InputText& text) {
        return object.description + ", input " + inQuotes(text.input.text) + ": " + inQuotes(text.value.text);
    };
    for (const CanonicalNetwork::HeldText& held : m_canonical.heldTexts()) {
        NetworkFile::Object& object = m_canonical.file().objects[held.object];
        NetworkFile::InputText& text = object.texts[held.text];
        if (held.namesResult) {
            if (rewriter.concerns(text.value.text))
                messages.push_back(
                    start(object, text)
                    + " names a result and is left unchanged; the new network writes it in its own folder");
        } else if (const std::optional<std::string> moved = rewriter.moved(text.value.text)) {
            if (Loam::isUtf8(*moved)) {
                messages.push_back(start(object, text) + " is written as " + inQuotes(*moved)
                                   + ", which is the same file from the new folder");
                text.value.text = *moved;
            } else {
                m_faults.add(FaultKind::Input, m_faults.file() + ": " + start(object, text)
                                                   + " names a file whose name from the new folder is not valid UTF-8");
            }
        } else if (rewriter.concerns(text.value.text)) {
            messages.push_back(start(object, text) + " is also the name of a folder and is left unchanged");
        }
    }
    for (const NetworkFile::Object& object : m_canonical.file().objects) {
        if (object.kept.empty())
            continue;
        for (const NetworkFile::InputText& text : object.texts) {
            if (rewriter.concerns(text.value.text))
                messages.push_back(start(object, text)
                                   + " names a file and is left unchanged because its object type is unknown");
        }
    }
    for (const PlacedText& library : m_canonical.file().libraries) {
        if (hasLibrary(m_folder, library.text) && !hasLibrary(folder, library.text))
            messages.push_back("library " + inQuotes(library.text)
                               + " is not found from the new folder; it is beside the old network");
    }
    return messages;
}

std::string Conversion::text() const
{
    return canonicalText(m_canonical.file(), m_faults);
}

} // namespace Tarn
