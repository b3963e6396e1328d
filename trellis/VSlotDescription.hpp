#pragma once

#include <trellis/Export.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VDescription.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orla {

using Loam::StrongPtr;

/// The description of an input or an output, carried by its creation preferences. Slots with
/// equal descriptions share one object, which lives until the process ends.
class TRELLIS_API VSlotDescription final : public VCreationPreferences {
public:
    using Parts = VDescriptionParts<std::string, std::vector<std::string>>;

    /// Returns the description with these parts.
    static StrongPtr<VSlotDescription> of(const VDescriptionLiteral& parts);

    /// As above, for parts that are known only at run time. Throws `std::invalid_argument` for
    /// parts that a `VDescription` refuses at compile time; see `faultOf`.
    static StrongPtr<VSlotDescription> of(const Parts& parts);

    /// Returns what is wrong with \p parts; empty if nothing is.
    static std::string faultOf(const Parts& parts);

    ~VSlotDescription() override;

    const Parts& parts() const noexcept { return m_parts; }

    /// Returns true if \p number is within the limits.
    bool accepts(double number) const noexcept;

    /// Returns the limits and the unit: "from 0 to 100 km", "above 0", "at most 5", "finite".
    /// Empty without limits.
    std::string limitsText() const;

    /// Returns \p text, followed by the unit if the description has one: "5 km".
    std::string withUnit(const std::string& text) const;

    /// Identifies the description in this process; never 0.
    std::uint32_t number() const noexcept { return m_number; }

    /// Returns the description with that number, or null for 0.
    static const VSlotDescription* withNumber(std::uint32_t number) noexcept;

private:
    friend class DescriptionTable;

    VSlotDescription(Parts parts, std::uint32_t number);

    Parts m_parts;
    std::uint32_t m_number;
};

} // namespace Orla
