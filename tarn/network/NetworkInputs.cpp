#include <tarn/network/NetworkInputs.hpp>

#include <tarn/network/NetworkAssembly.hpp>

#include <map>
#include <utility>

namespace Tarn {

namespace {

// Records the texts of each input.
class InputReader final : public NetworkAssembly {
public:
    InputReader(const NetworkFile& file, Faults& faults, Faults& unknown)
        : NetworkAssembly{file, faults}, m_unknown{unknown}, m_set(file.objects.size())
    {
    }

    NetworkInputs take()
    {
        NetworkInputs inputs;
        inputs.connectionCount = network().connected.size();
        for (std::size_t number = 0; number < objects().size(); ++number) {
            NetworkInputs::Object& object = inputs.objects.emplace_back();
            const Object& made = objects()[number];
            object.isKnown = bool(made.creator);
            if (!made.object)
                continue;
            object.names = namesOf(made.object->inputs());
            for (const std::string& name : object.names) {
                if (const auto entry = m_set[number].find(name); entry != m_set[number].end())
                    object.set.push_back(std::move(entry->second));
            }
        }
        return inputs;
    }

private:
    void onUnknownType(Place place, const std::string& message) override
    {
        m_unknown.add(FaultKind::Type, place, message);
    }

    // The object is written again unchanged, so the text would be lost.
    void onOverrideOfUnknownType(const std::string& message) override { faults().add(FaultKind::Option, message); }

    void beforeText(const GivenText& given) override
    {
        const Orla::VParameter& parameter = *given.input->ownParameter();
        auto& inputs = m_set[given.object];
        auto entry = inputs.find(given.input->name());
        if (entry == inputs.end())
            entry = inputs
                        .emplace(given.input->name(),
                                 NetworkInputs::Input{.name = given.input->name(),
                                                      .type = &given.input->type(),
                                                      .place = {},
                                                      .description = {},
                                                      .given = parameter.newValue(),
                                                      .value = parameter.DefaultValue(),
                                                      .texts = {},
                                                      .namesResult = given.input->hasFlag(Orla::VSlot::NamesResult)})
                        .first;
        entry->second.place = given.place;
        entry->second.description = given.description;
        entry->second.texts.push_back(given.text);
    }

    Faults& m_unknown;
    std::vector<std::map<std::string, NetworkInputs::Input>> m_set; // per object, by name
};

} // namespace

NetworkInputs readInputs(const NetworkFile& file, const std::vector<std::string>& overrides,
                         const std::vector<std::string>& missingLibraries, Faults& faults, Faults& unknown)
{
    InputReader reader{file, faults, unknown};
    reader.assemble(overrides, missingLibraries);
    return reader.take();
}

} // namespace Tarn
