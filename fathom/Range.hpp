#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <string>

namespace Orla {

/// An interval of numbers from `begin` to `end`.
///
/// Nothing is enforced: an interval whose end lies before its begin stays as it is.
///
/// Text form: `BEGIN:END`, for example `4.5:10`; a comma is read as well.
class FATHOM_API Range {
public:
    Range() noexcept = default;
    Range(double theBegin, double theEnd) noexcept : begin{theBegin}, end{theEnd} {}
    Range(const Range&) noexcept = default;
    Range& operator=(const Range&) noexcept = default;
    virtual ~Range();

    friend bool operator==(const Range& a, const Range& b) noexcept { return a.begin == b.begin && a.end == b.end; }

    double begin = 0;
    double end = 1;
};

template<>
struct FATHOM_API VValueTrait<Range> {
    static std::string Text(const Range& range);

    /// Reads the begin up to the first separator and the end after the last one;
    /// the separator is ":" if the text has one, else ",". Without a separator
    /// both are read from the whole text. An end that cannot be read is refused
    /// and leaves the new begin in place.
    static bool setValueFromText(Range& range, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<Range>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<Range>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<Range>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<Range>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<Range>;

} // namespace Orla
