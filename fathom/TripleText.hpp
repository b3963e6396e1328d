#pragma once

#include <gable/FixedArray.hpp>

#include <string>
#include <string_view>

namespace Orla {

/// Returns three numbers between \p open and \p close, separated by commas, without blanks.
std::string writeTriple(char open, const Gyre::FixedArray<double, 3>& numbers, char close);

/// Reads three numbers: the first after the first \p open, each other one after the next
/// comma. If that character is missing, reads again from where the previous number was read:
/// `{5}` gives 5 three times. Ignores what follows the numbers. Returns true if at least one
/// number could be read; the others keep their values.
bool readTriple(Gyre::FixedArray<double, 3>& numbers, std::string_view text, char open);

} // namespace Orla
