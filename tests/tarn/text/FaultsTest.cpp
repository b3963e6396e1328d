#include <tarn/text/Faults.hpp>

#include <tarn/text/SimilarMessages.hpp>

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <vector>

namespace FaultsTest {

using namespace Tarn;
using testing::ElementsAre;

TEST(Faults, areListedByPlaceWithCommandLineFaultsLast)
{
    Faults faults{"net.toml"};
    faults.add(FaultKind::Input, "--set=a.b=c: wrong");
    faults.add(FaultKind::Input, {10, 2}, "late");
    faults.add(FaultKind::Input, {2, 10}, "early, first");
    faults.add(FaultKind::Input, {2, 10}, "early, second");
    faults.add(FaultKind::Input, {2, 9}, "earliest");
    EXPECT_EQ(faults.size(), 5u);
    EXPECT_THAT(faults.lines(),
                ElementsAre("net.toml:2:9: earliest", "net.toml:2:10: early, first", "net.toml:2:10: early, second",
                            "net.toml:10:2: late", "--set=a.b=c: wrong"));
}

TEST(Faults, areCountedIfManyAreSimilar)
{
    Faults faults{"net.toml"};
    for (std::uint32_t i = 1; i <= 3000; ++i)
        faults.add(FaultKind::Input, {i, 1}, "object \"o" + std::to_string(i) + "\": wrong");
    faults.add(FaultKind::Input, {5000, 1}, "another fault");
    const std::vector<std::string> lines = faults.lines();
    ASSERT_EQ(lines.size(), SimilarMessages::MostShown + 2);
    EXPECT_EQ(lines[19], "net.toml:20:1: object \"o20\": wrong");
    EXPECT_EQ(lines[20], "net.toml:5000:1: another fault");
    EXPECT_EQ(lines[21], "net.toml: 2980 more like: object \"o1\": wrong");
    EXPECT_EQ(faults.size(), 3001u);
}

TEST(Faults, stayOnOneLineForAnyFileName)
{
    Faults faults{"two\nlines"};
    faults.add(FaultKind::Input, {1, 1}, "wrong");
    EXPECT_THAT(faults.lines(), ElementsAre("two\\nlines:1:1: wrong"));
}

} // namespace FaultsTest
