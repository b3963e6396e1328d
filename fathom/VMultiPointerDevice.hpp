#pragma once

#include <fathom/Export.hpp>
#include <fathom/VInputValueTrait.hpp>

#include <trellis/VValueTrait.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// What touches a device of several pointers, such as a touch screen, at one moment.
///
/// It has no text form.
class FATHOM_API VMultiPointerDevice {
public:
    /// One finger or pen.
    struct Pointer {
        std::int32_t identifier = 0; ///< the same as long as the pointer stays down
        double x = 0;
        double y = 0;

        /// A NaN coordinate, which is neither below nor above any other, equals
        /// every coordinate: a pointer whose place is unknown is no change.
        friend constexpr bool operator==(const Pointer& a, const Pointer& b) noexcept
        {
            return a.identifier == b.identifier && !(a.x < b.x || a.x > b.x) && !(a.y < b.y || a.y > b.y);
        }
    };

    /// As many pointers, and each equals the one in its place.
    friend bool operator==(const VMultiPointerDevice&, const VMultiPointerDevice&) = default;

    std::vector<Pointer> pointers;
};

template<>
struct FATHOM_API VValueTrait<VMultiPointerDevice> {
    /// Empty.
    static std::string Text(const VMultiPointerDevice& device);

    /// Refuses every text.
    static bool setValueFromText(VMultiPointerDevice& device, const std::string& text);
};

template<>
struct FATHOM_API VInputValueTrait<VMultiPointerDevice> {
    /// Leaves no pointer.
    static void init(VMultiPointerDevice& device);

    /// Refuses every text.
    static bool setValueFromText(VMultiPointerDevice& device, const std::string& text);
};

} // namespace Orla
