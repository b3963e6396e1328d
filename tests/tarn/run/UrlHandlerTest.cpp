#include <tarn/run/UrlHandler.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <filesystem>

namespace UrlHandlerTest {

namespace {

// Creates a browser that records the addresses it gets. Returns the variable that selects it.
std::string makeBrowser(const TestFolder& folder, const std::string& after)
{
    const std::string path =
        folder.write("browser", "#!/bin/sh\nprintf '%s|' \"$@\" >> '" + folder.file("shown") + "'\n" + after + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return "BROWSER=" + path;
}

ProcessResult open(const std::string& url, const std::string& browser)
{
    return evaluate(object("opener", "Opener", "set = { url = '" + url + "' }\n") + column("opened", "opener.opened"),
                    {}, {browser});
}

} // namespace

TEST(UrlHandler, startsTheBrowserChosenByTheUser)
{
    const TestFolder folder;
    const std::string browser = makeBrowser(folder, "exit 0");
    EXPECT_EQ(open("https://example.org/a?b=c&d", browser).out, "step,opened\n0,yes\n");
    EXPECT_EQ(contentOf(folder.file("shown")), "https://example.org/a?b=c&d|");
}

TEST(UrlHandler, reportsABrowserThatFailsOrIsMissing)
{
    const TestFolder folder;
    EXPECT_EQ(open("https://example.org", makeBrowser(folder, "exit 3")).out, "step,opened\n0,no\n");
    EXPECT_EQ(open("https://example.org", "BROWSER=" + folder.file("none")).out, "step,opened\n0,no\n");
}

TEST(UrlHandler, triesTheBrowsersOfTheListInOrder)
{
    const TestFolder folder;
    const std::string works = makeBrowser(folder, "exit 0").substr(8);
    const std::string fails = folder.write("fails", "#!/bin/sh\nexit 1\n");
    std::filesystem::permissions(fails, std::filesystem::perms::owner_all);
    const std::string list = "BROWSER=:" + folder.file("none") + ":" + fails + " : " + works + ":" + works;
    EXPECT_EQ(open("https://example.org", list).out, "step,opened\n0,yes\n");
    EXPECT_EQ(contentOf(folder.file("shown")), "https://example.org|");
    EXPECT_EQ(open("https://example.org", "BROWSER=:").out, "step,opened\n0,no\n");
}

TEST(UrlHandler, passesTheArgumentsOfTheBrowser)
{
    const struct {
        const char* arguments;
        const char* passed;
    } cases[] = {
        {" --new  -x", "--new|-x|https://a/?b=%73|"},
        {" --url=%s --last", "--url=https://a/?b=%73|--last|"},
        {" '%s' \"a b\" c\\ d 'e\"f' ''", "https://a/?b=%73|a b|c d|e\"f||"},
        {" %%s %c %x %", "%s|:|%x|%|https://a/?b=%73|"},
        {" ; echo `x` $HOME &", ";|echo|`x`|$HOME|https://a/?b=%73|"},
        {" 'unclosed quote", "unclosed quote|https://a/?b=%73|"},
    };
    for (const auto& [arguments, passed] : cases) {
        SCOPED_TRACE(arguments);
        const TestFolder folder;
        EXPECT_EQ(open("https://a/?b=%73", makeBrowser(folder, "exit 0") + arguments).out, "step,opened\n0,yes\n");
        EXPECT_EQ(contentOf(folder.file("shown")), passed);
    }
}

TEST(UrlHandler, doesNotWaitForABrowserThatStaysOpen)
{
    const TestFolder folder;
    const ProcessResult result = open("https://example.org", makeBrowser(folder, "exec sleep 5 >/dev/null 2>&1"));
    EXPECT_EQ(result.out, "step,opened\n0,yes\n");
}

TEST(UrlHandler, refusesUnsafeAndInvalidUrls)
{
    const TestFolder folder;
    const std::string browser = makeBrowser(folder, "exit 0");
    for (const char* url : {"", "example.org", "-version", "javascript:alert(1)", "https://a b", "https://a`b`",
                            "smb://server/share", "HTTPS"}) {
        SCOPED_TRACE(url);
        EXPECT_EQ(open(url, browser).out, "step,opened\n0,no\n");
    }
    EXPECT_FALSE(std::filesystem::exists(folder.file("shown")));
    Tarn::UrlHandler handler;
    EXPECT_FALSE(handler.openUrl("https://a\nb"));
}

} // namespace UrlHandlerTest
