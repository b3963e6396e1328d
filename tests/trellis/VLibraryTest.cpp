#include <trellis/VLibrary.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VValueCreator.hpp>

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

#include <dlfcn.h>

namespace VLibraryTest {

using namespace Orla;

namespace {

// The client library, which needs fathom; this program does not.
class VLibraryTest : public testing::Test {
protected:
    VLibraryTest()
    {
        if (!handle)
            throw std::runtime_error(::dlerror());
    }

    ~VLibraryTest() override
    {
        EXPECT_TRUE(library.unload());
        EXPECT_FALSE(::dlopen(FIRST_CLIENT, RTLD_NOW | RTLD_NOLOAD)) << "the library is still loaded";
    }

    StrongPtr<VValueBase> value(const char* type)
    {
        bool ok = false;
        return VValueCreator::createValue(type, "2", ok);
    }

    void* const handle = ::dlopen(FIRST_CLIENT, RTLD_NOW | RTLD_LOCAL);
    VLibrary library{handle};
};

} // namespace

TEST_F(VLibraryTest, containsItsOwnCodeAndThatOfLibrariesThatOnlyItNeeds)
{
    EXPECT_TRUE(library.registersTypes());
    const VObjectCreator& own = *VObjectCreator::find("FirstCounter");
    const VValueCreator& fathoms = *VValueCreator::find("Range");
    EXPECT_TRUE(library.contains(&typeid(own)));
    EXPECT_TRUE(library.contains(&typeid(fathoms)));
    EXPECT_FALSE(library.contains(&typeid(VObject))) << "the program needs trellis, too";
    EXPECT_FALSE(library.contains(this));
    EXPECT_FALSE(library.contains(nullptr));
}

TEST_F(VLibraryTest, isNotInUseIfNothingWasCreated)
{
    EXPECT_EQ(library.use(), std::nullopt);
}

TEST_F(VLibraryTest, isInUseWhileAnObjectExistsThatWasNeverAnnounced)
{
    StrongPtr<VObject> object = VObjectCreator::find("FirstCounter")->create("lonely", 0, nullptr);
    EXPECT_THAT(library.use().value_or(""), testing::EndsWith("\"lonely\""));
    EXPECT_THAT(library.unload().reason(), testing::EndsWith("\"lonely\" is still in use"));
    EXPECT_TRUE(VObjectCreator::find("FirstCounter")) << "a failure must not unload anything";
    object.reset();
    EXPECT_EQ(library.use(), std::nullopt);
}

TEST_F(VLibraryTest, isInUseWhileAnyNetworkHasAnObjectOfIt)
{
    std::optional<VNetwork> network(std::in_place);
    {
        const VNetwork::Scope scope{*network};
        VObject::createObject("FirstCounter", "inside");
    }
    EXPECT_THAT(library.use().value_or(""), testing::EndsWith("\"inside\""));
    network.reset();
    EXPECT_EQ(library.use(), std::nullopt);
}

TEST_F(VLibraryTest, isInUseWhileAValueExists)
{
    for (const auto& [type, label] : {std::pair{"FirstValue", "First label"}, std::pair{"Range", "range"}}) {
        StrongPtr<VValueBase> one = value(type);
        const StrongPtr<VValueBase> copy = one->copy();
        one.reset();
        EXPECT_EQ(library.use(), "a value of type " + std::string(label));
    }
}

TEST_F(VLibraryTest, isInUseWhileAComponentOfAValueExists)
{
    const StrongPtr<VValueBase> metres = value("FirstValue")->component("metres");
    EXPECT_EQ(library.use(), "a value of type First label");
}

TEST_F(VLibraryTest, isInUseWhileACreatorIsHeld)
{
    StrongPtr<VObjectCreator> objects = VObjectCreator::find("FirstCounter");
    EXPECT_EQ(library.use(), "the creator of \"FirstCounter\"");
    objects.reset();
    const StrongPtr<VValueCreator> values = VValueCreator::find("FirstValue");
    EXPECT_EQ(library.use(), "the creator of values of type First label");
}

TEST_F(VLibraryTest, isNotInUseAfterItsObjectsHaveRun)
{
    const StrongPtr<ValuePool> pool(new ValuePool);
    StrongPtr<VObject> object = VObject::createObject("FirstCounter", "object");
    VScheduler::scheduleAll(pool);
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
    EXPECT_TRUE(library.use());
    VManagedObject::remove(object);
    object.reset();
    EXPECT_EQ(library.use(), std::nullopt);
}

} // namespace VLibraryTest
