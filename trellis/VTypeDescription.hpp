#pragma once

#include <trellis/Export.hpp>
#include <trellis/VDescription.hpp>

#include <loam/Interface.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Orla {

/// What a description of an object type consists of.
template<class Text, class Texts>
struct VTypeDescriptionParts {
    Text sentence{};
    Text details{};
    Text category{};
    Texts keywords{};
    Text page{};
};

using VTypeDescriptionLiteral = VTypeDescriptionParts<std::string_view, Detail::DescriptionTexts>;

/// What people need to know about an object type. Written where the type is registered:
///
///     const Orla::VObjectType<QuakeFilter> type{
///         "QuakeFilter", Orla::describeType("Selects earthquakes.").category("Earthquakes")};
class VTypeText {
public:
    constexpr explicit VTypeText(const VTypeDescriptionLiteral& parts) noexcept : m_parts{parts} {}

    constexpr const VTypeDescriptionLiteral& parts() const noexcept { return m_parts; }

    /// A longer text. Empty lines separate its paragraphs.
    TRELLIS_DESCRIPTION VTypeText details(std::string_view text) const
    {
        VTypeText changed = *this;
        changed.m_parts.details = text;
        return changed;
    }

    /// The group of related types.
    TRELLIS_DESCRIPTION VTypeText category(std::string_view name) const
    {
        VTypeText changed = *this;
        changed.m_parts.category = name;
        return changed;
    }

    /// Other words that people search for.
    template<class... Texts>
    TRELLIS_DESCRIPTION VTypeText keywords(std::string_view first, Texts... others) const
    {
        VTypeText changed = *this;
        changed.m_parts.keywords = Detail::DescriptionTexts{first, std::string_view(others)...};
        return changed;
    }

    /// The address of a page with more information.
    TRELLIS_DESCRIPTION VTypeText page(std::string_view address) const
    {
        VTypeText changed = *this;
        changed.m_parts.page = address;
        return changed;
    }

private:
    VTypeDescriptionLiteral m_parts;
};

/// Begins the description of an object type with one sentence: "Selects earthquakes."
TRELLIS_DESCRIPTION VTypeText describeType(std::string_view sentence)
{
    if (sentence.empty())
        throw std::invalid_argument("a description needs a sentence");
    VTypeDescriptionLiteral parts;
    parts.sentence = sentence;
    return VTypeText{parts};
}

/// The description of an object type, kept by its creator.
class TRELLIS_API VTypeDescription final : public Loam::InterfaceBase {
public:
    using Parts = VTypeDescriptionParts<std::string, std::vector<std::string>>;

    explicit VTypeDescription(const VTypeDescriptionLiteral& parts);
    explicit VTypeDescription(const Parts& parts);
    ~VTypeDescription() override;

    const Parts& parts() const noexcept { return m_parts; }

private:
    Parts m_parts;
};

} // namespace Orla
