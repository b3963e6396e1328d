#include <fathom/VScalarFunctor.hpp> // first: the header must be self-contained

#include <fathom/VValueType.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace VScalarFunctorTest {

using namespace Orla;

using Functor = VScalarFunctor::Functor;

static_assert(std::is_abstract_v<Functor>);
static_assert(std::has_virtual_destructor_v<Functor>);
static_assert(!std::is_convertible_v<StrongPtr<Functor>, VScalarFunctor>);

namespace {

const VValueType<VScalarFunctor> functorType;

// A function as an object library defines it, for code that includes its header.
class Scaling final : public Functor {
public:
    explicit Scaling(double factor) : m_factor{factor} { ++living; }
    ~Scaling() override { --living; }

    double operator()(double x) const { return m_factor * x; }

    static inline int living = 0;

private:
    double m_factor;
};

} // namespace

TEST(VScalarFunctor, carriesAFunctionThatCanBeCastToItsClass)
{
    const VScalarFunctor functor{StrongPtr<Functor>(new Scaling(2.5))};
    const StrongPtr<Scaling> scaling(functor.functor);
    ASSERT_TRUE(scaling);
    EXPECT_EQ((*scaling)(4), 10.0);
    EXPECT_FALSE(VScalarFunctor().functor);
}

TEST(VScalarFunctor, destroysItsFunctionWithItsLastOwner)
{
    {
        const VScalarFunctor first{StrongPtr<Functor>(new Scaling(1))};
        VScalarFunctor second;
        {
            const VScalarFunctor third(first);
            second = third;
        }
        EXPECT_EQ(Scaling::living, 1);
    }
    EXPECT_EQ(Scaling::living, 0);
}

TEST(VScalarFunctor, equalsFunctorsThatShareItsFunction)
{
    const VScalarFunctor one{StrongPtr<Functor>(new Scaling(1))};
    const VScalarFunctor sameFactor{StrongPtr<Functor>(new Scaling(1))};
    EXPECT_EQ(one, VScalarFunctor(one));
    EXPECT_NE(one, sameFactor);
    EXPECT_NE(one, VScalarFunctor());
    EXPECT_EQ(VScalarFunctor(), VScalarFunctor());
}

TEST(VScalarFunctor, hasNoTextForm)
{
    using Trait = VValueTrait<VScalarFunctor>;
    VScalarFunctor functor{StrongPtr<Functor>(new Scaling(1))};
    const StrongPtr<Functor> before = functor.functor;
    EXPECT_EQ(Trait::Text(functor), "");
    EXPECT_FALSE(Trait::setValueFromText(functor, ""));
    EXPECT_FALSE(Trait::setValueFromText(functor, "Scaling"));
    EXPECT_EQ(functor.functor, before);
}

TEST(VScalarFunctor, isMadeAValueAndInputTypeByASingleDeclaration)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("VScalarFunctor", "Scaling", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    const VScalarFunctor functor{StrongPtr<Functor>(new Scaling(1))};
    VValue<VScalarFunctor> other(functor);
    EXPECT_TRUE(value->isDifferentFrom(&other));
    EXPECT_TRUE(value->getValueFrom(&other));
    EXPECT_FALSE(value->isDifferentFrom(&other));
    EXPECT_TRUE(TypedSlotCreator::find(typeid(VScalarFunctor)));
}

} // namespace VScalarFunctorTest
