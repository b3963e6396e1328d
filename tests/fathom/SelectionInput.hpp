#pragma once

#include "Recorders.hpp"

#include <fathom/TypedSlot.hpp>

#include <trellis/ValuePool.hpp>

#include <gtest/gtest.h>

#include <string>

/// An object of class \p Object with a selection input `field`, and two pools to evaluate
/// it in.
template<class Object>
class SelectionInput : public testing::Test {
protected:
    const auto& slot() const { return m_object->field; }

    Orla::StrongPtr<Orla::VValueBase> valueIn(const Orla::StrongPtr<Orla::ValuePool>& pool) const
    {
        return slot().slot()->getLocalValue(pool);
    }

    std::string initialText() const { return slot().parameter()->DefaultValue()->Text(); }

    const Orla::StrongPtr<Object> m_object{new Object("object")};
    const Orla::StrongPtr<Orla::ValuePool> m_first{new Orla::ValuePool("first")};
    const Orla::StrongPtr<Orla::ValuePool> m_second{new Orla::ValuePool("second")};
    const Changes m_changes{slot().parameter()};
};
