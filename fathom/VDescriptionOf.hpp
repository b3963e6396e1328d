#pragma once

#include <fathom/VNumbers.hpp>

#include <trellis/VDescription.hpp>

#include <string>
#include <type_traits>

namespace Orla {

/// A description that fits values of type \p T. A `VDescription` converts to it where a slot of
/// the type takes it.
template<class T>
class VDescriptionOf : public VCheckedDescription {
public:
    template<VDescribes What>
    TRELLIS_DESCRIPTION VDescriptionOf(const VDescription<What>& description) : VCheckedDescription{description}
    {
        static_assert(What != VDescribes::Numbers || hasNumbers<T>, "limits and steps describe numbers");
        static_assert(What != VDescribes::Text || std::is_same_v<T, std::string>, "kinds of text describe texts");
    }
};

} // namespace Orla
