#include <tarn/network/CanonicalNetwork.hpp>

#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/NetworkWriter.hpp>
#include <tarn/network/RestorableText.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace Tarn {

namespace {

bool isNumberType(const std::type_info& type) noexcept
{
    const std::type_info* const numbers[] = {
        &typeid(short), &typeid(unsigned short), &typeid(int),       &typeid(unsigned int),
        &typeid(long),  &typeid(unsigned long),  &typeid(long long), &typeid(unsigned long long),
        &typeid(float), &typeid(double)};
    return std::ranges::any_of(numbers, [&](const std::type_info* number) { return *number == type; });
}

} // namespace

CanonicalNetwork::CanonicalNetwork(NetworkFile file, const NetworkInputs& inputs, Faults& faults)
    : m_file{std::move(file)}
{
    for (std::size_t number = 0; number < m_file.objects.size(); ++number) {
        NetworkFile::Object& object = m_file.objects[number];
        const NetworkInputs::Object& made = inputs.objects[number];
        if (!made.isKnown)
            continue;
        object.texts.clear();
        for (const NetworkInputs::Input& input : made.set)
            keepValue(number, input, faults);
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

void CanonicalNetwork::keepValue(std::size_t number, const NetworkInputs::Input& input, Faults& faults)
{
    const Loam::Result<RestorableText> form = restorableText(input.given, input.value, input.texts);
    if (!form) {
        faults.add(FaultKind::Input, input.place, input.description + ": the value cannot be kept: " + form.reason());
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
    text.isTruth = *input.type == typeid(bool);
    if (*input.type == typeid(std::string))
        m_heldTexts.push_back({number, texts.size() - 1, input.namesResult});
}

std::string canonicalText(const NetworkFile& file, const Faults& faults)
{
    const auto isKnown = [](const std::string& type) { return bool(Orla::VObjectCreator::find(type)); };
    std::string text = networkText(file);
    // A text that does not read back must not replace a file that does.
    Faults found{faults.file()};
    if (networkText(parseNetwork(text, found, isKnown)) != text || !found.empty())
        throw std::logic_error(faults.file() + " would not read back unchanged"
                               + (found.empty() ? "" : ": " + found.lines().front()));
    return text;
}

} // namespace Tarn
