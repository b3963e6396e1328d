#include <tarn/network/InputText.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/types/Choices.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <fathom/VNumbers.hpp>

#include <trellis/VSlotDescription.hpp>
#include <trellis/VTypeLabel.hpp>

#include <loam/Ascii.hpp>
#include <loam/Numbers.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

namespace Tarn {

namespace {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;
using Orla::VSlotDescription;
using Orla::VValueBase;
using Strings = std::vector<std::string>;

// Returns the full form of a text that only names a choice. An object may offer its choices
// later; ChoiceCheck compares them.
std::string completeText(VValueBase& value, const std::string& text)
{
    if (text.empty() || text.find_first_of("@|{}") != std::string::npos)
        return text;
    if (const auto one = contentOf<OneOf>(value); one && one->begin() == one->end())
        return text + '@' + text + '|';
    if (contentOf<SomeOf>(value))
        return '{' + text + '}';
    return text;
}

std::string expectation(const Orla::VSlot& input, VValueBase& declared, const std::string& text)
{
    if (Strings choices = choicesOf(declared); !choices.empty()) {
        const std::string near = nearest(text, choices);
        std::stable_partition(choices.begin(), choices.end(), [&](const std::string& name) { return name == near; });
        return "expected " + alternatives(choices);
    }
    std::string expected = "expected a value of type " + Orla::VTypeLabel::of(input.type());
    const VSlotDescription* const description = input.description();
    if (const std::string limits = description ? description->limitsText() : std::string(); !limits.empty())
        expected += ", " + limits;
    else if (description && !description->parts().unit.empty())
        expected += " in " + description->parts().unit;
    if (const std::string example = Orla::VTypeLabel::exampleOf(input.type()); !example.empty())
        expected += ", for example " + inQuotes(example);
    return expected;
}

bool isPartOfWord(char c) noexcept
{
    return Loam::isLetter(c) || static_cast<unsigned char>(c) >= 0x80;
}

// Returns the texts with letters between numbers, without separators around them: "km" and "m"
// of "50 km:60 m".
Strings wordsBesideNumbers(const std::string& text)
{
    constexpr std::string_view Separators = " \t:;,{}[]";
    Strings words;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        double number = 0;
        if (const char* const rest = Loam::readNumber(at, end, number)) {
            at = rest;
        } else if (isPartOfWord(*at)) {
            const char* const stop = std::find_first_of(at, end, Separators.begin(), Separators.end());
            words.emplace_back(at, stop);
            at = stop;
        } else {
            ++at;
        }
    }
    return words;
}

// Number types ignore the text after a number, so "50 km" would silently be 50 m.
Result<void> checkUnit(const Orla::VSlot& input, VValueBase& value, const std::string& text)
{
    const VSlotDescription* const description = input.description();
    if (!description || description->parts().unit.empty() || numbersOf(value).empty())
        return {};
    const std::string& unit = description->parts().unit;
    const Strings words = wordsBesideNumbers(text);
    const auto other = std::ranges::find_if(words, [&](const std::string& word) { return word != unit; });
    if (other == words.end())
        return {};
    return Failure{"the text " + inQuotes(text) + " is refused, expected numbers in " + unit + "; found "
                   + inQuotes(*other) + ", and units are not converted"};
}

} // namespace

Result<StrongPtr<VValueBase>> readInputText(const Orla::VSlot& input, const StrongPtr<VValueBase>& declared,
                                            const std::string& text)
{
    StrongPtr<VValueBase> value = declared->copy();
    const Result<bool> accepted = Loam::attempt([&] { return value->setValueFromText(completeText(*value, text)); });
    if (!accepted || !*accepted)
        return Failure{"the text " + inQuotes(text) + " is refused, " + expectation(input, *declared, text)
                       + (accepted ? "" : " (" + accepted.reason() + ")")};
    if (const Result<void> fine = checkUnit(input, *value, text); !fine)
        return Failure{fine.reason()};
    if (const Result<void> fine = checkLimits(input, *value); !fine)
        return Failure{fine.reason()};
    return value;
}

} // namespace Tarn
