#include <tarn/libraries/AnnouncedObjects.hpp>

#include <trellis/VActionNotifier.hpp>

#include <gmock/gmock.h>

#include <string>

namespace AnnouncedObjectsTest {

using namespace Tarn;
using Orla::StrongPtr;
using Orla::VManagedObject;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> names()
{
    std::vector<std::string> names;
    for (const StrongPtr<VManagedObject>& object : announcedObjects())
        names.push_back(object->Name());
    return names;
}

} // namespace

TEST(AnnouncedObjects, includeAllLevelsInOrder)
{
    ASSERT_THAT(announcedObjects(), IsEmpty());
    const StrongPtr<VManagedObject> late = Loam::makeStrong<VManagedObject>("late", 2147483647);
    const StrongPtr<VManagedObject> early = Loam::makeStrong<VManagedObject>("early", -2147483647 - 1);
    const StrongPtr<VManagedObject> middle = Loam::makeStrong<VManagedObject>("middle", 0);
    for (const auto& object : {late, early, middle})
        VManagedObject::add(object);
    EXPECT_THAT(names(), ElementsAre("early", "middle", "late"));
    removeAnnouncedObjects();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_FALSE(late->isRegistered());
}

TEST(AnnouncedObjects, areRemovedInReverseOrder)
{
    struct Log final : Orla::VActionNotifier {
        void objectRemoved(const StrongPtr<VManagedObject>& object) override { removed.push_back(object->Name()); }
        std::vector<std::string> removed;
    };
    const auto log = Loam::makeStrong<Log>();
    Orla::VActionNotifier::add(log);
    VManagedObject::add(Loam::makeStrong<VManagedObject>("one", 0));
    VManagedObject::add(Loam::makeStrong<VManagedObject>("two", 0));
    removeAnnouncedObjects();
    EXPECT_THAT(log->removed, ElementsAre("two", "one"));
}

} // namespace AnnouncedObjectsTest
