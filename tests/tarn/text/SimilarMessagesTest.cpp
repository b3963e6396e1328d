#include <tarn/text/SimilarMessages.hpp>

#include <gmock/gmock.h>

#include <string>

namespace SimilarMessagesTest {

using Tarn::SimilarMessages;
using testing::ElementsAre;

TEST(SimilarMessages, areShownUpToALimitAndThenCounted)
{
    SimilarMessages messages;
    for (std::size_t i = 0; i < SimilarMessages::MostShown; ++i) {
        EXPECT_TRUE(messages.add("object \"" + std::string(i, 'x') + "\": wrong"));
        EXPECT_TRUE(messages.summary().empty());
    }
    EXPECT_FALSE(messages.add("object \"other\": wrong"));
    EXPECT_FALSE(messages.add("object \"\": wrong"));
    EXPECT_THAT(messages.summary(), ElementsAre("2 more like: object \"\": wrong"));
}

TEST(SimilarMessages, differInDigitsAndQuotesAndAtTheEndOnly)
{
    const std::string first = "a \"b\" needs 5 of the same kind, because of this";
    const struct {
        const char* message;
        bool isSimilar;
    } cases[] = {
        {"a \"c\" needs 5 of the same kind, because of this", true},
        {"a \"say \\\"b\\\"\" needs 17 of the same kind, because of this", true},
        {"a \"b\" needs 5 of the same kind, because of something else", true},
        {"a \"b\" takes 5 of the same kind, because of this", false},
        {"a b needs 5 of the same kind, because of this", false},
    };
    for (const auto& [message, isSimilar] : cases) {
        SCOPED_TRACE(message);
        SimilarMessages messages;
        for (std::size_t i = 0; i < SimilarMessages::MostShown; ++i)
            messages.add(first);
        EXPECT_EQ(messages.add(message), !isSimilar);
    }
}

TEST(SimilarMessages, takeBoundedMemoryAndAreNeverLost)
{
    SimilarMessages messages;
    for (char32_t i = 0; i < 20000; ++i)
        EXPECT_TRUE(messages.add({static_cast<char>('a' + i % 26), static_cast<char>('a' + i / 26 % 26),
                                  static_cast<char>('a' + i / 676 % 26), static_cast<char>('a' + i / 17576)}));
}

} // namespace SimilarMessagesTest
