#pragma once

#include <trellis/VScheduler.hpp>
#include <trellis/ValuePool.hpp>

#include <unordered_set>

namespace Tarn {

/// While it exists, notes which objects run in a pool.
class UpdateList final : public Orla::VScheduler::Observer {
public:
    explicit UpdateList(const Orla::StrongPtr<Orla::ValuePool>& pool);
    ~UpdateList() override;
    UpdateList(const UpdateList&) = delete;
    UpdateList& operator=(const UpdateList&) = delete;

    /// Returns true if an update of \p object began.
    bool contains(const Orla::VObject& object) const { return m_objects.contains(&object); }

    void becameDue(const Orla::VObject& object, Cause cause, const Orla::VParameter* changed,
                   double precision) noexcept override;
    void began(const Orla::VObject& object) noexcept override;
    void ended(const Orla::VObject& object, Result result) noexcept override;

private:
    const Orla::StrongPtr<Orla::ValuePool> m_pool;
    std::unordered_set<const Orla::VObject*> m_objects;
};

} // namespace Tarn
