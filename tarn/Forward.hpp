#pragma once

#include <fathom/Forward.hpp>

// Forward declarations, for code that only passes references.
namespace Tarn {

class CaseExchange;
class Context;
class Faults;
class Session;
class StatusReport;
class Study;
class Sweep;
enum class Severity;
struct CaseResult;
struct EvaluationSummary;
struct Fault;
struct LoadOptions;
struct Place;
struct ScriptedEvent;
struct StudyOptions;

} // namespace Tarn
