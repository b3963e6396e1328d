#pragma once

#include "Grid.hpp"

#include <earth/JsonText.hpp>

#include <optional>
#include <string>

namespace Rain {

/// Reads a JSON file with a grid:
///
/// - `width` and `height`: the numbers of columns and rows;
/// - `translate`: longitude and latitude of the centre of the first cell, in degrees;
/// - `scale`: degrees from column to column, positive, and from row to row, negative if rows
///   run southwards;
/// - `values`: one value per cell, row by row; null is a missing value.
///
/// Other members are ignored. Memory use depends on the cells, not on the size of the file.
/// Files of more than 256 MiB and grids of more than `GridFrame::mostCells` are refused.
///
/// Returns nothing if \p progress returned false.
/// \throw std::runtime_error with the name of the file, the member, what was found and what
/// was expected.
std::optional<Grid> readGridJson(const std::string& file, const Earth::ReadingProgress& progress = {});

} // namespace Rain
