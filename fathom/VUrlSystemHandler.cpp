#include <fathom/VUrlSystemHandler.hpp>

namespace Orla {

VUrlSystemHandler::~VUrlSystemHandler() = default;

// Constant, so that a handler installed by another file's start-up code stays.
constinit StrongPtr<VUrlSystemHandler> VUrlSystemHandler::TheUrlSystemHandler;

namespace {

// Destroyed before the handler, as it is made later: whoever opens a URL from
// then on meets no pointer that is gone.
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
    // Kept alive meanwhile, should it be replaced by what it does. A handler that no
    // pointer owns may be gone.
    const auto handler = Loam::WeakPtrImpl<VUrlSystemHandler>(TheUrlSystemHandler).lock();
    return handler && handler->openUrl(url);
}

} // namespace Orla
