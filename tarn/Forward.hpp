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
class TypeCatalogue;
enum class Severity;
struct CaseResult;
struct EvaluationSummary;
struct Fault;
struct LoadOptions;
struct ObjectTypeDescription;
struct Place;
struct ScriptedEvent;
struct StudyOptions;
struct ValueTypeDescription;

} // namespace Tarn
