#include <fathom/VObjectStatus.hpp> // first: the header must be self-contained

#include "Recorders.hpp"
#include "support/ValueLaws.hpp"

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace VObjectStatusTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

using Color = VObjectStatus::Color;

static_assert(!std::is_convertible_v<std::string, VObjectStatus>);
static_assert(std::has_virtual_destructor_v<StatusIndicator>);
static_assert(std::is_abstract_v<CatchStatus>);
static_assert(std::is_base_of_v<VObject, CatchStatus> && std::is_base_of_v<StatusIndicator, CatchStatus>);

} // namespace VObjectStatusTest

template<>
std::vector<Orla::VObjectStatus> samples<Orla::VObjectStatus>()
{
    using Orla::VObjectStatus;
    return {VObjectStatus{}, VObjectStatus{"ready"}, VObjectStatus{"<FONT COLOR=red>a\nb</FONT>"}};
}

namespace VObjectStatusTest {

INSTANTIATE_TYPED_TEST_SUITE_P(VObjectStatus, ValueLaws, VObjectStatus);

namespace {

class Station final : public VObject, public StatusIndicator {
public:
    explicit Station(const std::string& name) : VObject{name, 0, nullptr}, StatusIndicator{this, "waiting", 7, "report"}
    {
    }
    bool update(VRequest&, double) override { return true; }
};

class Lost final : public StatusIndicator {
public:
    Lost() : StatusIndicator{nullptr, "waiting", 0, Slotname} {}
};

class StatusIndicatorTest : public testing::Test {
protected:
    std::string shown() const
    {
        VObjectStatus status{"cannot be read"};
        VOutputAssignmentContext<VObjectStatus>{m_station->statusOutput(), m_pool} >> status;
        return status.text;
    }

    const Warnings m_warnings;
    StrongPtr<Station> m_station{new Station("north")};
    const StrongPtr<ValuePool> m_pool{new ValuePool("tuesday")};
};

struct Odd {};

// Throws a given value.
class Thrower final : public CatchStatus {
public:
    using Thrown = std::variant<std::monostate, const char*, std::runtime_error, std::string, Odd>;

    explicit Thrower(const std::string& name) : CatchStatus{name, 3, nullptr} { enableRequestProcessing(); }

    void safeUpdate(VRequest& request, double precision) override
    {
        pool = request.valuePool();
        number = precision;
        std::visit(
            [](const auto& what) {
                if constexpr (!std::is_same_v<decltype(what), const std::monostate&>)
                    throw what;
            },
            thrown);
    }

    Thrown thrown;
    StrongPtr<ValuePool> pool;
    double number = 0;
};

class CatchStatusTest : public testing::Test {
protected:
    bool update()
    {
        VRequest request(m_pool);
        return m_thrower->update(request, 0.5);
    }

    VObjectStatus shown() const
    {
        VObjectStatus status{"cannot be read"};
        VOutputAssignmentContext<VObjectStatus>{m_thrower->statusOutput(), m_pool} >> status;
        return status;
    }

