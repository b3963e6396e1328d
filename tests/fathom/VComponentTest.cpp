#include <fathom/VComponent.hpp>

#include <fathom/Double.hpp>
#include <fathom/VValue.hpp>

#include <gmock/gmock.h>

#include <string>

namespace VComponentTest {

namespace {

struct Tempo {
    double beats = 0;
    int perBar = 4;

    double bars() const noexcept { return beats / perBar; }

    friend bool operator==(const Tempo&, const Tempo&) = default;
};

double seconds(const Tempo& tempo)
{
    return 60 / tempo.beats;
}

} // namespace

} // namespace VComponentTest

using VComponentTest::Tempo;

template<>
struct Orla::VValueTrait<Tempo> {
    static std::string Text(const Tempo& tempo) { return VValueTrait<double>::Text(tempo.beats); }
    static bool setValueFromText(Tempo& tempo, const std::string& text)
    {
        return VValueTrait<double>::setValueFromText(tempo.beats, text);
    }
};

namespace VComponentTest {

namespace {

const Orla::VValueComponents parts{typeid(Tempo),
                                   {Orla::component<&Tempo::beats>("beats"), Orla::component<&Tempo::bars>("bars"),
                                    Orla::component<seconds>("seconds")}};

} // namespace

TEST(Component, isADataMemberAMemberFunctionOrAFunction)
{
    const auto value = Loam::makeStrong<Orla::VValue<Tempo>>(Tempo{120, 3});
    EXPECT_EQ(value->component("beats")->Text(), "120");
    EXPECT_EQ(value->component("bars")->Text(), "40");
    EXPECT_EQ(value->component("seconds")->Text(), "0.5");
}

TEST(Component, isWrittenOnlyIfItIsADataMember)
{
    const auto value = Loam::makeStrong<Orla::VValue<Tempo>>(Tempo{120, 3});
    EXPECT_TRUE(value->component("beats")->setValueFromText("90"));
    EXPECT_FALSE(value->component("bars")->setValueFromText("90"));
    EXPECT_EQ(value->Text(), "90");
}

TEST(Component, hasTheTypeThatTheFunctionReturns)
{
    EXPECT_EQ(*Orla::VValueComponents::typeOf(typeid(Tempo), "bars"), typeid(double));
}

} // namespace VComponentTest
