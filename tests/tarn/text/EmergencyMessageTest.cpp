#include <tarn/text/EmergencyMessage.hpp>

#include <tarn/text/Activity.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace EmergencyMessageTest {

using Tarn::Activity;
using Tarn::EmergencyMessage;

namespace {

std::string written(EmergencyMessage& message)
{
    testing::internal::CaptureStderr();
    message.write();
    return testing::internal::GetCapturedStderr();
}

std::string context()
{
    EmergencyMessage message;
    message.appendContext();
    return written(message);
}

std::string running()
{
    EmergencyMessage message;
    message.appendRunning();
    return written(message);
}

class Asking final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override
    {
        here = context();
        std::thread([this] { elsewhere = context(); }).join();
        all = running();
        return true;
    }

    std::string here;
    std::string elsewhere;
    std::string all;
};

} // namespace

TEST(EmergencyMessage, isOneLine)
{
    EmergencyMessage message;
    message << "tarn: "
            << "too late";
    EXPECT_EQ(written(message), "tarn: too late\n");
}

TEST(EmergencyMessage, hidesControlCharactersInNames)
{
    EmergencyMessage message;
    message.appendName("a\x1B[1m\n\x7F\xC2\x9B\xC3\xA4");
    EXPECT_EQ(written(message), "\"a?[1m???\xC3\xA4\"\n");
}

TEST(EmergencyMessage, hidesDirectionMarksAndInvalidBytesInForeignTexts)
{
    EmergencyMessage message;
    message.appendForeign("left\xE2\x80\xAEright\x9B[1m\xF0\x9F\x8C\x8D");
    EXPECT_EQ(written(message), "left?right?[1m\xF0\x9F\x8C\x8D\n");
}

TEST(EmergencyMessage, keepsCharactersWholeAtItsLimit)
{
    EmergencyMessage message;
    message << std::string(999, 'x');
    message.appendForeign("\xC3\xA4");
    EXPECT_EQ(written(message), std::string(999, 'x') + '\n');
}

TEST(EmergencyMessage, isCutOffAtItsLimit)
{
    EmergencyMessage message;
    message << std::string(5000, 'x');
    message.appendName("dropped");
    EXPECT_EQ(written(message), std::string(1000, 'x') + '\n');
}

TEST(EmergencyMessage, namesTheObjectOfTheThreadBeforeAnActivityAndThatBeforeOtherObjects)
{
    const auto object = Loam::makeStrong<Asking>("asking", 0, nullptr);
    object->enableRequestProcessing();
    const auto pool = Loam::makeStrong<Orla::ValuePool>();
    {
        const Activity activity{"loading", "x.so"};
        Orla::VScheduler::schedule(object, 0, pool);
        Orla::VScheduler::run(pool);
        EXPECT_EQ(object->here, " in object \"asking\"\n");
        EXPECT_EQ(object->elsewhere, " while loading \"x.so\"\n");
        EXPECT_EQ(object->all, "object \"asking\"\n");
        EXPECT_EQ(context(), " while loading \"x.so\"\n");
        EXPECT_EQ(running(), "loading \"x.so\"\n");
    }
    Orla::VScheduler::schedule(object, 0, pool);
    Orla::VScheduler::run(pool);
    EXPECT_EQ(object->elsewhere, " while object \"asking\" ran\n");
}

TEST(EmergencyMessage, namesNothingIfOnlyTheProgramIsRunning)
{
    EmergencyMessage message;
    EXPECT_FALSE(message.appendContext());
    EXPECT_FALSE(message.appendRunning());
    EXPECT_EQ(written(message), "\n");
}

} // namespace EmergencyMessageTest
