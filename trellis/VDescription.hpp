#pragma once

#include <trellis/Export.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <type_traits>

// Describes inputs and outputs where they are declared. The text of a description must be a
// string literal, or live as long as one.

// Checks descriptions at compile time. Clang before version 17 fails to generate code for the
// initialiser of a member that calls a consteval function; there, a faulty description throws
// when it is first used.
#if defined(__clang__) && __clang_major__ < 17
#    define TRELLIS_DESCRIPTION constexpr
#else
#    define TRELLIS_DESCRIPTION consteval
#endif

namespace Orla {

/// How a user interface edits a text.
enum class VTextKind : std::uint8_t { Plain, InputFile, OutputFile, Folder, Color, WebPage, MultiLine };

/// Who sees an input or an output, in addition to its expert level.
enum class VVisibility : std::uint8_t {
    Ordinary,
    Advanced,    ///< few users need it
    Hidden,      ///< for programs; lists omit it, but networks can use it
    PrivateState ///< state that the object keeps in the pool; other objects cannot use it
};

/// The numbers from one to another. An infinite end does not limit the numbers.
struct VLimits {
    double from = -std::numeric_limits<double>::infinity();
    double to = std::numeric_limits<double>::infinity();
    bool excludesFrom = false;
    bool excludesTo = false;

    /// Returns false for NaN unless both ends are infinite.
    constexpr bool contains(double number) const noexcept
    {
        if (!isSet())
            return true;
        return (excludesFrom ? number > from : number >= from) && (excludesTo ? number < to : number <= to);
    }

    /// Returns true if the limits contain a number.
    constexpr bool isInOrder() const noexcept
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        // This form of the comparisons also refuses NaN.
        if (!(from < infinity && to > -infinity && from <= to))
            return false;
        return from < to || !(excludesFrom || excludesTo);
    }

    /// Returns true if some number is outside the limits.
    constexpr bool isSet() const noexcept { return *this != VLimits{}; }

    friend constexpr bool operator==(const VLimits&, const VLimits&) noexcept = default;
};

/// What a description consists of; see `VDescription` for the parts.
template<class Text, class Texts>
struct VDescriptionParts {
    Text sentence{};
    Text unit{};
    VLimits limits{};
    VLimits softLimits{};
    double step = 0;
    bool isLogarithmic = false;
    bool isFinite = false;
    VTextKind textKind = VTextKind::Plain;
    VVisibility visibility = VVisibility::Ordinary;
    Texts extensions{};
    Text conditionInput{};
    Texts conditionValues{};

    friend constexpr bool operator==(const VDescriptionParts&, const VDescriptionParts&) = default;
};

namespace Detail {

// Up to eight literals, without the cost of a vector.
class DescriptionTexts {
public:
    using value_type = std::string_view;
    using const_iterator = const std::string_view*;

    static constexpr std::size_t Most = 8;

    constexpr DescriptionTexts() = default;

    template<class... Texts>
    constexpr explicit DescriptionTexts(std::string_view first, Texts... others)
        : m_texts{first, std::string_view(others)...}, m_count{1 + sizeof...(Texts)}
    {
        static_assert(1 + sizeof...(Texts) <= Most, "a description lists at most eight texts");
    }

    constexpr const_iterator begin() const noexcept { return m_texts.data(); }
    constexpr const_iterator end() const noexcept { return m_texts.data() + m_count; }
    friend constexpr bool operator==(const DescriptionTexts&, const DescriptionTexts&) noexcept = default;

private:
    std::array<std::string_view, Most> m_texts{};
    std::size_t m_count = 0;
};

} // namespace Detail

using VDescriptionLiteral = VDescriptionParts<std::string_view, Detail::DescriptionTexts>;

/// The values that a description fits: `from`, `to` and `step` describe numbers, `asInputFile`
/// a text. A description with both fits no value.
enum class VDescribes : std::uint8_t { AnyValue, Numbers, Text, NoValue };

/// What people need to know about an input or an output: what it means, what it accepts, and in
/// which unit. Written where the slot is declared, from left to right:
///
///     TypedSlot<double> m_reach{this, "reach", 5e4,
///                               describe("Half the side of each box.").in("m").from(0).to(1e7), 0};
///
/// The host enforces the limits wherever a value comes from a text or from a host: a network, a
/// command line, a sweep. Values that other objects compute are not checked. Each number of a
/// range, a point or an array must be within the limits.
template<VDescribes What = VDescribes::AnyValue>
class VDescription {
public:
    constexpr explicit VDescription(const VDescriptionLiteral& parts) noexcept : m_parts{parts} {}

    constexpr const VDescriptionLiteral& parts() const noexcept { return m_parts; }

    /// The unit in which values are read and shown, such as "km". Values are not converted.
    TRELLIS_DESCRIPTION VDescription in(std::string_view unit) const
    {
        VDescriptionLiteral parts = m_parts;
        parts.unit = unit;
        return VDescription{parts};
    }

    /// The smallest number that is accepted.
    TRELLIS_DESCRIPTION auto from(double number) const
    {
        return limited([number](VLimits& limits) { limits.from = number; });
    }

    /// The largest number that is accepted.
    TRELLIS_DESCRIPTION auto to(double number) const
    {
        return limited([number](VLimits& limits) { limits.to = number; });
    }

    /// Accepts only larger numbers.
    TRELLIS_DESCRIPTION auto above(double number) const
    {
        return limited([number](VLimits& limits) {
            limits.from = number;
            limits.excludesFrom = true;
        });
    }

    /// Accepts only smaller numbers.
    TRELLIS_DESCRIPTION auto below(double number) const
    {
        return limited([number](VLimits& limits) {
            limits.to = number;
            limits.excludesTo = true;
        });
    }

