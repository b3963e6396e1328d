#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/TimeProvider.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/ValuePool.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// Maximum number of steps of a network that is run from beginning to end. Larger numbers are
/// usually mistakes in its time.
inline constexpr double MostSteps = 1e9;

/// Maximum number of steps whose numbers stay exact in all computations.
inline constexpr double MostCountedSteps = 1e15;

/// A saved network, from reading its file to destroying its last object.
///
/// Relative file names in the texts of inputs start at the folder of the file; files that are
/// read may also be in the folders of the environment variable TARN_DATA. Only one session may
/// exist at a time.
class Session {
public:
    /// Reads the file \p path, loads its libraries and creates its objects; \p overrides as in
    /// `buildNetwork`. \p stepLimit limits the number of steps. \p chart replaces the chart
    /// named in the file.
    /// \throw Loam::FileError if the file cannot be read.
    Session(const std::string& path, const std::vector<std::string>& overrides, std::optional<std::uint64_t> stepLimit,
            const std::optional<std::string>& chart = {});

    /// Destroys the network, then unloads its libraries. If something from them is still in
    /// use, they stay in memory and a warning is issued.
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// If there are any faults, nothing may be evaluated.
    const Faults& faults() const noexcept { return m_faults; }

    const Network& network() const noexcept { return m_network; }
    const Orla::StrongPtr<Orla::ValuePool>& pool() const noexcept { return m_pool; }
    const TimeProvider& timeProvider() const noexcept { return m_timeProvider; }

    /// The chart that all objects must follow; empty if the choice is theirs.
    const PlacedText& wantedChart() const noexcept { return m_chart; }

    /// Number of steps to run; 1 for a network without time.
    std::uint64_t stepCount() const noexcept { return m_stepCount; }

private:
    void chooseChart();
    void countSteps(const NetworkFile& file, std::optional<std::uint64_t> limit);

    Faults m_faults;
    std::string m_folder;
    Libraries m_libraries;
    std::optional<Orla::VNetwork> m_objects; // the network of the file's objects
    std::optional<Orla::VNetwork::Scope> m_scope;
    Orla::StrongPtr<Orla::ValuePool> m_pool;
    Network m_network;
    TimeProvider m_timeProvider;
    PlacedText m_chart;
    std::uint64_t m_stepCount = 1;
};

} // namespace Tarn
