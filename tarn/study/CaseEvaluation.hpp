#pragma once

#include <tarn/network/OutputReference.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/study/CaseResult.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

class Context;
class Session;
class Sweep;

/// Evaluates single cases of a study. Several threads may evaluate cases at the same time.
class CaseEvaluation {
public:
    struct Options {
        std::vector<std::string> printed = {};
        std::vector<ScriptedEvent> events = {};
        unsigned stepThreads = 1; ///< for the steps of one case

        /// Threads that run independent objects of a case beside its own; nothing for one per core.
        std::optional<unsigned> helpers = {};

        std::function<void(const std::string& reason)> reportOrder = {};
    };

    CaseEvaluation(const Session& session, const Sweep& sweep, Options options);

    CaseResult evaluate(std::uint64_t number, const Orla::VCancellation& cancellation) const;

private:
    Context makeContext(std::uint64_t number) const;

    const Session& m_session;
    const Sweep& m_sweep;
    Options m_options;
};

} // namespace Tarn
