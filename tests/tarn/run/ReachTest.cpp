#include <tarn/run/Reach.hpp>

#include "support/TestNetwork.hpp"

#include <gmock/gmock.h>

namespace ReachTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> namesFrom(const std::vector<StrongPtr<VObject>>& objects)
{
    std::vector<std::string> names;
    for (const StrongPtr<VObject>& object : Tarn::reachedFrom(objects))
        names.push_back(object->Name());
    return names;
}

} // namespace

TEST(Reach, containsAllReadersOnce)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b", {"x", "y"});
    const auto c = makeNode("c", {"x", "y"});
    const auto d = makeNode("d");
    connect(a, b, "x");
    connect(a, c, "x");
    connect(b, c, "y");
    EXPECT_THAT(namesFrom({a, a}), ElementsAre("a", "b", "c"));
    EXPECT_THAT(namesFrom({c, d}), ElementsAre("c", "d"));
    EXPECT_THAT(namesFrom({nullptr}), IsEmpty());
}

TEST(Reach, endsInLoops)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    connect(a, b);
    connect(b, a);
    EXPECT_THAT(namesFrom({b}), ElementsAre("b", "a"));
}

} // namespace ReachTest
