#include <fathom/VUrlSystemHandler.hpp>

namespace Orla {

VUrlSystemHandler::~VUrlSystemHandler() = default;

// Constant-initialised, so a handler installed by another file's start-up code stays.
constinit StrongPtr<VUrlSystemHandler> VUrlSystemHandler::TheUrlSystemHandler;

namespace {

// Constructed after the handler, so destroyed before it: a later call of `Exec` does not touch
// the destroyed pointer.
struct AtExit {
    ~AtExit() { isOver = true; }

    static inline constinit bool isOver = false;
};

const AtExit atExit;

} // namespace

bool VUrlSystemHandler::Exec(const std::string& url)
{
    if (AtExit::isOver)
        return false;
    // Keeps the handler alive in case `openUrl` replaces it. A handler that no pointer owns
    // may have been destroyed.
    const auto handler = Loam::WeakPtrImpl<VUrlSystemHandler>(TheUrlSystemHandler).lock();
    return handler && handler->openUrl(url);
}

} // namespace Orla
