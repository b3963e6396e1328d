#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// Returns the manual page of the program with \p commands, in the markup of man(7). It
/// contains all of the help.
std::string manPage(const std::vector<const Command*>& commands);

/// Returns a text of the help in that markup. Indented lines with a gap of two or more blanks
/// become list items, tagged with the text before the gap. Other indented lines are kept
/// unchanged; everything else is filled.
std::string manText(std::string_view help);

} // namespace Tarn
