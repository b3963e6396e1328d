#pragma once

// All headers of the host library. For code that only passes references, Forward.hpp suffices.

#include <tarn/network/Session.hpp>
#include <tarn/run/Context.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/run/StatusText.hpp>
#include <tarn/study/CaseResult.hpp>
#include <tarn/study/Study.hpp>
#include <tarn/study/Sweep.hpp>
#include <tarn/text/Faults.hpp>
#include <tarn/types/TypeCatalogue.hpp>
