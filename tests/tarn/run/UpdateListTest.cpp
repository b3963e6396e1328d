#include <tarn/run/UpdateList.hpp>

#include "support/TestNetwork.hpp"

namespace UpdateListTest {

using namespace Orla;

TEST(UpdateList, containsTheObjectsThatRanWhileItExisted)
{
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto before = makeNode("before");
    const auto during = makeNode("during");
    const auto never = makeNode("never");
    runAll({before}, pool);
    const Tarn::UpdateList updates{pool};
    runAll({during}, pool);
    EXPECT_FALSE(updates.contains(*before));
    EXPECT_TRUE(updates.contains(*during));
    EXPECT_FALSE(updates.contains(*never));
}

TEST(UpdateList, observesNothingAfterItsEnd)
{
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto node = makeNode("node");
    {
        const Tarn::UpdateList updates{pool};
    }
    EXPECT_EQ(runAll({node}, pool).updates, 1u);
}

} // namespace UpdateListTest
