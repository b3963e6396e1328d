#pragma once

#include "support/Locales.hpp"

#include <fathom/VValue.hpp>

#include <trellis/VValueCreator.hpp>

#include <loam/Chunk.hpp>
#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

// Laws for every registered value type with a text form. Add a type with these lines
// in its test file:
//
//     template<>
//     std::vector<VTempo> samples<VTempo>() { return {VTempo{}, VTempo{92.5, 3}}; }
//     INSTANTIATE_TYPED_TEST_SUITE_P(VTempo, ValueLaws, VTempo);

/// Returns two or more values of type \p T. No two are equal, and their text forms
/// contain all of their content.
template<class T>
std::vector<T> samples();

template<class T>
class ValueLaws : public testing::Test {
protected:
    using Value = Orla::VValue<T>;

    /// A type other than \p T.
    using Other = std::conditional_t<std::is_same_v<T, double>, std::string, double>;

    static Orla::StrongPtr<Value> make(const T& held) { return Loam::makeStrong<Value>(held); }

    static T contentOf(const Orla::StrongPtr<Orla::VValueBase>& value)
    {
        T content{};
        const Orla::StrongPtr<Orla::VTypedValueBase<T>> typed(value);
        EXPECT_TRUE(typed && typed->getValue(content)) << "not a value of the type";
        return content;
    }

    static Orla::WeakPtrImpl<Orla::VValueBase> expired() { return make(samples<T>().front()); }

    static Loam::Ageable::Age now() { return Loam::Ageable::GlobalTime; }
    static void letTimePass() { Loam::Ageable().touch(); }
};

TYPED_TEST_SUITE_P(ValueLaws);

TYPED_TEST_P(ValueLaws, hasSamplesThatDiffer)
{
    const std::vector<TypeParam> all = samples<TypeParam>();
    ASSERT_GE(all.size(), 2u);
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = 0; j < all.size(); ++j)
            EXPECT_EQ(all[i] == all[j], i == j) << i << " and " << j;
    }
}

TYPED_TEST_P(ValueLaws, readsBackWhatItWrote)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    for (const TypeParam& value : samples<TypeParam>()) {
        const std::string text = Trait::Text(value);
        SCOPED_TRACE(text);
        TypeParam copy{};
        EXPECT_TRUE(Trait::setValueFromText(copy, text));
        EXPECT_EQ(copy, value);
        EXPECT_EQ(Trait::Text(copy), text);
    }
}

TYPED_TEST_P(ValueLaws, hasTheSameTextUnderADecimalComma)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    std::vector<std::string> texts;
    {
        const InClassicLocale classic;
        for (const TypeParam& value : samples<TypeParam>())
            texts.push_back(Trait::Text(value));
    }
    const UnderDecimalComma comma;
    std::size_t i = 0;
    for (const TypeParam& value : samples<TypeParam>()) {
        SCOPED_TRACE(texts[i]);
        EXPECT_EQ(Trait::Text(value), texts[i]);
        TypeParam copy{};
        EXPECT_TRUE(Trait::setValueFromText(copy, texts[i++]));
        EXPECT_EQ(copy, value);
    }
}

TYPED_TEST_P(ValueLaws, readsAnyTextWithoutThrowingAndReadsBackTheResult)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    const std::string odd[] = {
        "",
        " ",
        "x",
        "-",
        ":",
        ",",
        "[",
        "]",
        "@",
        "|",
        "[,]@",
        "5[",
        "5[1",
        "1:",
        ":1",
        "1,2,3",
        "nan",
        "-inf",
        "1e999999",
        "0x",
        "\xff\xfe",
        "\xc3\xa9",
        std::string(1, '\0'),
        std::string("1\0"
                    "2",
                    3),
        std::string(5000, '['),
        std::string(5000, '9'),
        "%s%n",
        "\n\t1",
        "45 or so",
    };
    for (const TypeParam& start : samples<TypeParam>()) {
        for (const std::string& text : odd) {
            SCOPED_TRACE(text);
            TypeParam value(start);
            EXPECT_NO_THROW(Trait::setValueFromText(value, text));
            const std::string written = Trait::Text(value);
            TypeParam again{};
            EXPECT_TRUE(Trait::setValueFromText(again, written));
            EXPECT_EQ(Trait::Text(again), written);
        }
    }
}

TYPED_TEST_P(ValueLaws, hasTheSameTextThroughItsBaseClass)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    for (const TypeParam& sample : samples<TypeParam>()) {
        SCOPED_TRACE(Trait::Text(sample));
        const Orla::StrongPtr<Orla::VValueBase> value = this->make(samples<TypeParam>().front());
        EXPECT_TRUE(value->setValueFromText(Trait::Text(sample)));
        EXPECT_EQ(this->contentOf(value), sample);
        EXPECT_EQ(value->Text(), Trait::Text(sample));
    }
}

TYPED_TEST_P(ValueLaws, isCreatedByItsRegisteredName)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    const std::string name = Loam::Typename(typeid(TypeParam));
    SCOPED_TRACE(name);
    const Orla::StrongPtr<Orla::VValueCreator> creator = Orla::VValueCreator::find(name);
    ASSERT_TRUE(creator) << "no creator is registered under the name";
    EXPECT_EQ(creator->valueType(), typeid(TypeParam));

    for (const TypeParam& sample : samples<TypeParam>()) {
        SCOPED_TRACE(Trait::Text(sample));
        bool ok = false;
        this->letTimePass();
        const Orla::StrongPtr<Orla::VValueBase> value = Orla::VValueCreator::createValue(name, Trait::Text(sample), ok);
        EXPECT_TRUE(ok);
        ASSERT_TRUE(value);
        EXPECT_EQ(value->getType(), typeid(TypeParam));
        EXPECT_EQ(this->contentOf(value), sample);
        EXPECT_EQ(value->age().stamp(), this->now());
        EXPECT_EQ(value->getValueCreator(), creator);
    }
}

