#include <fathom/VPolyOutput.hpp> // first and alone: the header must be self-contained

#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <string>

namespace VPolyOutputTest {

using namespace Orla;

namespace {

// Counts the offers that reach it.
class Reader : public VObject {
public:
    explicit Reader(const std::string& name) : VObject{name, 0, nullptr} {}

    bool update(VRequest&, double) override
    {
        ++runs;
        return true;
    }

    unsigned runs = 0;
};

class Offer : public VObject, public VPolyOutput<std::string, Reader> {
public:
    explicit Offer(const std::string& name) : VObject{name, 0, nullptr}, VPolyOutput{"offer", "initial"} {}

    bool update(VRequest& request, double) override
    {
        return VOutputAssignmentContext<std::string>{output(), request.valuePool()} << "updated";
    }
};

template<class T>
StrongPtr<T> announce(const std::string& name)
{
    const auto object = Loam::makeStrong<T>(name);
    VObject::finishCreation(object);
    return object;
}

} // namespace

TEST(VPolyOutput, isAnInputOfEveryObjectOfTheRequestingClass)
{
    const auto early = announce<Reader>("early");
    const auto offer = announce<Offer>("offer");
    const auto late = announce<Reader>("late");
    EXPECT_EQ(offer->requesterCount(), 2);
    EXPECT_EQ(offer->output()->DefaultValue()->Text(), "initial");

    const StrongPtr<ValuePool> pool(new ValuePool);
    VScheduler::schedule(offer, 0, pool);
    VScheduler::run(pool);
    for (const StrongPtr<Reader>& reader : {early, late}) {
        const StrongPtr<VSlot> input = reader->findSlot("offer.offer");
        ASSERT_TRUE(input) << reader->Name();
        EXPECT_EQ(input->text(pool), "updated");
        EXPECT_EQ(reader->runs, 1u);
    }
    for (const StrongPtr<VManagedObject>& object :
         {StrongPtr<VManagedObject>(early), StrongPtr<VManagedObject>(late), StrongPtr<VManagedObject>(offer)})
        EXPECT_TRUE(VManagedObject::remove(object));
}

} // namespace VPolyOutputTest
