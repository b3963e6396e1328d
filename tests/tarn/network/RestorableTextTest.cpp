#include <tarn/network/RestorableText.hpp>

#include <tarn/libraries/Libraries.hpp>

#include <trellis/VValueCreator.hpp>

#include <fathom/VEnum.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VStringList.hpp>

#include "tarn/ValueTexts.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace RestorableTextTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

// Two numbers. A text sets both, `1/2`, or only the first, `1`. The text form cannot be read
// back, and comparisons ignore the second number.
struct Loose {
    int first = 0;
    int second = 0;

    friend bool operator==(const Loose& a, const Loose& b) { return a.first == b.first; }
};

} // namespace RestorableTextTest

template<>
struct Orla::VValueTrait<RestorableTextTest::Loose> {
    using Loose = RestorableTextTest::Loose;

    static std::string Text(const Loose& loose)
    {
        return "<" + std::to_string(loose.first) + ">" + std::to_string(loose.second);
    }

    static bool setValueFromText(Loose& loose, const std::string& text)
    {
        if (!VValueTrait<int>::setValueFromText(loose.first, text))
            return false;
        const auto slash = text.find('/');
        return slash == std::string::npos || VValueTrait<int>::setValueFromText(loose.second, text.substr(slash + 1));
    }
};

namespace RestorableTextTest {

namespace {

using Value = Orla::StrongPtr<Orla::VValueBase>;
using Texts = std::vector<std::string>;

class RestorableTextTest : public testing::Test {
protected:
    RestorableTextTest() : m_libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}}
    {
        EXPECT_TRUE(m_libraries.load("standard"));
    }
    ~RestorableTextTest() override { EXPECT_TRUE(m_libraries.unload()); }

    Libraries& libraries() noexcept { return m_libraries; }

    static Value fresh(const std::string& type)
    {
        bool ok = false;
        return Orla::VValueCreator::createValue(type, "", ok);
    }

private:
    Libraries m_libraries;
};

/// Returns a copy of \p given that has read \p texts, or null if a text is refused.
Value readInto(const Value& given, const Texts& texts)
{
    const Value value = given->copy();
    for (const std::string& text : texts) {
        if (!value->setValueFromText(text))
            return nullptr;
    }
    return value;
}

// A value that contains NaN may differ from itself.
bool areSame(const Value& a, const Value& b)
{
    return a->Text() == b->Text() && (!a->isDifferentFrom(b) || a->isDifferentFrom(a->copy()));
}

std::optional<RestorableText> formOf(const Value& given, const Texts& texts)
{
    const Value value = readInto(given, texts);
    if (!value)
        return std::nullopt;
    const Loam::Result<RestorableText> form = restorableText(given, value, texts);
    return form ? std::optional{*form} : std::nullopt;
}

/// Returns the texts that are read from a file: the exact texts if it has any, else its text.
Texts savedTexts(const RestorableText& form)
{
    return form.exact.empty() ? Texts{form.text.value()} : form.exact;
}

} // namespace

// Holds for every type, including types added later: the saved form restores the value that
// the texts made, and that value is saved in the same form.
TEST_F(RestorableTextTest, restoresEveryValueOfEveryType)
{
    std::size_t typesWithText = 0;
    for (const std::string& type : inputTypes()) {
        SCOPED_TRACE(type);
        Texts accepted;
        for (const std::string& text : valueTexts()) {
            if (readInto(fresh(type), {text}))
                accepted.push_back(text);
        }
        typesWithText += accepted.empty() ? 0u : 1u;
        std::vector<Texts> histories;
        for (const std::string& text : accepted) {
            histories.push_back({text});
            histories.push_back({accepted.back(), text, accepted.front()});
            histories.push_back({text, accepted[accepted.size() / 2]});
        }
        for (const Texts& texts : histories) {
            SCOPED_TRACE(testing::PrintToString(texts));
            const Value given = fresh(type);
            const Value value = readInto(given, texts);
            ASSERT_TRUE(value);
            const Loam::Result<RestorableText> form = restorableText(given, value, texts);
            ASSERT_TRUE(form);
            const Value again = readInto(given, savedTexts(*form));
            ASSERT_TRUE(again);
            EXPECT_TRUE(areSame(again, value)) << again->Text() << " instead of " << value->Text();
            const Loam::Result<RestorableText> second = restorableText(given, again, savedTexts(*form));
            ASSERT_TRUE(second);
            EXPECT_EQ(second->text, form->text);
            EXPECT_EQ(second->exact, form->exact);
            EXPECT_TRUE(form->text);
        }
    }
    EXPECT_GE(typesWithText, 25u);
}

