#include <tarn/run/EmergencyMessage.hpp>

#include <tarn/text/Activity.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <string>

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

std::string culprit()
{
    EmergencyMessage message;
    message.appendCulprit();
    return written(message);
}

class Asking final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override
    {
        answer = culprit();
        return true;
    }

    std::string answer;
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
    EXPECT_EQ(written(message), "\"a?[1m????\xC3\xA4\"\n");
}

TEST(EmergencyMessage, isCutOffAtItsLimit)
{
    EmergencyMessage message;
    message << std::string(5000, 'x');
    message.appendName("dropped");
    EXPECT_EQ(written(message), std::string(1000, 'x') + '\n');
}

TEST(EmergencyMessage, namesTheRunningObjectBeforeAnActivity)
{
    const auto object = Loam::makeStrong<Asking>("asking", 0, nullptr);
    object->enableRequestProcessing();
    const auto pool = Loam::makeStrong<Orla::ValuePool>();
    const Activity activity{"loading", "x.so"};
    Orla::VScheduler::schedule(object, 0, pool);
    Orla::VScheduler::run(pool);
    EXPECT_EQ(object->answer, "object \"asking\"\n");
    EXPECT_EQ(culprit(), "loading \"x.so\"\n");
}

TEST(EmergencyMessage, namesNothingIfOnlyTheProgramIsRunning)
{
    EmergencyMessage message;
    EXPECT_FALSE(message.appendCulprit());
    EXPECT_EQ(written(message), "\n");
}

} // namespace EmergencyMessageTest
