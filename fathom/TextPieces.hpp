#pragma once

#include <gable/FixedArray.hpp>

#include <string>
#include <string_view>

namespace Orla {

/// Three numbers between \p open and \p close, with commas and without blanks.
std::string writeTriple(char open, const Gyre::FixedArray<double, 3>& numbers, char close);

/// Reads three numbers: the first behind the first \p open, each further one
/// behind the next comma. Where the character is missing, what was there for the
/// number before it is read again, so that `{5}` is three times 5. What comes
/// behind the numbers is not looked at. True if at least one could be read; the
/// others keep what they were.
bool readTriple(Gyre::FixedArray<double, 3>& numbers, std::string_view text, char open);

/// Calls \p action with each piece of \p text between separators. Empty pieces
/// count, an empty last piece does not; an empty text has no piece.
template<class Action>
void forEachPiece(std::string_view text, char separator, Action&& action)
{
    while (!text.empty()) {
        const auto end = text.find(separator);
        action(text.substr(0, end));
        if (end == std::string_view::npos)
            return;
        text.remove_prefix(end + 1);
    }
}

} // namespace Orla
