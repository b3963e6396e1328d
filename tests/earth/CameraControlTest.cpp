#include "earth/Evaluation.hpp"

#include <fathom/VCamera.hpp>
#include <fathom/VInteractionEvent.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace CameraControlTest {

using Event = Orla::VInteractionEvent;
using Orla::VCamera;

namespace {

class CameraControls : public testing::Test {
protected:
    CameraControls()
    {
        control.set("camera", start);
        control.run();
    }

    void send(Event::Kind kind, int x = 0, int y = 0)
    {
        Event event{kind, grabber};
        event.x = x;
        event.y = y;
        event.button = kind == Event::Move ? 0 : 1;
        send(event);
    }

    void send(Event& event)
    {
        event.time = ++m_time;
        control.set("event", event);
        EXPECT_EQ(control.run().failures, 0u);
    }

    void sendKey(const std::string& key)
    {
        Event press{Event::KeyPress, grabber};
        press.keyText = key;
        send(press);
        Event release{Event::KeyRelease, grabber};
        release.armingKeyText = key;
        send(release);
    }

    void turnWheel(double turns)
    {
        Event event{Event::Wheel, grabber};
        event.wheel = turns;
        send(event);
    }

    VCamera camera() const { return control.value<VCamera>("camera"); }

    // Checks the degrees from the start to the east and to the north.
    void expectMoved(double east, double north) const
    {
        const VCamera now = camera();
        const double degree = std::acos(-1) / 180;
        EXPECT_NEAR(std::atan2(now.position.y(), now.position.x()) / degree, east, 1e-9);
        EXPECT_NEAR(std::asin(now.position.z() / 10) / degree, north, 1e-9);
    }

    const VCamera start{{10, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30};
    const Orla::StrongPtr<Event::InteractionGrabber> grabber{new Event::InteractionGrabber("test")};
    Evaluation control{"CameraControl"};

private:
    double m_time = 0;
};

} // namespace

TEST_F(CameraControls, startWithTheGivenCamera)
{
    EXPECT_EQ(camera(), start);
    const VCamera other{{0, 20, 0}, {0, 0, 0}, {0, 0, 1}, 45};
    control.set("camera", other);
    control.run();
    EXPECT_EQ(camera(), other);
}

TEST_F(CameraControls, turnTheGlobeWhenDragged)
{
    send(Event::Press, 100, 100);
    EXPECT_EQ(camera(), start);
    send(Event::Move, 60, 120);
    expectMoved(10, 5); // a quarter of a degree per pixel
    send(Event::Move, 20, 120);
    expectMoved(20, 5);
    send(Event::Release, 20, 140);
    expectMoved(20, 10);
    send(Event::Move, 500, 500);
    expectMoved(20, 10);
}

TEST_F(CameraControls, holdTheGrabDuringADrag)
{
    EXPECT_TRUE(grabber->stack().empty());
    send(Event::Press, 1, 1);
    ASSERT_EQ(grabber->stack().size(), 1u);
    EXPECT_EQ(grabber->stack().front().object.lock(), control.object);
    EXPECT_EQ(grabber->stack().front().type, Event::GrabReason::Pointer);
    send(Event::Move, 2, 2);
    EXPECT_EQ(grabber->stack().size(), 1u);
    send(Event::Release, 2, 2);
    EXPECT_TRUE(grabber->stack().empty());
}

TEST_F(CameraControls, doNotMoveWhileAnotherObjectHoldsTheGrab)
{
    Evaluation other{"CameraControl"};
    Event event{Event::Press, grabber};
    event.grab(other.object, Event::GrabReason::Pointer, 1, nullptr);
    send(Event::Press, 100, 100);
    send(Event::Move, 60, 120);
    turnWheel(1);
    send(Event::Release, 60, 120);
    EXPECT_EQ(camera(), start);
    EXPECT_EQ(grabber->stack().size(), 1u);
}

TEST_F(CameraControls, ignoreOtherButtons)
{
    Event press{Event::Press, grabber};
    press.button = 3;
    send(press);
    send(Event::Move, 60, 120);
    EXPECT_EQ(camera(), start);
    EXPECT_TRUE(grabber->stack().empty());
}

TEST_F(CameraControls, zoomOncePerWheelEvent)
{
    turnWheel(1);
    EXPECT_NEAR(camera().position.x(), 9, 1e-12);
    control.setText("hotkey", "x"); // makes the object due with the same event
    control.run();
    EXPECT_NEAR(camera().position.x(), 9, 1e-12);
    turnWheel(1);
    EXPECT_NEAR(camera().position.x(), 8.1, 1e-12);
    turnWheel(-2);
    EXPECT_NEAR(camera().position.x(), 10, 1e-12);
    turnWheel(std::nan(""));
    EXPECT_NEAR(camera().position.x(), 10, 1e-12);
}

TEST_F(CameraControls, resetTheCameraWhenTheirKeyIsPressed)
{
    send(Event::Press, 100, 100);
    send(Event::Release, 60, 120);
    sendKey("x");
    expectMoved(10, 5);
    sendKey("r");
    EXPECT_EQ(camera(), start);
    send(Event::Press, 100, 100);
    send(Event::Release, 60, 120);
    expectMoved(10, 5);
    sendKey("r");
    EXPECT_EQ(camera(), start) << "every stroke of the key resets it";
}

TEST_F(CameraControls, keepPoolsIndependent)
{
    const Orla::StrongPtr<Orla::ValuePool> other{new Orla::ValuePool("other")};
    write(*control.object, "camera", other, start);
    Orla::VScheduler::run(other);
    send(Event::Press, 100, 100);
    send(Event::Release, 60, 120);
    expectMoved(10, 5);
    EXPECT_EQ(readText(*control.object, "camera", other), Orla::VValueTrait<VCamera>::Text(start));
}

} // namespace CameraControlTest
