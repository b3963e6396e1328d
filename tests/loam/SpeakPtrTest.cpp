#include <loam/SpeakPtr.hpp>

#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>

namespace SpeakPtrTest {

using namespace Loam;

namespace {

struct Thing : ReferenceBase<Thing> {};

template<class Function>
std::string printedBy(Function function)
{
    testing::internal::CaptureStdout();
    function();
    return testing::internal::GetCapturedStdout();
}

std::string addressOf(const void* object)
{
    char text[64];
    std::snprintf(text, sizeof text, "%p", object);
    return text;
}

} // namespace

TEST(SpeakPtr, printsNothingForValidPointers)
{
    const auto thing = makeStrong<Thing>();
    EXPECT_EQ(printedBy([&] {
                  EXPECT_TRUE(SpeakPtr::check(thing, "here"));
                  EXPECT_TRUE(SpeakPtr::check(StrongPtr<Thing>(), "here"));
              }),
              "");
}

TEST(SpeakPtr, reportsAPointerThatOutlivedItsObject)
{
    std::optional<Thing> thing(std::in_place);
    const StrongPtr<Thing> pointer(&*thing);
    const std::string address = addressOf(&*thing);
    thing.reset();
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(SpeakPtr::check(pointer, "the scene")); }),
              "the scene: object " + address + ", 1 strong, 1 weak, inconsistent: the object is not alive\n");
}

TEST(SpeakPtr, printsTheLocationAndTheCounts)
{
    const auto thing = makeStrong<Thing>();
    const StrongPtr<Thing> second = thing;
    const WeakPtr<Thing> weak = thing;
    EXPECT_EQ(printedBy([&] { SpeakPtr::printRS("end of load", thing.get(), thing.referenceBlock()); }),
              "end of load: object " + addressOf(thing.get()) + ", 2 strong, 2 weak, alive\n");
}

TEST(SpeakPtr, reportsAnEmptyReference)
{
    EXPECT_EQ(printedBy([] { SpeakPtr::printRS("start", nullptr, nullptr); }),
              "start: object " + addressOf(nullptr) + ", empty reference\n");
}

TEST(SpeakPtr, reportsAPointerToAnObjectOfAnotherClass)
{
    struct Part : Thing {};
    struct Other : Thing {};
    const auto part = makeStrong<Part>();
    EXPECT_EQ(printedBy([&] {
                  EXPECT_TRUE(SpeakPtr::checkType<Thing>(part, "here"));
                  EXPECT_TRUE(SpeakPtr::checkType<Thing>(StrongPtr<Part>(), "here"));
                  EXPECT_TRUE(SpeakPtr::checkType<Thing>(StrongPtr<Thing>(part), "here")) << "a derived class";
              }),
              "");
    const StrongPtr<Other> wrong(reinterpret_cast<Other*>(part.get()));
    const std::string printed = printedBy([&] { EXPECT_FALSE(SpeakPtr::checkType<Thing>(wrong, "the scene")); });
    EXPECT_TRUE(printed.starts_with("the scene: object " + addressOf(part.get()) + ", 2 strong, 1 weak, inconsistent"))
        << printed;
    EXPECT_NE(printed.find("is a " + Typename(typeid(Part)) + ", not a " + Typename(typeid(Other)) + "\n"),
              std::string::npos)
        << printed;
}

} // namespace SpeakPtrTest
