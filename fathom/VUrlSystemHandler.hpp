#pragma once

#include <fathom/Export.hpp>

#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

using Loam::StrongPtr;

/// How the process opens a URL, such as a help page in a browser. The host derives
/// from it and installs an object of its own.
class FATHOM_API VUrlSystemHandler : public Loam::ReferenceBase<VUrlSystemHandler> {
public:
    ~VUrlSystemHandler() override;

    /// Opens \p url; true if the system accepted it.
    virtual bool openUrl(const std::string& url) = 0;

    /// Opens \p url through the installed handler. False if there is none or it
    /// refused. May be called at any time, also while the program starts and ends.
    static bool Exec(const std::string& url);

    /// The installed handler; null at first, released at the end of the process.
    static constinit StrongPtr<VUrlSystemHandler> TheUrlSystemHandler;
};

} // namespace Orla
