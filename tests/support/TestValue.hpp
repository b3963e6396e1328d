#pragma once

#include <trellis/VParameter.hpp>
#include <trellis/VValueBase.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/VValueTrait.hpp>

#include <atomic>
#include <cstddef>
#include <string>
#include <typeinfo>

// Values for the tests of the framework, which defines no value types itself.

namespace Orla {

template<class T>
class Typed : public VValueBase, public Ageable {
public:
    virtual T get() const = 0;
    virtual void set(const T& value) = 0;

    const std::type_info& getType() const override { return typeid(T); }
    StrongPtr<VValueBase> copy() const override;
    std::string Text() const override { return VValueTrait<T>::Text(get()); }

    bool getValueFrom(const WeakPtrImpl<VValueBase>& other) override
    {
        const StrongPtr<Typed> typed(other);
        if (typed)
            set(typed->get());
        return typed != nullptr;
    }

    bool setValueFromText(const std::string& text) override
    {
        T value = get();
        const bool ok = VValueTrait<T>::setValueFromText(value, text);
        if (ok)
            set(value);
        return ok;
    }

    bool isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const override
    {
        const StrongPtr<Typed> typed(other);
        return !typed || !(typed->get() == get());
    }

    WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override { return nullptr; }
    Ageable& age() override { return *this; }
    const Ageable& age() const override { return *this; }
    StrongPtr<VValueCreator> getValueCreator() const override { return nullptr; }
    StrongPtr<ChunkBase> getChunk(unsigned long long count) const override
    {
        return Loam::makeStrong<Loam::Chunk<T>>(static_cast<std::size_t>(count), get());
    }
};

/// The number of living `TestValue`s.
inline std::atomic<std::size_t> livingTestValues{0};

template<class T>
class TestValue final : public Typed<T> {
public:
    explicit TestValue(const T& value = {}) : m_value(value) { ++livingTestValues; }
    ~TestValue() override { --livingTestValues; }
    TestValue(const TestValue&) = delete;
    TestValue& operator=(const TestValue&) = delete;

    T get() const override { return m_value; }
    void set(const T& value) override { m_value = value; }

private:
    T m_value;
};

template<class T>
StrongPtr<VValueBase> Typed<T>::copy() const
{
    return Loam::makeStrong<TestValue<T>>(get());
}

/// A value type with the components "low" and "high".
struct Interval {
    double low = 0;
    double high = 1;

    friend bool operator==(const Interval&, const Interval&) = default;
};

/// A value type with the components "inner", an `Interval`, and "weight".
struct Framed {
    Interval inner;
    double weight = 1;

    friend bool operator==(const Framed&, const Framed&) = default;
};

template<>
struct VValueTrait<Interval> {
    static std::string Text(const Interval& value)
    {
        return Loam::numberText(value.low) + ":" + Loam::numberText(value.high);
    }
    static bool setValueFromText(Interval&, const std::string&) { return false; }
};

template<>
struct VValueTrait<Framed> {
    static std::string Text(const Framed& value) { return VValueTrait<Interval>::Text(value.inner); }
    static bool setValueFromText(Framed&, const std::string&) { return false; }
};

/// A member of another value; reads and writes access that value.
template<class Whole, auto Member>
class TestPart final : public Typed<std::remove_reference_t<decltype(std::declval<Whole&>().*Member)>> {
public:
    using Part = std::remove_reference_t<decltype(std::declval<Whole&>().*Member)>;

    explicit TestPart(const StrongPtr<Typed<Whole>>& whole) : m_whole{whole} {}

    Part get() const override { return m_whole->get().*Member; }
    void set(const Part& value) override
    {
        Whole whole = m_whole->get();
        whole.*Member = value;
        m_whole->set(whole);
    }

    static VValueComponents::Component component(const std::string& name)
    {
        return {name, &typeid(Part), [](VValueBase& whole) -> StrongPtr<VValueBase> {
                    return Loam::makeStrong<TestPart>(StrongPtr<Typed<Whole>>(WeakPtrImpl<VValueBase>(&whole)));
                }};
    }

private:
    StrongPtr<Typed<Whole>> m_whole;
};

inline const VValueComponents intervalComponents{
    typeid(Interval),
    {TestPart<Interval, &Interval::low>::component("low"), TestPart<Interval, &Interval::high>::component("high")}};
inline const VValueComponents framedComponents{
    typeid(Framed),
    {TestPart<Framed, &Framed::inner>::component("inner"), TestPart<Framed, &Framed::weight>::component("weight")}};

template<class T>
StrongPtr<TestValue<T>> testValue(const T& value = {})
{
    return Loam::makeStrong<TestValue<T>>(value);
}

template<class T = double>
StrongPtr<VParameter> testParameter(const std::string& name, const T& initial = {})
{
    return Loam::makeStrong<VParameter>(testValue<T>(initial), name, nullptr);
}

/// Returns the content of `value`; throws std::bad_cast if it is null or of another type.
template<class T = double>
T contentOf(const StrongPtr<VValueBase>& value)
{
    return StrongPtr<Typed<T>>(value) ? StrongPtr<Typed<T>>(value)->get() : throw std::bad_cast{};
}

} // namespace Orla
