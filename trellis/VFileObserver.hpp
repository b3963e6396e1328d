#pragma once

#include <trellis/Export.hpp>

#include <string>

namespace Orla {

class VObject;

/// Is notified of the files that the objects of a network use. Hosts that evaluate again when a
/// file changes derive from it; see `VNetwork::setFileObserver`. Objects may run concurrently, so
/// several threads may call it at the same time.
class TRELLIS_API VFileObserver {
public:
    virtual ~VFileObserver();

    /// Called before \p object reads the file \p path, which it calls \p name. The file may be
    /// missing. An exception passes through `VObject::inputFile`.
    virtual void reads(const VObject& object, const std::string& name, const std::string& path) = 0;

    /// Called before \p object writes the file \p path. An exception passes through
    /// `VObject::resultFile`.
    virtual void writes(const VObject& object, const std::string& path) = 0;
};

} // namespace Orla
