#include <tarn/network/Conversion.hpp>

#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/NetworkWriter.hpp>
#include <tarn/network/RelativePathRewriter.hpp>
#include <tarn/network/RestorableText.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

bool isKnownType(const std::string& type)
{
    return bool(Orla::VObjectCreator::find(type));
}

bool isNumberType(const std::type_info& type) noexcept
{
    const std::type_info* const numbers[] = {
        &typeid(short), &typeid(unsigned short), &typeid(int),       &typeid(unsigned int),
        &typeid(long),  &typeid(unsigned long),  &typeid(long long), &typeid(unsigned long long),
        &typeid(float), &typeid(double)};
    return std::ranges::any_of(numbers, [&](const std::type_info* number) { return *number == type; });
}

bool hasLibrary(const std::string& folder, const std::string& name)
{
    return std::ranges::any_of(Libraries::searchPath(folder), [&](const std::string& place) {
        std::error_code error;
        return fs::exists(place + '/' + name + ".so", error);
    });
}

} // namespace

Conversion::Conversion(const std::string& path, const std::vector<std::string>& overrides)
    : m_faults{path}, m_unknown{path}, m_folder{folderOf(path)}, m_libraries{Libraries::searchPath(m_folder)}
{
    const std::string text = readFile(path);
    Orla::VNetwork network{m_folder};
    network.setDataFolders(dataFolders());
    const Orla::VNetwork::Scope scope{network};
    // Which types are known depends on the libraries; the second pass reports the faults.
    Faults ignored{path};
    const std::vector<std::string> missing = m_libraries.loadAll(parseNetwork(text, ignored).libraries, m_unknown);
    m_file = parseNetwork(text, m_faults, &isKnownType);
    const NetworkInputs inputs = readInputs(m_file, overrides, missing, m_faults, m_unknown);
    m_connectionCount = inputs.connectionCount;
    if (m_faults.empty())
        makeCanonical(inputs);
}

void Conversion::makeCanonical(const NetworkInputs& inputs)
{
    for (std::size_t number = 0; number < m_file.objects.size(); ++number) {
        NetworkFile::Object& object = m_file.objects[number];
        const NetworkInputs::Object& made = inputs.objects[number];
        if (!made.isKnown)
            continue;
        object.texts.clear();
        for (const NetworkInputs::Input& input : made.set)
            keepValue(number, input);
        std::vector<NetworkFile::Setting> connections;
        for (const std::string& name : made.names) {
            const auto found = std::ranges::find(object.connections, name,
                                                 [](const NetworkFile::Setting& entry) { return entry.input.text; });
            if (found != object.connections.end())
                connections.push_back(std::move(*found));
        }
        object.connections = std::move(connections);
    }
}

void Conversion::keepValue(std::size_t number, const NetworkInputs::Input& input)
{
    const Loam::Result<RestorableText> form = restorableText(input.given, input.value, input.texts);
    if (!form) {
        m_faults.add(input.place, input.description + ": the value cannot be kept: " + form.reason());
        return;
    }
    std::vector<NetworkFile::InputText>& texts = m_file.objects[number].texts;
    NetworkFile::InputText& text = texts.emplace_back(NetworkFile::InputText{{input.name, {}}, {}});
    // A place marks a text as present.
    constexpr Place Somewhere{1, 1};
    if (form->text)
        text.value = {*form->text, Somewhere};
    for (const std::string& exact : form->exact)
        text.exact.push_back({exact, Somewhere});
    text.isNumber = isNumberType(*input.type);
    if (*input.type == typeid(std::string))
        m_heldTexts.push_back({number, texts.size() - 1, input.namesResult});
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
    for (const HeldText& held : m_heldTexts) {
        NetworkFile::Object& object = m_file.objects[held.object];
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
                m_faults.add(m_faults.file() + ": " + start(object, text)
                             + " names a file whose name from the new folder is not valid UTF-8");
            }
        } else if (rewriter.concerns(text.value.text)) {
            messages.push_back(start(object, text) + " is also the name of a folder and is left unchanged");
        }
    }
    for (const NetworkFile::Object& object : m_file.objects) {
        if (object.kept.empty())
            continue;
        for (const NetworkFile::InputText& text : object.texts) {
            if (rewriter.concerns(text.value.text))
                messages.push_back(start(object, text)
                                   + " names a file and is left unchanged because its object type is unknown");
        }
    }
    for (const PlacedText& library : m_file.libraries) {
        if (hasLibrary(m_folder, library.text) && !hasLibrary(folder, library.text))
            messages.push_back("library " + inQuotes(library.text)
                               + " is not found from the new folder; it is beside the old network");
    }
    return messages;
}

std::string Conversion::text() const
{
    std::string text = networkText(m_file);
    // A text that does not read back must not replace a file that does.
    Faults faults{m_faults.file()};
    if (networkText(parseNetwork(text, faults, &isKnownType)) != text || !faults.empty())
        throw std::logic_error(m_faults.file() + " would not read back unchanged"
                               + (faults.empty() ? "" : ": " + faults.lines().front()));
    return text;
}

} // namespace Tarn
