#pragma once

#include <fathom/Export.hpp>

#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

using Loam::StrongPtr;

/// Opens URLs for the process, such as a help page in a browser. The host derives from it and
/// installs its own object.
class FATHOM_API VUrlSystemHandler : public Loam::ReferenceBase<VUrlSystemHandler> {
public:
    ~VUrlSystemHandler() override;

    /// Opens \p url. Returns true if the system accepted it.
    virtual bool openUrl(const std::string& url) = 0;

    /// Opens \p url through the installed handler. Returns false if no handler is installed or
    /// it refuses. May be called at any time, even while the program starts or exits.
    static bool Exec(const std::string& url);

    /// The installed handler; null at first, released when the process exits.
    static constinit StrongPtr<VUrlSystemHandler> TheUrlSystemHandler;
};

} // namespace Orla
