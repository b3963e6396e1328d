#include <tarn/run/Tracer.hpp>

#include <loam/Numbers.hpp>
#include <loam/OutputFile.hpp>
#include <loam/StringUtil.hpp>
#include <loam/Typename.hpp>

#include <nlohmann/json.hpp>

#include <utility>

namespace Tarn {

namespace {

using Json = nlohmann::ordered_json;
using Orla::StrongPtr;

constexpr int TheProcess = 1;
constexpr int TheThread = 1;
constexpr char End[] = "\n]}\n";

std::string asLine(const Json& json)
{
    return Loam::StringUtil::unicodeEscaped(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

double microseconds(std::chrono::steady_clock::duration time)
{
    return static_cast<double>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count()) / 1000;
}

Json completeEvent(const std::string& name, const std::string& category, std::chrono::steady_clock::duration start,
                   std::chrono::steady_clock::duration length)
{
    Json event;
    event["name"] = name;
    event["cat"] = category;
    event["ph"] = "X";
    event["ts"] = microseconds(start);
    event["dur"] = microseconds(length);
    event["pid"] = TheProcess;
    event["tid"] = TheThread;
    return event;
}

const char* outcomeOf(Orla::VScheduler::Observer::Result result) noexcept
{
    using Result = Orla::VScheduler::Observer::Result;
    return result == Result::Succeeded ? "done" : result == Result::Failed ? "failed" : "cancelled";
}

} // namespace

Tracer::Tracer(Loam::OutputFile& output, const StrongPtr<Orla::ValuePool>& pool, const std::string& title,
               const std::string& path)
    : m_output{output}, m_pool{pool}, m_path{path}
{
    Json process;
    process["name"] = "process_name";
    process["ph"] = "M";
    process["pid"] = TheProcess;
    process["tid"] = TheThread;
    process["args"]["name"] = title;
    m_output.write("{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n" + asLine(process));
    m_output.saveIfUnfinished(m_path, End);
    Orla::VScheduler::observe(m_pool, this);
}

Tracer::~Tracer()
{
    stop();
}

void Tracer::stop() noexcept
{
    if (m_pool)
        Orla::VScheduler::observe(m_pool, nullptr);
    m_pool.reset();
    m_due.clear();
}

void Tracer::beginStep(std::uint64_t step)
{
    const Clock::time_point now = Clock::now();
    guarded([&] { endStep(now); });
    m_step = step;
    m_stepBegin = now;
    m_isInStep = true;
}

void Tracer::endStep(Clock::time_point now)
{
    if (!std::exchange(m_isInStep, false))
        return;
    Json event = completeEvent("step " + std::to_string(m_step), "step", m_stepBegin - m_start, now - m_stepBegin);
    event["args"]["step"] = m_step;
    m_output.write(",\n" + asLine(event));
}

void Tracer::finish()
{
    const Clock::time_point now = Clock::now();
    stop();
    guarded([&] {
        endStep(now);
        m_output.write(End);
    });
    if (m_failure)
        std::rethrow_exception(m_failure);
}

void Tracer::becameDue(const Orla::VObject& object, Cause cause, const Orla::VParameter* changed,
                       double precision) noexcept
{
    guarded([&] {
        Due& due = m_due[&object];
        due.cause = cause;
        due.precision = precision;
        // Kept alive until the object runs: an earlier update may release it.
        due.changed = changed ? Loam::WeakPtrImpl<Orla::VParameter>(const_cast<Orla::VParameter*>(changed)).lock()
                              : StrongPtr<Orla::VParameter>{};
    });
}

void Tracer::began(const Orla::VObject& object) noexcept
{
    guarded([&] {
        m_running = {};
        if (auto entry = m_due.extract(&object))
            m_running = std::move(entry.mapped());
        // The trace ends with this event if the object never returns.
        Json event;
        event["name"] = object.Name();
        event["cat"] = object.typeName();
        event["ph"] = "B";
        event["ts"] = microseconds(Clock::now() - m_start);
        event["pid"] = TheProcess;
        event["tid"] = TheThread;
        event["args"]["step"] = m_step;
        event["args"]["reason"] = reasonOf(m_running);
        m_output.saveIfUnfinished(m_path, ",\n" + asLine(event) + End);
    });
    m_begin = Clock::now();
}

void Tracer::ended(const Orla::VObject& object, Result result) noexcept
{
    const Clock::time_point end = Clock::now();
    guarded([&] {
        Json event = completeEvent(object.Name(), object.typeName(), m_begin - m_start, end - m_begin);
        event["args"]["step"] = m_step;
        event["args"]["reason"] = reasonOf(m_running);
        event["args"]["outcome"] = outcomeOf(result);
        m_running = {};
        m_output.saveIfUnfinished(m_path, End);
        m_output.write(",\n" + asLine(event));
    });
}

std::string Tracer::reasonOf(const Due& due) const
{
    switch (due.cause) {
    case Cause::Changed:
        if (due.changed) {
            const StrongPtr<Orla::VSlotContainer> owner = due.changed->owner();
            const Orla::VObject* const object = owner ? owner->object() : nullptr;
            return (object ? object->Name() + '.' : std::string()) + due.changed->Name() + " changed";
        }
        return "something it reads changed";
    case Cause::Connected:
        return "its inputs were reconnected";
    case Cause::Cancelled:
        return "its last update was cancelled";
    case Cause::Scheduled:
        break;
    }
    return "scheduled with " + Loam::numberText(due.precision);
}

// Exceptions must not propagate through the running objects.
template<class Function>
void Tracer::guarded(Function&& function) noexcept
{
    if (m_failure)
        return;
    try {
        function();
    } catch (...) {
        m_failure = std::current_exception();
    }
}

} // namespace Tarn