    const Warnings m_warnings;
    const StrongPtr<Thrower> m_thrower{new Thrower("thrower")};
    const StrongPtr<ValuePool> m_pool{new ValuePool("pool")};
};

} // namespace

TEST(VObjectStatus, startsEmptyTransparentAndLightGrey)
{
    const VObjectStatus status;
    EXPECT_EQ(status.text, "");
    EXPECT_EQ(status.background, (Color{0, 0, 0, 0}));
    EXPECT_EQ(status.foreground, (Color{192, 192, 192, 255}));
    EXPECT_EQ(status.level, 0);
    EXPECT_EQ(VObjectStatus{"ready"}.foreground, status.foreground);
}

TEST(VObjectStatus, isEqualOnlyIfAllFieldsAreEqual)
{
    const VObjectStatus status{"ready"};
    EXPECT_EQ(status, VObjectStatus{"ready"});
    EXPECT_NE(status, VObjectStatus{"busy"});
    VObjectStatus other = status;
    other.background.alpha = 1;
    EXPECT_NE(status, other);
    other = status;
    other.foreground.red = 191;
    EXPECT_NE(status, other);
    other = status;
    other.level = 1;
    EXPECT_NE(status, other);
}

TEST(VObjectStatus, takesAnyTextAsItsMessageAndKeepsTheRest)
{
    VObjectStatus status{"ready"};
    status.background = {1, 2, 3, 4};
    status.level = 5;
    VObjectStatus expected = status;
    for (const std::string& text : {std::string(" 100%s <b>\n"), std::string("a\0b", 3), std::string()}) {
        expected.text = text;
        EXPECT_TRUE(VValueTrait<VObjectStatus>::setValueFromText(status, text));
        EXPECT_EQ(status, expected);
        EXPECT_EQ(VValueTrait<VObjectStatus>::Text(status), text);
    }
}

TEST(VObjectStatus, canBeCreatedFromAnyTextByItsTypeName)
{
    for (const char* text : {"", "all is well", "<FONT COLOR=red>x</FONT>"}) {
        bool ok = false;
        const StrongPtr<VValueBase> value = VValueCreator::createValue("VObjectStatus", text, ok);
        EXPECT_TRUE(ok);
        const StrongPtr<VTypedValueBase<VObjectStatus>> typed(value);
        ASSERT_TRUE(typed);
        VObjectStatus status;
        EXPECT_TRUE(typed->getValue(status));
        EXPECT_EQ(status, VObjectStatus{text});
        EXPECT_EQ(value->Text(), text);
    }
}

TEST(VObjectStatus, isNotRegisteredAsAnInput)
{
    EXPECT_FALSE(TypedSlotCreator::find(typeid(VObjectStatus)));
}

TEST(StatusIndicator, escapesTheCharactersThatFormMarkup)
{
    EXPECT_EQ(StatusIndicator::escaped(""), "");
    EXPECT_EQ(StatusIndicator::escaped("<b> & \"c\"\n"), "&lt;b&gt; &amp; \"c\"\n");
    EXPECT_EQ(StatusIndicator::escaped("&amp;"), "&amp;amp;");
}

TEST_F(StatusIndicatorTest, offersAnOutputOfTheGivenName)
{
    EXPECT_STREQ(StatusIndicator::Slotname, "status");
    const StrongPtr<VSlot> slot = m_station->findOutput("report");
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->parameter(), m_station->statusOutput());
    EXPECT_EQ(slot->type(), typeid(VObjectStatus));
    EXPECT_EQ(slot->parameter()->Name(), "report");
    EXPECT_FALSE(slot->parameter()->creationPreferences());
    EXPECT_EQ(slot->parameter()->source(), WeakPtrImpl<VSlotContainer>(m_station));
    EXPECT_EQ(shown(), "waiting");
}

