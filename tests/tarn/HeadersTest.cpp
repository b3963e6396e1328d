#include <tarn/Forward.hpp> // first: the header must be self-contained

#include <tarn/tarn.hpp>

#include <gtest/gtest.h>

namespace HeadersTest {

using namespace Tarn;

// One include suffices for the types of the library.
static_assert(sizeof(Session) > 0 && sizeof(Context) > 0 && sizeof(LoadOptions) > 0 && sizeof(EvaluationSummary) > 0);
static_assert(sizeof(ScriptedEvent) > 0 && sizeof(StatusReport) > 0 && sizeof(Severity) > 0 && sizeof(Fault) > 0);
static_assert(sizeof(TypeCatalogue) > 0 && sizeof(ObjectTypeDescription) > 0 && sizeof(ValueTypeDescription) > 0);

// What is only declared there is what is defined here.
TEST(Headers, declareTheTypesThatTheyDefine)
{
    Faults faults{"net.toml"};
    faults.add(FaultKind::Content, Place{1, 2}, "wrong");
    const Fault& fault = faults.all().front();
    const Place& place = fault.place;
    EXPECT_EQ(place, (Place{1, 2}));
}

} // namespace HeadersTest
