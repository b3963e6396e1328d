#pragma once

#include <rain/Grid.hpp>

#include <ostream>

namespace Rain {

// Prints grids in the messages of failed checks.
inline void PrintTo(const Grid& grid, std::ostream* stream)
{
    *stream << Orla::VValueTrait<Grid>::Text(grid);
}

} // namespace Rain
