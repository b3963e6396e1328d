#include <tarn/study/Ranks.hpp>

#include <gtest/gtest.h>

namespace RanksTest {

namespace {

class Second final : public Tarn::Ranks {
public:
    int rank() const noexcept override { return 1; }
    int size() const noexcept override { return 2; }
    std::optional<int> agree() override { return std::nullopt; }
    void serve(const std::function<void()>&, Tarn::CaseExchange&, bool, Orla::VCancellation) override {}
    int work(const std::function<void(Tarn::CaseExchange&)>&, Orla::VCancellation) override { return 0; }
};

} // namespace

TEST(Ranks, areKnownToTheirProcess)
{
    EXPECT_EQ(Tarn::Ranks::current(), nullptr);
    Second second;
    Tarn::Ranks::setCurrent(&second);
    EXPECT_EQ(Tarn::Ranks::current(), &second);
    EXPECT_FALSE(second.isFirst());
    Tarn::Ranks::setCurrent(nullptr);
}

} // namespace RanksTest
