#pragma once

#include <quakes/Catalogue.hpp>

#include <ostream>

namespace Quakes {

// Print catalogues in the messages of failed checks.
inline void PrintTo(const Catalogue& catalogue, std::ostream* stream)
{
    *stream << catalogue.size() << " events:\n" << Orla::VValueTrait<Catalogue>::Text(catalogue);
}

inline void PrintTo(const Quake& quake, std::ostream* stream)
{
    PrintTo(Catalogue{{quake}}, stream);
}

} // namespace Quakes
