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
    const TimeProvider& timeProvider() const noexcept { return m_timeProvider; }

    /// The chart that all objects must follow; empty if the choice is theirs.
    const PlacedText& wantedChart() const noexcept { return m_chart; }

    /// Returns the number of steps from the beginning to the end of the time in \p pool, but no
    /// more than the limit; 1 without a time. Fails if the time has no steps or too many.
    Loam::Result<std::uint64_t> stepCount(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Finds the input "OBJECT.INPUT".
    Loam::Result<Orla::StrongPtr<Orla::VSlot>> findInput(std::string_view reference) const;

    /// Finds the output "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER", whose component exists.
    Loam::Result<OutputReference> findOutput(std::string_view reference) const;

    /// Returns the value that the object declares for \p input.
    Orla::StrongPtr<Orla::VValueBase> declaredValue(const Orla::StrongPtr<Orla::VSlot>& input) const;

    Loam::Result<void> loadLibrary(const std::string& name);
    Loam::Result<void> setText(std::string_view input, const std::string& text);
    Loam::Result<void> setValue(std::string_view input, const Orla::StrongPtr<Orla::VValueBase>& value);
    Loam::Result<void> create(const std::string& type, const std::string& name);
    Loam::Result<void> remove(const std::string& name);
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

    void chooseChart();
    void checkTime();
    void keepOverrides();
    void indexObjects();
    Loam::Result<void> requireNoFaults() const;
    Loam::Result<Named> findObject(std::string_view reference, const char* shape) const;
    Loam::Result<NetworkFile::Object*> entryOf(const Orla::VSlot& input);
    void noteText(const Orla::StrongPtr<Orla::VSlot>& input, NetworkFile::Object& entry, const std::string& text);

    Faults m_faults;
    std::string m_folder;
    Libraries m_libraries;
    std::optional<Orla::VNetwork> m_objects;
    NetworkFile m_file;
    Network m_network;
    ObjectNames m_names; // of the objects in m_file
    TimeProvider m_timeProvider;
    PlacedText m_chart;
    std::optional<std::uint64_t> m_stepLimit;
};

} // namespace Tarn::Detail
