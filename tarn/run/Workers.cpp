#include <tarn/run/Workers.hpp>

#include <tarn/run/TaskExecutor.hpp>

#include <utility>

namespace Tarn {

Workers::Workers(unsigned count, std::function<void()> work, std::function<void()> onFailure)
    : m_work{std::move(work)}, m_onFailure{std::move(onFailure)}
{
    try {
        for (unsigned i = 0; i < count; ++i)
            m_threads.emplace_back([this] { perform(); });
    } catch (...) {
        // The system has no more threads; those that started do the work, if there are any.
        if (m_threads.empty())
            throw;
    }
}

Workers::~Workers()
{
    for (std::thread& thread : m_threads) {
        if (thread.joinable())
            thread.join();
    }
}

void Workers::join()
{
    for (std::thread& thread : m_threads)
        thread.join();
    m_threads.clear();
    if (m_failure)
        std::rethrow_exception(std::exchange(m_failure, nullptr));
}

void Workers::perform() noexcept
{
    TaskExecutor::prepareThread();
    try {
        m_work();
    } catch (...) {
        {
            const std::lock_guard lock{m_mutex};
            if (!m_failure)
                m_failure = std::current_exception();
        }
        m_onFailure();
    }
}

} // namespace Tarn
