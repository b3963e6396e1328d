#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// The manual page of the program with \p commands, in the markup of man(7). It says
/// what the help says, so it lacks nothing that the help has.
std::string manPage(const std::vector<const Command*>& commands);

/// A text of the help in that markup. Indented lines with a gap of two blanks or
/// more are items of a list, with what stands before the gap as their tag; other
/// indented lines stay as they are; everything else is filled.
std::string manText(std::string_view help);

} // namespace Tarn
