#include <tarn/run/HotKeys.hpp>

#include <trellis/VObject.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace HotKeysTest {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class HotKeys : public LoadedLibraries {
protected:
    static void create(const std::string& name, const std::string& key)
    {
        EXPECT_TRUE(Orla::VObject::createObject("KeyAction", name)->findSlot("hotkey")->setInitialText(key));
    }
};

} // namespace

TEST_F(HotKeys, areListedWithTheirObjectsIfSeveralObjectsShareOne)
{
    create("a", "w");
    create("b", "x");
    create("c", "w");
    create("d", " ");
    create("e", " ");
    const std::vector<Tarn::SharedHotKey> keys = Tarn::sharedHotKeys();
    ASSERT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys[0].key, ' ');
    EXPECT_THAT(keys[0].objects, ElementsAre("d", "e"));
    EXPECT_EQ(keys[1].key, 'w');
    EXPECT_THAT(keys[1].objects, ElementsAre("a", "c"));
}

TEST_F(HotKeys, areNotSharedByObjectsWithoutOne)
{
    Orla::VObject::createObject("KeyAction", "a");
    Orla::VObject::createObject("KeyAction", "b");
    EXPECT_THAT(Tarn::sharedHotKeys(), IsEmpty());
}

TEST_F(HotKeys, areShownWithoutControlCharacters)
{
    EXPECT_EQ(Tarn::nameOfKey('r'), "\"r\"");
    EXPECT_EQ(Tarn::nameOfKey(' '), "space");
    EXPECT_EQ(Tarn::nameOfKey('\x1b'), "\"\\x1b\"");
}

} // namespace HotKeysTest
