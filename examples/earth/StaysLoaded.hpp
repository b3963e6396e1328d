#pragma once

#include <dlfcn.h>

namespace Earth {

/// Keeps the shared library that contains \p function in memory until the process ends.
/// cairo, PROJ and GEOS keep caches until then: every reload would leak them. Returns false
/// if the library is unknown to the dynamic linker.
inline bool staysLoaded(void* function) noexcept
{
    Dl_info library{};
    return dladdr(function, &library) != 0
           && dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}

} // namespace Earth
