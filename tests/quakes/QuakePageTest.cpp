#include "earth/Evaluation.hpp"

#include <quakes/Catalogue.hpp>

#include <fathom/VInteractionEvent.hpp>
#include <fathom/VUrlSystemHandler.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace QuakePageTest {

using Quakes::Catalogue;
using Quakes::Quake;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Quake quake(double time, std::optional<double> magnitude, const std::string& name)
{
    Quake result;
    result.time = time;
    result.magnitude = magnitude;
    result.place = name;
    result.url = "https://example.org/" + name;
    return result;
}

class QuakePages : public testing::Test {
protected:
    struct Handler final : Orla::VUrlSystemHandler {
        bool openUrl(const std::string& url) override
        {
            opened.push_back(url);
            return accepts;
        }

        std::vector<std::string> opened;
        bool accepts = true;
    };

    QuakePages() { Orla::VUrlSystemHandler::TheUrlSystemHandler = handler; }
    ~QuakePages() override { Orla::VUrlSystemHandler::TheUrlSystemHandler = nullptr; }

    void press(const std::string& key)
    {
        Orla::VInteractionEvent event;
        event.keyText = key;
        page.set("event", event);
        page.run();
        event.keyText.clear();
        event.armingKeyText = key;
        page.set("event", event);
        page.run();
    }

    const Orla::StrongPtr<Handler> handler{new Handler};
    Evaluation page{"QuakePage"};
};

} // namespace

TEST_F(QuakePages, nameTheStrongestEvent)
{
    page.set("catalog", Catalogue{{quake(1, 5.0, "a"), quake(2, std::nullopt, "b"), quake(3, 6.0, "c"),
                                   quake(4, 6.0, "d"), quake(5, 5.9, "e")}});
    page.run();
    EXPECT_EQ(page.text("place"), "d") << "the latest of two equally strong events";
    EXPECT_EQ(page.text("url"), "https://example.org/d");
    EXPECT_THAT(handler->opened, IsEmpty());
}

TEST_F(QuakePages, openOncePerKeystroke)
{
    page.set("catalog", Catalogue{{quake(1, 5.0, "a&b")}});
    press("x");
    EXPECT_THAT(handler->opened, IsEmpty());
    press("o");
    EXPECT_THAT(handler->opened, ElementsAre("https://example.org/a&b"));
    EXPECT_EQ(page.text("status"), "opened https://example.org/a&amp;b");
    press("o");
    EXPECT_EQ(handler->opened.size(), 2u);
}

TEST_F(QuakePages, warnIfTheyCannotBeOpened)
{
    press("o");
    EXPECT_EQ(page.text("status"), "<FONT COLOR=magenta>there is no page to open</FONT>");
    page.set("catalog", Catalogue{{quake(1, 5.0, "a")}});
    handler->accepts = false;
    press("o");
    EXPECT_EQ(page.text("status"), "<FONT COLOR=magenta>cannot open https://example.org/a</FONT>");
}

} // namespace QuakePageTest