TEST_F(RestorableTextTest, hasExactTextsOnlyIfTheTextFormRestoresLess)
{
    const struct {
        const char* type;
        Texts texts;
        const char* text;
        Texts exact;
    } cases[] = {
        {"double", {"1.50"}, "1.5", {}},
        {"double", {"-0.0"}, "-0", {}},
        {"double", {"NaN"}, "nan", {}},
        {"double", {"-nan"}, "-nan", {}},
        {"float", {"0.1"}, "0.1", {}},
        {"unsigned long long", {"18446744073709551615"}, "18446744073709551615", {}},
        {"string", {"a\nb"}, "a\nb", {}},
        {"VTime", {"5[0,10]"}, "5[0,10]@10", {}},
        {"VTime", {"NaN[0,1]"}, "nan[0,1]@1", {"NaN[0,1]"}},
        {"VTime", {"nan[0,1]@1"}, "nan[0,1]@1", {}},
        {"Range", {"1,2"}, "1:2", {}},
        {"Range", {"1:2", "7:8"}, "7:8", {}},
        {"VCamera", {"{-7.5e6,-0,0.1}{0,0,0}{0,0,1}40"}, "{-7500000,-0,0.1}{0,0,0}{0,0,1}40", {}},
        {"BoundingBall", {"{1,2,3}@4"}, "{1,2,3}@4", {}},
        {"Bounding Box", {"[{1,2,3};{4,5,6}]"}, "[{1,2,3};{4,5,6}]", {}},
        {"double[]", {"1,,-0"}, "1,0,-0,", {}},
        {"FlagList", {"b -a"}, " -a +b", {}},
        // The text form has six digits.
        {"rgba_float_t", {"(0.5,0.25,-0,1)"}, "(0.5,0.25,-0,1)", {}},
        {"rgba_float_t", {"(0.123456789,0,0,1)"}, "(0.123457,0,0,1)", {"(0.123456789,0,0,1)"}},
        // The text form has only the first and the last number.
        {"MultiRange", {"[1;2]"}, "[1.000000;2.000000]", {}},
        {"MultiRange", {"[1;2;3;4]"}, "[1.000000;4.000000]", {"[1;2;3;4]"}},
        {"MultiRange", {"[1;nan;3]"}, "[1.000000;3.000000]", {"[1;nan;3]"}},
        // All three numbers are read into the first element.
        {"FixedArray<int,3>", {"[1,2,3]"}, "[3,0,0]", {"[1,2,3]"}},
        // The second text leaves the numbers unchanged that it cannot read.
        {"point", {"{1,2,3}", "{9,x,y}"}, "{9,2,3}", {}},
        {"VObjectStatus", {"<B>a</B>"}, "<B>a</B>", {}},
        {"ImageTile", {"anything"}, "A Frame buffer.", {}},
    };
    for (const auto& [type, texts, text, exact] : cases) {
        SCOPED_TRACE(type + (": " + testing::PrintToString(texts)));
        const std::optional<RestorableText> form = formOf(fresh(type), texts);
        ASSERT_TRUE(form);
        EXPECT_EQ(form->text, text);
        EXPECT_EQ(form->exact, exact);
    }
}