TYPED_TEST_P(ValueLaws, makesEqualAndIndependentCopies)
{
    const std::vector<TypeParam> all = samples<TypeParam>();
    const Orla::StrongPtr<Orla::VTypedValueBase<TypeParam>> value = this->make(all[0]);
    const Orla::StrongPtr<Orla::VValueBase> copy = value->copy();
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getType(), typeid(TypeParam));
    EXPECT_EQ(this->contentOf(copy), all[0]);

    EXPECT_TRUE(value->setValue(all[1]));
    EXPECT_EQ(this->contentOf(value), all[1]);
    EXPECT_EQ(this->contentOf(copy), all[0]);
}

TYPED_TEST_P(ValueLaws, isDifferentFromUnequalValues)
{
    for (const TypeParam& a : samples<TypeParam>()) {
        for (const TypeParam& b : samples<TypeParam>())
            EXPECT_EQ(this->make(a)->isDifferentFrom(this->make(b)), !(a == b));
    }
    const auto value = this->make(samples<TypeParam>().front());
    EXPECT_FALSE(value->isDifferentFrom(value));
    EXPECT_TRUE(value->isDifferentFrom(nullptr));
    EXPECT_TRUE(value->isDifferentFrom(this->expired()));
    EXPECT_TRUE(value->isDifferentFrom(Loam::makeStrong<Orla::VValue<typename TestFixture::Other>>()));
}

TYPED_TEST_P(ValueLaws, takesItsContentOnlyFromTheSameType)
{
    const std::vector<TypeParam> all = samples<TypeParam>();
    const auto value = this->make(all[0]);
    EXPECT_TRUE(value->getValueFrom(this->make(all[1])));
    EXPECT_EQ(this->contentOf(value), all[1]);
    EXPECT_TRUE(value->getValueFrom(value));

    EXPECT_FALSE(value->getValueFrom(nullptr));
    EXPECT_FALSE(value->getValueFrom(this->expired()));
    EXPECT_FALSE(value->getValueFrom(Loam::makeStrong<Orla::VValue<typename TestFixture::Other>>()));
    EXPECT_EQ(this->contentOf(value), all[1]);
}

TYPED_TEST_P(ValueLaws, takesTheGlobalAgeWhenCreatedAndKeepsItWhenSet)
{
    const std::vector<TypeParam> all = samples<TypeParam>();
    this->letTimePass();
    const auto value = this->make(all[0]);
    const auto born = value->age().stamp();
    EXPECT_EQ(born, this->now());

    this->letTimePass();
    value->setValue(all[1]);
    value->getValueFrom(this->make(all[0]));
    value->setValueFromText(value->Text());
    EXPECT_EQ(value->age().stamp(), born);
    EXPECT_EQ(value->copy()->age().stamp(), this->now());
}

TYPED_TEST_P(ValueLaws, isExportedAsAnArrayOfCopies)
{
    for (const TypeParam& sample : samples<TypeParam>()) {
        const auto value = this->make(sample);
        const std::size_t before = Loam::ChunkBase::TotalMemsize;
        for (const std::size_t count : {0u, 1u, 3u}) {
            const Orla::StrongPtr<Orla::ChunkBase> chunk = value->getChunk(count);
            const Orla::StrongPtr<Loam::Chunk<TypeParam>> typed(chunk);
            ASSERT_TRUE(typed);
            EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before + count * sizeof(TypeParam));
            EXPECT_EQ(typed->size(), count);
            EXPECT_EQ(static_cast<std::size_t>(std::count(typed->begin(), typed->end(), sample)), count);
        }
        EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before);
    }
}

TYPED_TEST_P(ValueLaws, throwsBadAllocForAnArrayBeyondTheAddressSpace)
{
    const auto value = this->make(samples<TypeParam>().front());
    const std::size_t before = Loam::ChunkBase::TotalMemsize;
    constexpr unsigned long long largest = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(TypeParam);
    for (const unsigned long long count : {largest + 1, 2 * largest + 1, ~0ull}) {
        EXPECT_THROW(value->getChunk(count), std::bad_alloc) << count;
        EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before);
    }
}

TYPED_TEST_P(ValueLaws, hasNoSource)
{
    const Orla::StrongPtr<Orla::VValueBase> value = this->make(samples<TypeParam>().front());
    EXPECT_EQ(value->source().referenceBlock(), nullptr);
    const auto producer = Loam::makeStrong<Orla::VManagedObject>("producer", 0);
    value->setSource(producer);
    EXPECT_EQ(value->source().referenceBlock(), nullptr);
}

REGISTER_TYPED_TEST_SUITE_P(ValueLaws, hasSamplesThatDiffer, readsBackWhatItWrote, hasTheSameTextUnderADecimalComma,
                            readsAnyTextWithoutThrowingAndReadsBackTheResult, hasTheSameTextThroughItsBaseClass,
                            isCreatedByItsRegisteredName, makesEqualAndIndependentCopies, isDifferentFromUnequalValues,
                            takesItsContentOnlyFromTheSameType, takesTheGlobalAgeWhenCreatedAndKeepsItWhenSet,
                            isExportedAsAnArrayOfCopies, throwsBadAllocForAnArrayBeyondTheAddressSpace, hasNoSource);
