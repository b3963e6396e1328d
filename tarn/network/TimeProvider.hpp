#pragma once

#include <fathom/VTime.hpp>

#include <trellis/VObject.hpp>

#include <loam/Result.hpp>

#include <cstdint>
#include <string>

namespace Tarn {

/// The object that provides the time to all others and whose time the program steps. It has
/// the preference "GlobalTime" and an unconnected `VTime` input.
class TimeProvider {
public:
    /// Returns the best match among the announced objects; a network may have none. Of several
    /// equally good matches it returns the one announced last, which time-dependent objects
    /// choose too, and issues a warning through `VActionNotifier::Warning`.
    static TimeProvider find();

    explicit operator bool() const noexcept { return bool(m_input); }

    /// Returns the name of the object, which may change; that it had if the object is destroyed.
    const std::string& name() const noexcept;
    const std::string& inputName() const { return m_input->name(); }

    /// Returns false once the object is destroyed.
    bool exists() const noexcept { return m_input && m_input->container(); }

    /// Returns the time in \p pool, with its interval and step, or the reason why an
    /// `Orla::VTimeSource` has none.
    Loam::Result<Orla::VTime> time(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Writes the time of step \p step into \p pool and announces it. Everything but the time
    /// itself is copied from \p like.
    void setStep(const Orla::StrongPtr<Orla::ValuePool>& pool, const Orla::VTime& like, std::uint64_t step) const;

    /// Returns the number of steps from the beginning to the end of the interval. It may be
    /// negative, infinite or NaN, depending on the interval and the step.
    static double stepCount(const Orla::VTime& time) noexcept;

private:
    std::string m_name;
    Orla::StrongPtr<Orla::VSlot> m_input;
};

} // namespace Tarn
