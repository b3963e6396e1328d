#include <trellis/VSlotDescription.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <unordered_map>

namespace Orla {

namespace {

bool areEqual(const VSlotDescription::Parts& a, const VDescriptionLiteral& b)
{
    return a.sentence == b.sentence && a.unit == b.unit && a.limits == b.limits && a.softLimits == b.softLimits
           && a.step == b.step && a.isLogarithmic == b.isLogarithmic && a.isFinite == b.isFinite
           && a.textKind == b.textKind && a.visibility == b.visibility && std::ranges::equal(a.extensions, b.extensions)
           && a.conditionInput == b.conditionInput && std::ranges::equal(a.conditionValues, b.conditionValues);
}

VSlotDescription::Parts copyOf(const VDescriptionLiteral& parts)
{
    return {.sentence = std::string(parts.sentence),
            .unit = std::string(parts.unit),
            .limits = parts.limits,
            .softLimits = parts.softLimits,
            .step = parts.step,
            .isLogarithmic = parts.isLogarithmic,
            .isFinite = parts.isFinite,
            .textKind = parts.textKind,
            .visibility = parts.visibility,
            .extensions = {parts.extensions.begin(), parts.extensions.end()},
            .conditionInput = std::string(parts.conditionInput),
            .conditionValues = {parts.conditionValues.begin(), parts.conditionValues.end()}};
}

} // namespace

// All descriptions of the process.
class DescriptionTable {
public:
    static DescriptionTable& instance()
    {
        // Never destroyed, because objects that outlive all static objects have descriptions.
        static DescriptionTable& theTable = *new DescriptionTable;
        return theTable;
    }

    template<class Given, class Same, class Copy>
    StrongPtr<VSlotDescription> find(const Given& parts, Same isSame, Copy copy)
    {
        const std::size_t key = std::hash<std::string_view>{}(parts.sentence);
        {
            const std::shared_lock lock{m_mutex};
            if (VSlotDescription* const found = search(key, isSame))
                return StrongPtr<VSlotDescription>(found);
        }
        const std::unique_lock lock{m_mutex};
        if (VSlotDescription* const found = search(key, isSame))
            return StrongPtr<VSlotDescription>(found);
        const auto number = static_cast<std::uint32_t>(m_descriptions.size() + 1);
        StrongPtr<VSlotDescription> added(new VSlotDescription{copy(parts), number});
        m_numbers.emplace(key, number);
        m_descriptions.push_back(added);
        return added;
    }

    VSlotDescription* get(std::uint32_t number) const
    {
        const std::shared_lock lock{m_mutex};
        return number == 0 || number > m_descriptions.size() ? nullptr : m_descriptions[number - 1].get();
    }

private:
    template<class Same>
    VSlotDescription* search(std::size_t key, Same isSame) const
    {
        const auto [first, last] = m_numbers.equal_range(key);
        for (auto entry = first; entry != last; ++entry) {
            VSlotDescription* const description = m_descriptions[entry->second - 1].get();
            if (isSame(description->parts()))
                return description;
        }
        return nullptr;
    }

    mutable std::shared_mutex m_mutex;
    std::deque<StrongPtr<VSlotDescription>> m_descriptions;
    std::unordered_multimap<std::size_t, std::uint32_t> m_numbers; // by the hash of the sentence
};

VSlotDescription::VSlotDescription(Parts parts, std::uint32_t number) : m_parts{std::move(parts)}, m_number{number}
{
}

VSlotDescription::~VSlotDescription() = default;

StrongPtr<VSlotDescription> VSlotDescription::of(const VDescriptionLiteral& parts)
{
    return DescriptionTable::instance().find(
        parts, [&](const Parts& known) { return areEqual(known, parts); }, &copyOf);
}

StrongPtr<VSlotDescription> VSlotDescription::of(const Parts& parts)
{
    if (const std::string fault = faultOf(parts); !fault.empty())
        throw std::invalid_argument(fault);
    return DescriptionTable::instance().find(
        parts, [&](const Parts& known) { return known == parts; }, [](const Parts& given) { return given; });
}

std::string VSlotDescription::faultOf(const Parts& parts)
{
    if (parts.sentence.empty())
        return "a description needs a sentence";
    if (!parts.limits.isInOrder())
        return "the limits must be two numbers in ascending order";
    if (parts.softLimits.isSet() && !(parts.softLimits.from < parts.softLimits.to))
        return "the soft limits must be two numbers in ascending order";
    if (!(parts.step >= 0 && std::isfinite(parts.step)))
        return "the step must be a positive number";
    if (parts.textKind != VTextKind::Plain
        && (parts.limits.isSet() || parts.softLimits.isSet() || parts.isFinite || parts.step > 0))
        return "a text has no limits and no step";
    if (parts.conditionInput.empty() != parts.conditionValues.empty())
        return "a condition must name an input and its values";
    return {};
}

bool VSlotDescription::accepts(double number) const noexcept
{
    return m_parts.limits.contains(number) && (!m_parts.isFinite || std::isfinite(number));
}

std::string VSlotDescription::limitsText() const
{
    const auto& [from, to, excludesFrom, excludesTo] = m_parts.limits;
    const std::string least = Loam::numberText(from);
    const std::string most = Loam::numberText(to);
    std::string text;
    if (std::isfinite(from) && std::isfinite(to) && !excludesFrom && !excludesTo)
        text = "from " + least + " to " + most;
    else if (std::isfinite(from))
        text = (excludesFrom ? "above " : "at least ") + least;
    if (std::isfinite(to) && !text.starts_with("from"))
        text += (text.empty() ? "" : " and ") + std::string(excludesTo ? "below " : "at most ") + most;
    if (!text.empty())
        text = withUnit(text);
    if (m_parts.isFinite && !(std::isfinite(from) && std::isfinite(to)))
        text += text.empty() ? "finite" : " and finite";
    return text;
}

std::string VSlotDescription::withUnit(const std::string& text) const
{
    return m_parts.unit.empty() ? text : text + ' ' + m_parts.unit;
}

const VSlotDescription* VSlotDescription::withNumber(std::uint32_t number) noexcept
{
    return DescriptionTable::instance().get(number);
}

} // namespace Orla
