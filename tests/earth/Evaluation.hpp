#pragma once

#include <fathom/VValue.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VSlotContainer.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

/// Collects the warnings of the process during its lifetime.
class Warnings {
public:
    Warnings() { Orla::VActionNotifier::add(m_notifier); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    ~Warnings() { Orla::VActionNotifier::remove(m_notifier); }

    const std::vector<std::string>& all() const noexcept { return m_notifier->messages; }

private:
    struct Notifier : Orla::VActionNotifier {
        bool warned(const std::string& message) override
        {
            messages.push_back(message);
            return true;
        }

        std::vector<std::string> messages;
    };

    Orla::StrongPtr<Notifier> m_notifier{new Notifier};
};

/// Sets the input's own variable in \p pool to \p value.
template<class T>
void write(const Orla::VObject& object, const std::string& input, const Orla::StrongPtr<Orla::ValuePool>& pool,
           const T& value)
{
    const Orla::StrongPtr<Orla::VSlot> slot = object.findSlot(input);
    ASSERT_TRUE(slot) << input;
    const Orla::StrongPtr<Orla::VValueBase> variable = slot->getLocalValue(pool);
    Orla::VTypedValueBase<T>* const typed = Orla::VTypedValueBase<T>::cast(variable.get());
    ASSERT_TRUE(typed) << input << " has another type";
    typed->setValue(value);
    slot->parameter()->notifyValueChange(variable, pool);
}

/// As above, from a text, as a user would enter it.
inline void writeText(const Orla::VObject& object, const std::string& input,
                      const Orla::StrongPtr<Orla::ValuePool>& pool, const std::string& text)
{
    const Orla::StrongPtr<Orla::VSlot> slot = object.findSlot(input);
    ASSERT_TRUE(slot) << input;
    const Orla::StrongPtr<Orla::VValueBase> variable = slot->getLocalValue(pool);
    ASSERT_TRUE(variable->setValueFromText(text)) << input << ": " << text;
    slot->parameter()->notifyValueChange(variable, pool);
}

inline std::string readText(const Orla::VObject& object, const std::string& output,
                            const Orla::StrongPtr<Orla::ValuePool>& pool)
{
    const Orla::StrongPtr<Orla::VSlot> slot = object.findOutput(output);
    const Orla::StrongPtr<Orla::VValueBase> variable = slot ? slot->getValueBase(pool) : nullptr;
    return variable ? variable->Text() : "no output " + output;
}

inline void connect(Orla::VObject& reader, const std::string& input, const Orla::VObject& source,
                    const std::string& output)
{
    EXPECT_TRUE(reader.attachOutput(source.findOutput(output), reader.findSlot(input), ""));
}

/// One object, which keeps its own time, in a pool.
class Evaluation {
public:
    explicit Evaluation(const std::string& objectType)
        : object{Orla::VObject::createObject(
            objectType, objectType,
            Orla::StrongPtr<Orla::VCreationPreferences>(new Orla::VCreationPreferences("local", "")))}
    {
        if (!object)
            throw std::runtime_error{"no object type " + objectType};
        Orla::VScheduler::schedule(object, 0, pool);
    }

    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;
    ~Evaluation() { Orla::VManagedObject::remove(object); }

    template<class T>
    void set(const std::string& input, const T& value)
    {
        ::write(*object, input, pool, value);
    }

    void setText(const std::string& input, const std::string& text) { writeText(*object, input, pool, text); }

    Orla::VScheduler::Summary run() { return Orla::VScheduler::run(pool); }

    std::string text(const std::string& output) const { return readText(*object, output, pool); }

    template<class T>
    T value(const std::string& output) const
    {
        T value{};
        const Orla::StrongPtr<Orla::VSlot> slot = object->findOutput(output);
        const Orla::StrongPtr<Orla::VValueBase> variable = slot ? slot->getValueBase(pool) : nullptr;
        const auto* const typed = Orla::VTypedValueBase<T>::cast(variable.get());
        EXPECT_TRUE(typed && typed->getValue(value)) << output;
        return value;
    }

    const Orla::StrongPtr<Orla::VObject> object;
    Orla::StrongPtr<Orla::ValuePool> pool{new Orla::ValuePool("test")};
};
