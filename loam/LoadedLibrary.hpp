#pragma once

#include <loam/Export.hpp>

#include <vector>

struct link_map;

namespace Loam {

/// A shared library that `dlopen` returned, together with those that were loaded because it
/// needs them. Those that the program needs without it do not belong to it.
class LOAM_API LoadedLibrary {
public:
    /// \pre `dlopen` returned \p handle, and it has not been closed.
    explicit LoadedLibrary(void* handle);

    /// Returns true if \p address is that of code or static data of the library.
    bool contains(const void* address) const noexcept;

    /// Closes the handle. Afterwards `contains` must not be called.
    void close() noexcept;

private:
    void* m_handle;
    std::vector<const link_map*> m_parts;
};

} // namespace Loam
