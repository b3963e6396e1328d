#include "Grids.hpp"
#include "earth/Evaluation.hpp"
#include "earth/TemporaryFile.hpp"

#include <gmock/gmock.h>

#include <string>

namespace GridReaderTest {

using Rain::Grid;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string smallGrid = R"({"width":2,"height":1,"scale":[1,1],"translate":[0,0],"values":[1,null]})";

} // namespace

TEST(GridReader, publishesTheGridOfItsFileAndItsNumbers)
{
    Evaluation reader{"GridReader"};
    reader.setText("file", PRECIPITATION_JSON);
    EXPECT_EQ(reader.run().failures, 0u);
    EXPECT_EQ(reader.value<Grid>("grid"), precipitation());
    EXPECT_EQ(reader.value<Grid::Values>("values")->size(), 60480u);
    EXPECT_EQ(reader.run().updates, 0u) << "the file was read again";
}

TEST(GridReader, keepsItsGridIfAFileCannotBeRead)
{
    const TemporaryFile small{smallGrid};
    const TemporaryFile broken{smallGrid.substr(1), "-broken"};
    Evaluation reader{"GridReader"};
    reader.setText("file", small.name());
    EXPECT_EQ(reader.run().failures, 0u);
    for (const std::string& file : {broken.name(), std::string("missing.json"), std::string()}) {
        SCOPED_TRACE(file);
        const Warnings warnings;
        reader.setText("file", file);
        EXPECT_EQ(reader.run().failures, 1u);
        EXPECT_EQ(reader.text("grid"), "2x1 0,0 1,1: 1,");
        EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr(file.empty() ? "the input \"file\" is empty" : file + ": ")));
    }
}

TEST(GridReader, canBeCancelledAndRestarted)
{
    Evaluation reader{"GridReader"};
    reader.setText("file", PRECIPITATION_JSON);
    Orla::VCancellation cancellation;
    Orla::VRequest request{reader.pool, [&](double) { cancellation.cancel(); }, cancellation};
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(reader.text("grid"), "");
    EXPECT_EQ(reader.run().outcome, Orla::VScheduler::Outcome::Done);
    EXPECT_EQ(reader.value<Grid>("grid"), precipitation());
}

} // namespace GridReaderTest
