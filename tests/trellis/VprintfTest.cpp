#include <trellis/Vprintf.hpp>

#include <gtest/gtest.h>

namespace VprintfTest {

using namespace Orla;

namespace {

std::string printed(int level)
{
    testing::internal::CaptureStdout();
    Vprintf(level, "%s %d\n", "level", level);
    return testing::internal::GetCapturedStdout();
}

class Verbosity : public testing::Test {
protected:
    ~Verbosity() override { setVerbosity(m_before); }

private:
    int m_before = verbosity();
};

} // namespace

TEST_F(Verbosity, isZeroByDefault)
{
    EXPECT_EQ(verbosity(), 0);
}

TEST_F(Verbosity, decidesWhatIsPrinted)
{
    const struct {
        int verbosity;
        int level;
        bool isPrinted;
    } cases[] = {{0, 0, true}, {0, 1, false}, {0, -1, true}, {50, 50, true}, {50, 51, false}, {-1, 0, false}};
    for (const auto& [shown, level, expected] : cases) {
        SCOPED_TRACE(testing::Message() << shown << ' ' << level);
        setVerbosity(shown);
        EXPECT_EQ(verbosity(), shown);
        EXPECT_EQ(isPrinted(level), expected);
        EXPECT_EQ(printed(level), expected ? "level " + std::to_string(level) + "\n" : "");
    }
}

} // namespace VprintfTest
