#pragma once

#include <fathom/Export.hpp>
#include <fathom/VInputValueTrait.hpp>

#include <trellis/VValueTrait.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// The pointers on a multi-pointer device, such as a touch screen, at one moment.
///
/// It has no text form.
class FATHOM_API VMultiPointerDevice {
public:
    /// One finger or pen.
    struct Pointer {
        std::int32_t identifier = 0; ///< unchanged while the pointer stays down
        double x = 0;
        double y = 0;

        /// A NaN coordinate, which is neither below nor above any other, equals every
        /// coordinate: a pointer at an unknown place does not count as a change.
        friend constexpr bool operator==(const Pointer& a, const Pointer& b) noexcept
        {
            return a.identifier == b.identifier && !(a.x < b.x || a.x > b.x) && !(a.y < b.y || a.y > b.y);
        }
    };

    /// Compares the number of pointers, and the pointers in order.
    friend bool operator==(const VMultiPointerDevice&, const VMultiPointerDevice&) = default;

    std::vector<Pointer> pointers;
};

template<>
struct FATHOM_API VValueTrait<VMultiPointerDevice> {
    /// Returns the empty text.
    static std::string Text(const VMultiPointerDevice& device);

    /// Refuses every text.
    static bool setValueFromText(VMultiPointerDevice& device, const std::string& text);
};

template<>
struct FATHOM_API VInputValueTrait<VMultiPointerDevice> {
    /// Removes all pointers.
    static void init(VMultiPointerDevice& device);

    /// Refuses every text.
    static bool setValueFromText(VMultiPointerDevice& device, const std::string& text);
};

} // namespace Orla
