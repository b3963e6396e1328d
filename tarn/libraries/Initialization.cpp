#include <tarn/libraries/Initialization.hpp>

#include <atomic>

namespace Tarn {

namespace {

std::atomic<std::terminate_handler> theTerminateHandler{nullptr};
thread_local const std::string* theTitle = nullptr;

} // namespace

Initialization::Initialization(const std::string& title) noexcept : m_outer{theTitle}
{
    if (const std::terminate_handler handler = theTerminateHandler)
        m_former = std::set_terminate(handler);
    theTitle = &title;
}

Initialization::~Initialization()
{
    theTitle = m_outer;
    if (m_former)
        std::set_terminate(m_former);
}

void Initialization::setTerminateHandler(std::terminate_handler handler) noexcept
{
    theTerminateHandler = handler;
}

const std::string* Initialization::title() noexcept
{
    return theTitle;
}

} // namespace Tarn
