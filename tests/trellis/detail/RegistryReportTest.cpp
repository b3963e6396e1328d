#include "support/TestNetwork.hpp"

#include <trellis/VObjectCreator.hpp>

#include <loam/Environment.hpp>

namespace RegistryReportTest {

// The warning about a refused registration; the registries have their own tests.

using namespace Orla;
using namespace Orla::Detail;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct First : Node {
    First(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
    }
};
struct Second : First {
    using First::First;
};

class RegistryReport : public FrameworkTest {};

} // namespace

TEST_F(RegistryReport, namesBothOwnersWithTypeAndLibrary)
{
    const VObjectType<First> first{"Taken name"};
    const VObjectType<Second> second{"Taken name"};
    const std::string library = Loam::getLibraryPath(&typeid(First));
    EXPECT_THAT(warnings(),
                ElementsAre(AllOf(HasSubstr("object type"), HasSubstr("\"Taken name\""),
                                  HasSubstr("RegistryReportTest::(anonymous namespace)::First of " + library),
                                  HasSubstr("RegistryReportTest::(anonymous namespace)::Second of "))));
}

} // namespace RegistryReportTest
