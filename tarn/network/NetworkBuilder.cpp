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

    // Objects that look for partners are finished last, so they find providers that come
    // after them in the file.
    void finish()
    {
        for (const bool seeking : {false, true}) {
            for (std::size_t number = 0; number < objects().size(); ++number) {
                Object& made = objects()[number];
                if (!made.object || made.object->setupFunctions().empty() == seeking)
                    continue;
                const Result<void> finished =
                    Loam::attempt([&] { Orla::VObject::finishCreation(made.object, {}, made.creator); });
                const NetworkFile::Object& entry = file().objects[number];
                if (!finished)
                    faults().add(entry.place, entry.description + " cannot be set up: " + finished.reason());
                // From now on the registry owns the object.
                made = {};
            }
        }
    }
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
    return faults.empty() ? builder.network() : Network{};
}

} // namespace Tarn
