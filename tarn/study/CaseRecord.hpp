#pragma once

#include <tarn/study/CaseResult.hpp>

#include <loam/Result.hpp>

#include <string>
#include <string_view>

namespace Tarn {

/// Returns \p result as one line of JSON, with a line feed. Texts that are not UTF-8 are kept as
/// the hexadecimal digits of their bytes.
std::string recordOf(const CaseResult& result);

/// Reads what `recordOf` returned, with or without the line feed.
Loam::Result<CaseResult> resultOf(std::string_view record);

} // namespace Tarn
