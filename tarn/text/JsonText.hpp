#pragma once

#include <nlohmann/json.hpp>

#include <string>

// JSON that reports print: readable, with keys in the order in which they were added.

namespace Tarn {

using Json = nlohmann::ordered_json;

/// Returns null for an empty text.
Json orNull(const std::string& text);

/// Returns \p json on several lines, indented, with a newline at the end. It is valid UTF-8 even
/// if its texts are not, and contains no control characters, line separators or direction marks.
std::string indented(const Json& json);

} // namespace Tarn
