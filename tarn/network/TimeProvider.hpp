#pragma once

#include <fathom/VTime.hpp>

#include <trellis/VObject.hpp>

#include <cstdint>
#include <string>

namespace Tarn {

/// The object that gives all others their time, and which the program steps: it
/// has the preference "GlobalTime" and a `VTime` input that nothing is connected
/// to.
class TimeProvider {
public:
    /// The announced object that suits best. Of several that suit equally well it
    /// is the one announced last, as objects that look for their time choose it;
    /// that there are several is said through `VActionNotifier::Warning`. A
    /// network may have none.
    static TimeProvider find();

    explicit operator bool() const noexcept { return bool(m_input); }

    const std::string& name() const noexcept { return m_name; }
    const std::string& inputName() const { return m_input->name(); }

    /// False once the object is gone.
    bool exists() const noexcept { return m_input && m_input->container(); }

    /// The time in \p pool with the interval and the step of all times.
    Orla::VTime time(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Writes the time of step \p step into \p pool and announces it; everything
    /// but the time itself stays as in \p like.
    void setStep(const Orla::StrongPtr<Orla::ValuePool>& pool, const Orla::VTime& like, std::uint64_t step) const;

    /// Number of steps from the begin of the interval to its end; may be negative,
    /// infinite or NaN, as the interval and the step may.
    static double stepCount(const Orla::VTime& time) noexcept;

private:
    std::string m_name;
    Orla::StrongPtr<Orla::VSlot> m_input;
};

} // namespace Tarn
