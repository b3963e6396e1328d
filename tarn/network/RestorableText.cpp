#include <tarn/network/RestorableText.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstddef>

namespace Tarn {

namespace {

using Value = Orla::StrongPtr<Orla::VValueBase>;

// Reads the texts in order, the first into a copy of `given` and each later one into a copy
// of the previous result, as in an input. Returns null if a text is refused.
Value readInto(const Value& given, const std::vector<std::string>& texts)
{
    Value value = given->copy();
    for (const std::string& text : texts) {
        value = value->copy();
        if (!value->setValueFromText(text))
            return nullptr;
    }
    return value;
}

// The text shows differences that a comparison ignores, such as the sign of zero; the comparison
// finds those that the text omits.
bool isSame(const Value& read, const Value& value, bool isCompared)
{
    return read && read->Text() == value->Text() && (!isCompared || !read->isDifferentFrom(value));
}

// Returns nothing if no text restores the value.
std::optional<RestorableText> find(const Value& given, const Value& value, const std::vector<std::string>& texts)
{
    RestorableText form;
    const std::string written = value->Text();
    const auto restores = [&](const std::vector<std::string>& candidate, bool isCompared) {
        return isSame(readInto(given, candidate), value, isCompared);
    };
    if (Loam::isUtf8(written)) {
        form.text = written;
        if (restores({written}, true))
            return form;
    }
    for (auto first = texts.end(); first != texts.begin();) {
        --first;
        if (!Loam::isUtf8(*first))
            break;
        // A value with NaN may differ from its own copy, which makes comparing useless. All
        // texts are then read again.
        const bool isCompared = first != texts.begin() || !value->isDifferentFrom(value->copy());
        form.exact.assign(first, texts.end());
        if (!restores(form.exact, isCompared))
            continue;
        if (form.text && form.exact == std::vector{*form.text})
            form.exact.clear();
        return form;
    }
    return std::nullopt;
}

} // namespace

Loam::Result<RestorableText> restorableText(const Value& given, const Value& value,
                                            const std::vector<std::string>& texts)
{
    using Found = std::optional<RestorableText>;
    Loam::Result<Found> found = Loam::attempt([&] { return find(given, value, texts); });
    if (!found)
        return Loam::Failure{found.reason()};
    if (*found)
        return **std::move(found);
    return Loam::Failure{std::ranges::all_of(texts, Loam::isUtf8) ? "no text that a file can hold restores it"
                                                                  : "the text is not valid UTF-8"};
}

bool givesValue(const Value& given, const std::vector<std::string>& texts, const Value& value)
{
    const Loam::Result<bool> same = Loam::attempt([&] { return isSame(readInto(given, texts), value, true); });
    return same && *same;
}

} // namespace Tarn