TEST_F(StatusIndicatorTest, marksItsMessagesBySeverity)
{
    m_station->setStatusInfo(m_pool, "abc");
    EXPECT_EQ(shown(), "abc");
    m_station->setStatusWarning(m_pool, "abc");
    EXPECT_EQ(shown(), "<FONT COLOR=magenta>abc</FONT>");
    m_station->setStatusError(m_pool, "abc", false);
    EXPECT_EQ(shown(), "<FONT COLOR=red>abc</FONT>");
    m_station->setStatusError(m_pool, "", false);
    EXPECT_EQ(shown(), "<FONT COLOR=red></FONT>");
    m_station->setStatusWarning(m_pool, "");
    EXPECT_EQ(shown(), "<FONT COLOR=magenta></FONT>");
    m_station->setStatusInfo(m_pool, "");
    EXPECT_EQ(shown(), "") << "an information message clears an error";
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(StatusIndicatorTest, showsATextUnchangedIncludingItsMarkup)
{
    m_station->setStatusWarning(m_pool, "50% of <b>a & b</b>");
    EXPECT_EQ(shown(), "<FONT COLOR=magenta>50% of <b>a & b</b></FONT>");
}

TEST_F(StatusIndicatorTest, announcesARepeatedMessageOnce)
{
    const Changes changes{m_station->statusOutput()};
    m_station->setStatusInfo(m_pool, "waiting");
    EXPECT_EQ(changes.count(), 0) << "the initial text is already shown";
    m_station->setStatusInfo(m_pool, "abc");
    m_station->setStatusInfo(m_pool, "abc");
    EXPECT_EQ(changes.count(), 1);
    m_station->setStatusError(m_pool, "abc", false);
    m_station->setStatusError(m_pool, "abc", false);
    EXPECT_EQ(changes.count(), 2);
    m_station->setStatusInfo(m_pool, "abd");
    EXPECT_EQ(changes.count(), 3) << "even if the length is the same";
}

TEST_F(StatusIndicatorTest, changesOnlyTheText)
{
    VObjectStatus status{"before"};
    status.background = {1, 2, 3, 4};
    status.foreground = {5, 6, 7, 8};
    status.level = 9;
    const VOutputAssignmentContext<VObjectStatus> output{m_station->statusOutput(), m_pool};
    ASSERT_TRUE(output << status);
    m_station->setStatusInfo(m_pool, "after");
    VObjectStatus read;
    ASSERT_TRUE(output >> read);
    status.text = "after";
    EXPECT_EQ(read, status);
}

TEST_F(StatusIndicatorTest, writesOnlyToTheGivenPool)
{
    const StrongPtr<ValuePool> other(new ValuePool("other"));
    m_station->setStatusInfo(other, "elsewhere");
    EXPECT_EQ(shown(), "waiting");
}

TEST_F(StatusIndicatorTest, notifiesAboutAnErrorWithItsObjectAndPool)
{
    m_station->setStatusError(m_pool, "no <data> at 50%", true);
    EXPECT_EQ(shown(), "<FONT COLOR=red>no <data> at 50%</FONT>");
    EXPECT_THAT(m_warnings.all(), ElementsAre("Station{tuesday} \"north\" Error: no <data> at 50%"));
    m_station->setStatusError(m_pool, "no <data> at 50%", true);
    EXPECT_EQ(m_warnings.all().size(), 2u) << "even if it is repeated";
}

TEST_F(StatusIndicatorTest, omitsMissingNamesFromANotification)
{
    m_station->setStatusError(nullptr, "e", true);
    const Lost lost;
    lost.setStatusError(m_pool, "e", true);
    lost.setStatusError(nullptr, "", true);
    EXPECT_THAT(m_warnings.all(), ElementsAre("Station \"north\" Error: e", "Lost{tuesday} Error: e", "Lost Error: "));
}

TEST_F(StatusIndicatorTest, showsNothingWithoutAPoolOrAnObject)
{
    const Changes changes{m_station->statusOutput()};
    m_station->setStatusInfo(nullptr, "abc");
    m_station->setStatusWarning(nullptr, "abc");
    m_station->setStatusError(nullptr, "abc", false);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(m_station->statusOutput()->DefaultValue()->Text(), "waiting");

    const Lost lost;
    lost.setStatusInfo(m_pool, "abc");
    lost.setStatusWarning(m_pool, "abc");
    lost.setStatusError(m_pool, "abc", false);
    lost.setStatusInfo(nullptr, "abc");
    EXPECT_FALSE(m_pool->retrieveValue("status"));
    EXPECT_EQ(m_pool->variableCount(), 0u);
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(StatusIndicatorTest, isSilentWhileItsOutputIsDisabled)
{
    m_station->statusOutput()->setEnabled(false);
    m_station->setStatusInfo(m_pool, "abc");
    m_station->statusOutput()->setEnabled(true);
    EXPECT_EQ(shown(), "waiting");
}

TEST_F(CatchStatusTest, offersAStatusThatStartsEmpty)
{
    const StrongPtr<VSlot> slot = m_thrower->findOutput("status");
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->parameter(), m_thrower->statusOutput());
    EXPECT_EQ(shown(), VObjectStatus{});
    EXPECT_EQ(m_thrower->Name(), "thrower");
    EXPECT_EQ(m_thrower->level(), 3);
}

TEST_F(CatchStatusTest, updatesWithTheRequestsPoolAndThePrecision)
{
    EXPECT_TRUE(update());
    EXPECT_EQ(m_thrower->pool, m_pool);
    EXPECT_EQ(m_thrower->number, 0.5);
    EXPECT_EQ(shown().text, "");
}

TEST_F(CatchStatusTest, showsAThrownTextUnmarkedAndSucceeds)
{
    m_thrower->thrown = "no data at 50%";
    EXPECT_TRUE(update());
    EXPECT_EQ(shown().text, "no data at 50%");
    m_thrower->thrown = std::monostate{};
    EXPECT_TRUE(update());
    EXPECT_EQ(shown().text, "no data at 50%") << "only a message replaces a message";
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(CatchStatusTest, showsNothingForANullText)
{
    m_thrower->setStatusError(m_pool, "before", false);
    m_thrower->thrown = static_cast<const char*>(nullptr);
    EXPECT_TRUE(update());
    EXPECT_EQ(shown().text, "");
}

TEST_F(CatchStatusTest, propagatesOtherExceptions)
{
    m_thrower->thrown = std::runtime_error{"failure"};
    EXPECT_THROW(update(), std::runtime_error);
    m_thrower->thrown = std::string{"text"};
    EXPECT_THROW(update(), std::string);
    m_thrower->thrown = Odd{};
    EXPECT_THROW(update(), Odd);
    EXPECT_EQ(shown().text, "");
}

TEST_F(CatchStatusTest, succeedsForTheSchedulerUnlessAnotherExceptionIsThrown)
{
    m_thrower->thrown = "no data";
    VScheduler::schedule(m_thrower, 2, m_pool);
    VScheduler::Summary summary = VScheduler::run(m_pool);
    EXPECT_EQ(summary.updates, 1u);
    EXPECT_EQ(summary.failures, 0u);
    EXPECT_EQ(shown().text, "no data");
    EXPECT_EQ(m_thrower->number, 2.0);
    EXPECT_THAT(m_warnings.all(), IsEmpty());

    m_thrower->thrown = std::runtime_error{"failure"};
    VScheduler::schedule(m_thrower, 2, m_pool);
    summary = VScheduler::run(m_pool);
    EXPECT_EQ(summary.failures, 1u);
    EXPECT_THAT(m_warnings.all(), ElementsAre(testing::HasSubstr("failure")));
}

} // namespace VObjectStatusTest
