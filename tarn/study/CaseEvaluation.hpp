#pragma once

#include <tarn/run/Context.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/study/CaseResult.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

class Session;
class Sweep;

/// Evaluates cases of a study, one at a time. Each thread has its own instance.
///
/// If no object depends on its earlier updates, the next case is evaluated in the same context:
/// only objects that depend on the varied inputs or on time run again.
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

    CaseResult evaluate(std::uint64_t number, const Orla::VCancellation& cancellation);

private:
    Context makeContext(std::uint64_t number);
    void setTexts(Context& context, const std::vector<std::string>& texts,
                  const std::vector<std::string>& former) const;
    void evaluateSteps(Context& context, CaseResult& result, const Orla::VCancellation& cancellation);
    StatusReport statusesOf(const Context& context) const;
    bool isReusable(const Context& context, const CaseResult& result) const;

    const Session& m_session;
    const Sweep& m_sweep;
    Options m_options;
    TaskExecutor m_helpers;
    StatusReport::Outputs m_statuses;
    std::optional<Context> m_context; // of the case before, if it can be used again
    std::vector<std::string> m_texts; // of that case
};

} // namespace Tarn