    /// Refuses NaN and infinite numbers.
    TRELLIS_DESCRIPTION auto finite() const
    {
        return numbers([](VDescriptionLiteral& parts) { parts.isFinite = true; });
    }

    /// The ends of a slider. Numbers beyond them are accepted, up to the limits.
    TRELLIS_DESCRIPTION auto softLimits(double least, double most) const
    {
        return numbers([least, most](VDescriptionLiteral& parts) { parts.softLimits = {least, most}; });
    }

    /// The distance between two numbers that a user interface offers. Others are accepted, too.
    TRELLIS_DESCRIPTION auto step(double distance) const
    {
        // Without a step it is 0, so 0 becomes a number that is refused.
        return numbers([distance](VDescriptionLiteral& parts) { parts.step = distance == 0 ? -1 : distance; });
    }

    /// A slider has a logarithmic scale.
    TRELLIS_DESCRIPTION auto logarithmic() const
    {
        return numbers([](VDescriptionLiteral& parts) { parts.isLogarithmic = true; });
    }

    /// The text names a file that the object reads. \p extensions are the usual ones, without
    /// their dots: "json".
    template<class... Texts>
    TRELLIS_DESCRIPTION auto asInputFile(Texts... extensions) const
    {
        return text(VTextKind::InputFile, Detail::DescriptionTexts{extensions...});
    }

    /// The text names a file that the object writes.
    template<class... Texts>
    TRELLIS_DESCRIPTION auto asOutputFile(Texts... extensions) const
    {
        return text(VTextKind::OutputFile, Detail::DescriptionTexts{extensions...});
    }

    TRELLIS_DESCRIPTION auto asFolder() const { return text(VTextKind::Folder, {}); }
    TRELLIS_DESCRIPTION auto asColor() const { return text(VTextKind::Color, {}); }
    TRELLIS_DESCRIPTION auto asWebPage() const { return text(VTextKind::WebPage, {}); }
    TRELLIS_DESCRIPTION auto asMultiLine() const { return text(VTextKind::MultiLine, {}); }

    TRELLIS_DESCRIPTION VDescription advanced() const { return visible(VVisibility::Advanced); }
    TRELLIS_DESCRIPTION VDescription hidden() const { return visible(VVisibility::Hidden); }
    TRELLIS_DESCRIPTION VDescription asPrivateState() const { return visible(VVisibility::PrivateState); }

    /// The slot matters only if the input \p name of the same object has one of the texts
    /// \p values.
    template<class... Texts>
    TRELLIS_DESCRIPTION VDescription onlyIf(std::string_view name, std::string_view first, Texts... values) const
    {
        VDescriptionLiteral parts = m_parts;
        parts.conditionInput = name;
        parts.conditionValues = Detail::DescriptionTexts{first, std::string_view(values)...};
        return VDescription{parts};
    }

private:
    template<VDescribes Other>
    using With = VDescription<What == VDescribes::AnyValue || What == Other ? Other : VDescribes::NoValue>;

    template<class Change>
    constexpr With<VDescribes::Numbers> numbers(Change change) const
    {
        VDescriptionLiteral parts = m_parts;
        change(parts);
        return With<VDescribes::Numbers>{parts};
    }

    template<class Change>
    constexpr With<VDescribes::Numbers> limited(Change change) const
    {
        return numbers([&](VDescriptionLiteral& parts) { change(parts.limits); });
    }

    constexpr With<VDescribes::Text> text(VTextKind kind, const Detail::DescriptionTexts& extensions) const
    {
        VDescriptionLiteral parts = m_parts;
        parts.textKind = kind;
        parts.extensions = extensions;
        return With<VDescribes::Text>{parts};
    }

    constexpr VDescription visible(VVisibility visibility) const
    {
        VDescriptionLiteral parts = m_parts;
        parts.visibility = visibility;
        return VDescription{parts};
    }

    VDescriptionLiteral m_parts;
};

/// Begins a description with one sentence for people: "Half the side of each box."
TRELLIS_DESCRIPTION VDescription<> describe(std::string_view sentence)
{
    VDescriptionLiteral parts;
    parts.sentence = sentence;
    return VDescription<>{parts};
}

/// A description whose parts fit together. A `VDescription` converts to it where a slot takes
/// it, so that the compiler reports a fault at the declaration of the slot. The compiler quotes
/// the line that throws, so each has its text; `VSlotDescription::faultOf` checks parts that are
/// known only at run time.
class VCheckedDescription {
public:
    template<VDescribes What>
    TRELLIS_DESCRIPTION VCheckedDescription(const VDescription<What>& description) : m_parts{description.parts()}
    {
        static_assert(What != VDescribes::NoValue, "limits and steps describe numbers, kinds of text describe texts");
        if (m_parts.sentence.empty())
            throw std::invalid_argument("a description needs a sentence");
        if (!m_parts.limits.isInOrder())
            throw std::invalid_argument("the limits must be two numbers in ascending order");
        if (m_parts.softLimits.isSet() && !(m_parts.softLimits.from < m_parts.softLimits.to))
            throw std::invalid_argument("the soft limits must be two numbers in ascending order");
        if (!(m_parts.step >= 0 && m_parts.step < std::numeric_limits<double>::infinity()))
            throw std::invalid_argument("the step must be a positive number");
        if (m_parts.conditionInput.empty() && m_parts.conditionValues.begin() != m_parts.conditionValues.end())
            throw std::invalid_argument("a condition must name an input");
    }

    constexpr const VDescriptionLiteral& parts() const noexcept { return m_parts; }

private:
    VDescriptionLiteral m_parts;
};

} // namespace Orla
