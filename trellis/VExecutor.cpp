#include <trellis/VExecutor.hpp>

namespace Orla {

VExecutor::~VExecutor() = default;

std::chrono::nanoseconds VExecutor::handOverTime() const noexcept
{
    return std::chrono::microseconds{1};
}

} // namespace Orla
