#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <string>

namespace Orla {

/// An interval of numbers from `begin` to `end`.
///
/// Nothing is enforced: the end may lie before the begin.
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

    /// Reads the begin before the first separator and the end after the last one. The
    /// separator is ":" if the text contains one, else ",". Without a separator, reads both
    /// from the whole text. Returns false but keeps the new begin if the end cannot be read.
    static bool setValueFromText(Range& range, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<Range>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<Range>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<Range>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<Range>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<Range>;

} // namespace Orla
