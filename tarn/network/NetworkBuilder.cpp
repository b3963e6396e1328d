#include <tarn/network/NetworkBuilder.hpp>

#include <tarn/network/NetworkAssembly.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/Result.hpp>

#include <utility>

namespace Tarn {

namespace {

using Loam::Result;

class NetworkBuilder final : public NetworkAssembly {
public:
    using NetworkAssembly::NetworkAssembly;

    Network take()
    {
        Network result = network();
        result.declared = std::move(m_declared);
        result.overrides = std::move(m_overrides);
        result.objects = std::move(m_finished);
        return result;
    }

    // Objects that look for partners are finished last, so they find providers that come
    // after them in the file.
    void finish()
    {
        m_finished.resize(objects().size());
        for (const bool seeking : {false, true}) {
            for (std::size_t number = 0; number < objects().size(); ++number) {
                Object& made = objects()[number];
                if (!made.object || made.object->setupFunctions().empty() == seeking)
                    continue;
                const Result<void> finished =
                    Loam::attempt([&] { Orla::VObject::finishCreation(made.object, {}, made.creator); });
                m_finished[number] = made.object;
                const NetworkFile::Object& entry = file().objects[number];
                if (!finished)
                    faults().add(FaultKind::Object, entry.place,
                                 entry.description + " cannot be set up: " + finished.reason());
                // From now on the registry owns the object.
                made = {};
            }
        }
    }

private:
    void beforeText(const GivenText& given) override
    {
        m_declared.try_emplace(given.input.get(), given.input->ownParameter()->newValue());
        if (!given.place)
            m_overrides.push_back({given.object, given.input->name(), given.text});
    }

    decltype(Network::declared) m_declared;
    std::vector<Network::Override> m_overrides;
    std::vector<Loam::WeakPtrImpl<Orla::VObject>> m_finished;
};

} // namespace

Network buildNetwork(const NetworkFile& file, const std::vector<std::string>& overrides,
                     const std::vector<std::string>& missingLibraries, Faults& faults)
{
    NetworkBuilder builder{file, faults};
    builder.assemble(overrides, missingLibraries);
    if (!faults.empty())
        return {};
    builder.finish();
    return faults.empty() ? builder.take() : Network{};
}

} // namespace Tarn
