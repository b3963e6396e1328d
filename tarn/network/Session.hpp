#pragma once

#include <tarn/libraries/ObjectTracker.hpp>
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

/// Steps that a network may have to be run from begin to end. Larger numbers are
/// mistakes in its time more often than patience.
inline constexpr double MostSteps = 1e9;

/// Steps whose numbers are exact in all that is computed with them.
inline constexpr double MostCountedSteps = 1e15;

/// A saved network from its file to the end of its last object.
///
/// The folder of the file becomes the working directory: relative names in the
/// texts of inputs start there. There may be one session at a time.
class Session {
public:
    /// Reads the file \p path, loads its libraries and makes its objects;
    /// \p overrides as in `buildNetwork`. There will be \p stepLimit steps at most,
    /// and \p chart is wanted instead of the one that the file names.
    /// \throw Loam::FileError if the file cannot be read.
    Session(const std::string& path, const std::vector<std::string>& overrides, std::optional<std::uint64_t> stepLimit,
            const std::optional<std::string>& chart = {});

    /// Lets the network go, then its libraries. If something of theirs is still
    /// in use they stay in memory, and a warning says so.
    ~Session();

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Nothing may be evaluated if there are any.
    const Faults& faults() const noexcept { return m_faults; }

    const Network& network() const noexcept { return m_network; }
    const Orla::StrongPtr<Orla::ValuePool>& pool() const noexcept { return m_pool; }
    const TimeProvider& timeProvider() const noexcept { return m_timeProvider; }

    /// The chart that all objects are to follow; empty if that is left to them.
    const PlacedText& wantedChart() const noexcept { return m_chart; }

    /// Steps to run; one for a network without time.
    std::uint64_t stepCount() const noexcept { return m_stepCount; }

private:
    void loadLibraries(const NetworkFile& file, std::vector<std::string>& missing);
    void chooseChart();
    void countSteps(const NetworkFile& file, std::optional<std::uint64_t> limit);

    Faults m_faults;
    Orla::StrongPtr<ObjectTracker> m_tracker;
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
