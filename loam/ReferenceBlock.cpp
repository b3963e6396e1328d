#include <loam/ReferenceBlock.hpp>

#include <loam/ReferenceBase.hpp>

namespace Loam {

void ReferenceBlock::lastStrongReleased(std::uint32_t old) noexcept
{
    const std::uint32_t flags = old & ~CountMask;
    if ((flags & Destroyed) != 0) {
        releaseWeak(); // the share kept by strong pointers that outlived the object
        return;
    }
    if ((flags & (Unowned | Fresh | Dying)) != 0)
        return;
    m_strong.store(flags | Dying, std::memory_order_relaxed);
    m_object->extremeUnction();
    delete m_object;
}

void ReferenceBlock::freeMemory() noexcept
{
    ::operator delete(static_cast<void*>(this));
}

} // namespace Loam