TEST_F(RestorableTextTest, keepsEveryTextThatContributesToTheValue)
{
    const Value loose = Loam::makeStrong<Orla::VValue<Loose>>();
    const struct {
        Texts texts;
        Texts exact;
    } cases[] = {
        {{"1/2"}, {"1/2"}},
        {{"1"}, {"1"}},
        {{"1/2", "3"}, {"1/2", "3"}},
        {{"1/2", "3", "4"}, {"1/2", "3", "4"}},
        {{"1/2", "3/4", "5"}, {"3/4", "5"}},
        {{"1/2", "3/4"}, {"3/4"}},
    };
    for (const auto& [texts, exact] : cases) {
        SCOPED_TRACE(testing::PrintToString(texts));
        const std::optional<RestorableText> form = formOf(loose, texts);
        ASSERT_TRUE(form);
        EXPECT_EQ(form->exact, exact);
        EXPECT_EQ(readInto(loose, savedTexts(*form))->Text(), readInto(loose, texts)->Text());
    }

    bool ok = false;
    const Value given = Orla::VValueCreator::createValue("MultiRange", "", ok);
    const std::optional<RestorableText> last = formOf(given, {"[1;2;3]", "[4;5;6]"});
    ASSERT_TRUE(last);
    EXPECT_THAT(last->exact, ElementsAre("[4;5;6]"));
    // NaN differs from itself, so only all texts together are sure to restore the value.
    const std::optional<RestorableText> all = formOf(given, {"[1;2;3]", "[4;nan;6]"});
    ASSERT_TRUE(all);
    EXPECT_THAT(all->exact, ElementsAre("[1;2;3]", "[4;nan;6]"));
}

TEST_F(RestorableTextTest, restoresChoicesWithAnyNames)
{
    using One = Orla::StrongPtr<Orla::StringSelection, Orla::StringList>;
    using Many = Orla::StrongPtr<Orla::MultipleStringSelection, Orla::StringList>;
    const auto names = Loam::makeStrong<Orla::StringList>();
    for (const char* name : {"first", "a|b", "@@", "{x}", "", "two words \xC3\xA4\"\n"})
        names->append(name);
    const Value one = Loam::makeStrong<Orla::VValue<One>>(Loam::makeStrong<Orla::StringSelection>("no name", names));
    const struct {
        const char* text;
        Texts exact;
    } cases[] = {
        {"first", {}},
        {"a|b", {}},
        {"{x}@anything", {}},
        {"two words \xC3\xA4\"\n", {}},
        // A text form that begins with "@" is read as one name.
        {"@@", {"@@"}},
        {"", {""}},
    };
    for (const auto& [text, exact] : cases) {
        SCOPED_TRACE(text);
        const std::optional<RestorableText> form = formOf(one, {text});
        ASSERT_TRUE(form);
        EXPECT_EQ(form->exact, exact);
        EXPECT_TRUE(areSame(readInto(one, savedTexts(*form)), readInto(one, {text})));
    }

    const char* const choices[] = {"linear", "cubic", "a{b}", "\xC3\xA4\n"};
    const Value choice = Loam::makeStrong<Orla::VValue<Orla::Enum>>(Orla::Enum{choices, 4});
    const std::optional<RestorableText> cubic = formOf(choice, {"cubic"});
    ASSERT_TRUE(cubic);
    EXPECT_EQ(cubic->text, "cubic{linear}{cubic}{a{b}}{\xC3\xA4\n}");
    EXPECT_THAT(cubic->exact, IsEmpty());

    // The program sets the choices. Names with braces would be split when read back.
    const Value many =
        Loam::makeStrong<Orla::VValue<Many>>(Loam::makeStrong<Orla::MultipleStringSelection>("", "p;pi{e}ces", ';'));
    const std::optional<RestorableText> pieces = formOf(many, {"{p}"});
    ASSERT_TRUE(pieces);
    EXPECT_EQ(pieces->text, "{p}@{p}{pi{e}ces}");
    EXPECT_THAT(pieces->exact, ElementsAre("{p}"));
}

TEST_F(RestorableTextTest, doesNotExistForValuesThatAFileCannotHold)
{
    EXPECT_FALSE(formOf(fresh("string"), {"\xFF"}));
    EXPECT_FALSE(formOf(fresh("char"), {"\xE4"}));
    EXPECT_TRUE(formOf(fresh("string"), {"\xFF", "fine"})) << "only the final value counts";
    ASSERT_TRUE(libraries().load("testobjects"));
    EXPECT_FALSE(formOf(fresh("Ticket"), {"please"}));
}

} // namespace RestorableTextTest
