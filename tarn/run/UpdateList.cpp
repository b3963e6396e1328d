#include <tarn/run/UpdateList.hpp>

#include <new>

namespace Tarn {

UpdateList::UpdateList(const Orla::StrongPtr<Orla::ValuePool>& pool) : m_pool{pool}
{
    Orla::VScheduler::observe(m_pool, this);
}

UpdateList::~UpdateList()
{
    Orla::VScheduler::observe(m_pool, nullptr);
}

void UpdateList::becameDue(const Orla::VObject&, Cause, const Orla::VParameter*, double) noexcept
{
}

void UpdateList::began(const Orla::VObject& object) noexcept
{
    try {
        m_objects.insert(&object);
    } catch (const std::bad_alloc&) {
        // The object is not counted.
    }
}

void UpdateList::ended(const Orla::VObject&, Result) noexcept
{
}

} // namespace Tarn
