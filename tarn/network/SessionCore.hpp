#pragma once

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/Network.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/network/TimeProvider.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/ValuePool.hpp>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace Tarn::Detail {

/// Maximum number of steps of a network that is run from beginning to end. Larger numbers are
/// usually mistakes in its time.
inline constexpr double MostSteps = 1e9;

/// Maximum number of steps whose numbers stay exact in all computations.
inline constexpr double MostCountedSteps = 1e15;

/// What a session and its contexts share: the objects, and the saved network that describes them.
///
/// Contexts in other threads may read while one thread changes it: each function takes a `Use` or a
/// `Change` of the network.
class SessionCore {
public:
    /// An empty network.
    explicit SessionCore(const std::string& folder);

    /// Reads the saved network \p text, loads its libraries and creates its objects.
    SessionCore(const std::string& title, const std::string& folder, const std::string& text,
                const LoadOptions& options);

    /// Destroys the network, then unloads its libraries.
    ~SessionCore();

    SessionCore(const SessionCore&) = delete;
    SessionCore& operator=(const SessionCore&) = delete;

    const Faults& faults() const noexcept { return m_faults; }
    Orla::VNetwork& objects() noexcept { return *m_objects; }
    const Network& network() const noexcept { return m_network; }

    /// Returns the saved network; its places are those of the file until the network is changed.
    const NetworkFile& file() const noexcept { return m_file; }

    TimeProvider timeProvider() const;

    /// The chart that all objects must follow; empty if the choice is theirs.
    PlacedText wantedChart() const;

    /// Returns the number of steps from the beginning to the end of the time of \p provider in
    /// \p pool, but no more than the limit; 1 without a provider. Fails if the time has no steps or
    /// too many.
    Loam::Result<std::uint64_t> stepCount(const TimeProvider& provider,
                                          const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Finds the input "OBJECT.INPUT".
    Loam::Result<Orla::StrongPtr<Orla::VSlot>> findInput(std::string_view reference) const;

    /// Finds the output "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER", whose component exists.
    Loam::Result<OutputReference> findOutput(std::string_view reference) const;

    /// Finds an input, or an output as `findOutput` does.
    Loam::Result<OutputReference> findSlot(std::string_view reference) const;

    /// Returns the names of the outputs of the object \p name, without private state.
    std::vector<std::string> outputsOf(const std::string& name) const;

    /// Returns the value of \p input that \p text means in a saved network. Fails if the text is
    /// refused.
    Loam::Result<Orla::StrongPtr<Orla::VValueBase>> valueOfText(const Orla::StrongPtr<Orla::VSlot>& input,
                                                                const std::string& text) const;

    Loam::Result<void> loadLibrary(const std::string& name);
    Loam::Result<void> setText(std::string_view input, const std::string& text);
    Loam::Result<void> setValue(std::string_view input, const Orla::StrongPtr<Orla::VValueBase>& value);
    Loam::Result<void> create(const std::string& type, const std::string& name);
    Loam::Result<void> remove(const std::string& name);
    Loam::Result<void> rename(const std::string& name, const std::string& newName);
    Loam::Result<void> connect(const std::string& output, const std::string& input);
    Loam::Result<void> disconnect(const std::string& input);
    Loam::Result<void> addColumn(const std::string& title, const std::string& output);
    Loam::Result<void> selectChart(const std::string& name);
    Loam::Result<std::string> savedText() const;

private:
    // An object and the rest of the reference that names it.
    struct Named {
        Orla::StrongPtr<Orla::VObject> object;
        std::string_view rest;
    };

    // An input of an object in the saved network, and the entry of the object.
    struct OwnInput {
        Orla::StrongPtr<Orla::VSlot> slot;
        NetworkFile::Object* entry;
    };

    void chooseChart();
    void checkTime();
    void keepOverrides();
    void indexObjects();
    Loam::Result<void> requireNoFaults() const;
    Loam::Result<void> requireNewName(const std::string& name) const;
    Loam::Result<Named> findObject(std::string_view reference, const char* shape) const;
    Loam::Result<OwnInput> findOwnInput(std::string_view reference);
    Orla::StrongPtr<Orla::VValueBase> declaredValue(const Orla::StrongPtr<Orla::VSlot>& input) const;
    Loam::Result<void> assign(const OwnInput& input, const Orla::StrongPtr<Orla::VValueBase>& value,
                              const std::optional<std::string>& text);

    Faults m_faults;
    std::string m_folder;
    Libraries m_libraries;
    mutable std::optional<Orla::VNetwork> m_objects;
    NetworkFile m_file;
    Network m_network;
    ObjectNames m_names; // of the objects in m_file
    mutable std::mutex m_timeMutex;
    mutable std::optional<TimeProvider> m_timeProvider; // found again after a change
    PlacedText m_chart;
    std::optional<std::uint64_t> m_stepLimit;
};

} // namespace Tarn::Detail
