#pragma once

#include <fathom/Forward.hpp>

// Forward declarations, for code that only passes references.
namespace Tarn {

class Context;
class Faults;
class Session;
class StatusReport;
enum class Severity;
struct EvaluationSummary;
struct Fault;
struct LoadOptions;
struct Place;
struct ScriptedEvent;

} // namespace Tarn
