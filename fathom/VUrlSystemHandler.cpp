#include <fathom/VUrlSystemHandler.hpp>

#include <loam/ScopeExit.hpp>

namespace Orla {

VUrlSystemHandler::~VUrlSystemHandler() = default;

// Constant-initialised, so a handler installed by another file's start-up code stays.
constinit StrongPtr<VUrlSystemHandler> VUrlSystemHandler::TheUrlSystemHandler;

namespace {

// Constructed after the handler, so destroyed before it: a later call of `Exec` does not touch
// the destroyed pointer.
constinit bool isOver = false;
const Loam::ScopeExit atExit{[] { isOver = true; }};

} // namespace

bool VUrlSystemHandler::Exec(const std::string& url)
{
    if (isOver)
        return false;
    // Keeps the handler alive in case `openUrl` replaces it. A handler that no pointer owns
    // may have been destroyed.
    const auto handler = Loam::WeakPtrImpl<VUrlSystemHandler>(TheUrlSystemHandler).lock();
    return handler && handler->openUrl(url);
}

} // namespace Orla
