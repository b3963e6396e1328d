#pragma once

#include <trellis/Export.hpp>

#include <loam/LoadedLibrary.hpp>
#include <loam/Result.hpp>

#include <optional>
#include <string>

namespace Orla {

/// A loaded library of processing objects, as `dlopen` returned it, together with those that were
/// loaded because it needs them; see Loam::LoadedLibrary.
class TRELLIS_API VLibrary {
public:
    /// \pre `dlopen` returned \p handle, and it has not been closed.
    explicit VLibrary(void* handle);

    /// Returns true if \p address is that of code or static data of the library.
    bool contains(const void* address) const noexcept { return m_library.contains(address); }

    /// Returns true if the library registered a type of objects or of values.
    bool registersTypes() const;

    /// Describes something whose code is in the library: an object, a value or a creator that is
    /// still referenced. Returns nothing if the library may be unloaded, as far as the framework
    /// knows. It does not know of listeners, observers, threads and values of classes other than
    /// `VValue`.
    /// \pre No other thread creates or destroys objects.
    std::optional<std::string> use() const;

    /// Closes the handle unless the library is in use. After a failure, whose reason is the text
    /// of `use` followed by "is still in use", nothing has changed.
    Loam::Result<void> unload();

private:
    Loam::LoadedLibrary m_library;
};

} // namespace Orla
