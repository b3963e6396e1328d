#include "earth/Evaluation.hpp"
#include "Printing.hpp"
#include "earth/TemporaryFile.hpp"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace QuakeReaderTest {

using Quakes::Catalogue;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string oneQuake = R"({"type":"FeatureCollection","features":[{"type":"Feature","id":"one",)"
                             R"("properties":{"time":1000},"geometry":{"type":"Point","coordinates":[1,2,3]}}]})";
const std::string oneText = "1,1,2,3,,,,one,,,\n";

} // namespace

TEST(QuakeReader, publishesTheEventsOfItsFile)
{
    const Warnings warnings;
    Evaluation reader{"QuakeReader"};
    reader.setText("file", EARTHQUAKES_JSON);
    const Orla::VScheduler::Summary summary = reader.run();
    EXPECT_EQ(summary.updates, 1u);
    EXPECT_EQ(summary.failures, 0u);
    EXPECT_EQ(reader.value<Catalogue>("catalog").size(), 1707u);
    EXPECT_THAT(warnings.all(), IsEmpty());

    EXPECT_EQ(reader.run().updates, 0u) << "the file was read again";
}

TEST(QuakeReader, keepsItsEventsIfAFileCannotBeRead)
{
    const TemporaryFile one{oneQuake};
    const TemporaryFile broken{oneQuake.substr(0, oneQuake.size() - 1), "-broken"};
    const TemporaryFile empty{"", "-empty"};
    Evaluation reader{"QuakeReader"};
    reader.setText("file", one.name());
    reader.run();
    ASSERT_EQ(reader.text("catalog"), oneText);

    const std::vector<std::string> unreadable{broken.name(), empty.name(), "missing.json", ""};
    for (const std::string& file : unreadable) {
        SCOPED_TRACE(file);
        const Warnings warnings;
        reader.setText("file", file);
        const Orla::VScheduler::Summary summary = reader.run();
        EXPECT_EQ(summary.updates, 1u);
        EXPECT_EQ(summary.failures, 1u);
        EXPECT_EQ(reader.text("catalog"), oneText);
        const std::string expected = file.empty() ? "the input \"file\" is empty" : file + ": ";
        EXPECT_THAT(warnings.all(), ElementsAre(AllOf(HasSubstr("QuakeReader"), HasSubstr(expected))));
    }

    const Warnings warnings;
    reader.setText("file", EARTHQUAKES_JSON);
    EXPECT_EQ(reader.run().failures, 0u);
    EXPECT_EQ(reader.value<Catalogue>("catalog").size(), 1707u);
    EXPECT_THAT(warnings.all(), IsEmpty());
}

TEST(QuakeReader, publishesNothingFromAFileWithABadEvent)
{
    std::ifstream stream{EARTHQUAKES_JSON, std::ios::binary};
    std::string content{std::istreambuf_iterator<char>{stream}, {}};
    const std::string lastTime = "\"time\":1517363399650,";
    const auto place = content.find(lastTime);
    ASSERT_NE(place, std::string::npos);
    content.erase(place, lastTime.size());
    const TemporaryFile file{content};

    const Warnings warnings;
    Evaluation reader{"QuakeReader"};
    reader.setText("file", file.name());
    EXPECT_EQ(reader.run().failures, 1u);
    EXPECT_EQ(reader.text("catalog"), "");
    EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr(file.name()
                                                      + ": features[1706] (id \"uw61345682\"), properties.time: "
                                                        "found nothing, expected milliseconds since 1970 UTC")));
}

TEST(QuakeReader, announcesNothingIfAnotherFileHasTheSameEvents)
{
    const TemporaryFile one{oneQuake};
    const TemporaryFile same{" " + oneQuake, "-same"};
    Evaluation reader{"QuakeReader"};
    Evaluation filter{"QuakeFilter"};
    connect(*filter.object, "catalog", *reader.object, "catalog");
    Orla::VScheduler::schedule(filter.object, 0, reader.pool);
    reader.setText("file", one.name());
    EXPECT_EQ(reader.run().updates, 2u);
    reader.setText("file", same.name());
    EXPECT_EQ(reader.run().updates, 1u);
}

TEST(QuakeReader, canBeCancelledAndRestarted)
{
    Evaluation reader{"QuakeReader"};
    reader.setText("file", EARTHQUAKES_JSON);

    int reports = 0;
    Orla::VCancellation cancellation;
    const auto cancelAtOnce = [&](double) {
        ++reports;
        cancellation.cancel();
    };
    Orla::VRequest request{reader.pool, cancelAtOnce, cancellation};
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(reports, 1) << "reading continued";
    EXPECT_EQ(reader.text("catalog"), "");

    EXPECT_EQ(reader.run().outcome, Orla::VScheduler::Outcome::Done);
    EXPECT_EQ(reader.value<Catalogue>("catalog").size(), 1707u);
}

} // namespace QuakeReaderTest
