#pragma once

#include "support/ValueLaws.hpp"

#include <fathom/TypedSlot.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VSlotContainer.hpp>

// Laws for slots of every type that inputs may have. Add a type with one line next to
// that of `ValueLaws`, whose samples these laws use:
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(VTempo, SlotLaws, VTempo);

template<class T>
class SlotLaws : public testing::Test {
protected:
    static std::string textOf(const Orla::StrongPtr<Orla::VSlot>& slot)
    {
        return slot->parameter()->DefaultValue()->Text();
    }

    Orla::StrongPtr<Orla::VSlotContainer> m_container{new Orla::VSlotContainer};
};

TYPED_TEST_SUITE_P(SlotLaws);

TYPED_TEST_P(SlotLaws, areCreatedFromTextByTheCreatorOfTheirType)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    const auto creator = Orla::TypedSlotCreator::find(typeid(TypeParam));
    ASSERT_TRUE(creator);
    const Orla::StrongPtr<Orla::VCreationPreferences> preferences(new Orla::VCreationPreferences("a", "b"));
    int number = 0;
    for (const TypeParam& sample : samples<TypeParam>()) {
        const std::string name = "input" + std::to_string(++number);
        SCOPED_TRACE(Trait::Text(sample));
        bool ok = false;
        const std::string text = Trait::Text(sample);
        const auto slot = creator->newSlot(this->m_container.get(), name, text, ok, preferences, 7);
        EXPECT_TRUE(ok);
        ASSERT_TRUE(slot);
        EXPECT_EQ(this->m_container->findSlot(name), slot);
        EXPECT_EQ(slot->type(), typeid(TypeParam));
        EXPECT_EQ(slot->expertLevel(), 7);
        EXPECT_EQ(slot->flags(), 0);
        EXPECT_EQ(slot->parameter()->creationPreferences(), preferences);
        EXPECT_EQ(this->textOf(slot), Trait::Text(sample));
    }
}

TYPED_TEST_P(SlotLaws, readTheValueInTheirPool)
{
    const std::vector<TypeParam> all = samples<TypeParam>();
    const Orla::TypedSlot<TypeParam> slot(this->m_container.get(), "input", all[0], 0);
    const auto pool = Loam::makeStrong<Orla::ValuePool>();
    EXPECT_EQ(slot.value(pool), all[0]);

    const Orla::StrongPtr<Orla::VTypedValueBase<TypeParam>> variable(slot.slot()->getLocalValue(pool));
    ASSERT_TRUE(variable);
    for (const TypeParam& sample : all) {
        EXPECT_TRUE(variable->setValue(sample));
        EXPECT_EQ(slot.value(pool), sample);
    }
}

TYPED_TEST_P(SlotLaws, takeTheirInitialValueFromText)
{
    using Trait = Orla::VValueTrait<TypeParam>;
    const std::vector<TypeParam> all = samples<TypeParam>();
    const Orla::TypedSlot<TypeParam> slot(this->m_container.get(), "input", all[0], 0);
    for (const TypeParam& sample : all) {
        EXPECT_TRUE(slot.slot()->setInitialText(Trait::Text(sample)));
        EXPECT_EQ(this->textOf(slot.slot()), Trait::Text(sample));
    }
}

REGISTER_TYPED_TEST_SUITE_P(SlotLaws, areCreatedFromTextByTheCreatorOfTheirType, readTheValueInTheirPool,
                            takeTheirInitialValueFromText);
