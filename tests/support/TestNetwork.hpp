#pragma once

#include "support/TestValue.hpp"

#include <trellis/VActionNotifier.hpp>
#include <trellis/VExecutor.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

// Processing objects and a fixture for the tests of the framework.

namespace Orla {

/// A processing object whose inputs, outputs and work are defined by the test.
///
/// Without `work` it writes one plus the sum of its inputs, which are all numbers, to
/// each of its outputs.
class Node : public VObject {
public:
    using Work = std::function<bool(Node& self, VRequest& request, double precision)>;

    explicit Node(const std::string& name, int level = 0, const StrongPtr<VCreationPreferences>& preferences = {})
        : VObject{name, level, preferences}
    {
        ++living;
    }
    ~Node() override { --living; }

    bool update(VRequest& request, double precision) override
    {
        ++runs;
        // The work may replace itself.
        const Work current = work;
        return current ? current(*this, request, precision) : writeSum(request.valuePool());
    }

    bool writeSum(const StrongPtr<ValuePool>& pool)
    {
        double sum = 1;
        for (const StrongPtr<VSlot>& input : inputs())
            sum += contentOf(input->getValueBase(pool));
        // Sums over diamonds grow without limit.
        sum = std::fmod(sum, Modulus);
        for (const StrongPtr<VSlot>& output : outputs())
            write(pool, output, sum);
        return true;
    }

    template<class T = double>
    StrongPtr<VSlot> addInput(const std::string& name, const T& initial = {}, bool triggers = true)
    {
        const StrongPtr<VParameter> parameter = testParameter<T>(name, initial);
        parameter->setCreator(WeakPtrImpl<VSlotContainer>(this));
        return addParameter(name, 0, parameter, triggers);
    }

    template<class T = double>
    StrongPtr<VSlot> addOutput(const std::string& name, const T& initial = {})
    {
        return registerOutput(testParameter<T>(name, initial), name);
    }

    template<class T = double>
    T read(const StrongPtr<ValuePool>& pool, const std::string& slot) const
    {
        const StrongPtr<VSlot> output = findOutput(slot);
        return contentOf<T>((output ? output : findSlot(slot))->getLocalValue(pool));
    }

    /// Writes the value and notifies, even if it is unchanged.
    template<class T>
    static void write(const StrongPtr<ValuePool>& pool, const StrongPtr<VSlot>& slot, const T& value)
    {
        const StrongPtr<VValueBase> variable = slot->getLocalValue(pool);
        StrongPtr<Typed<T>>(variable)->set(value);
        slot->parameter()->notifyValueChange(variable, pool, slot->member());
    }

    template<class T>
    void write(const StrongPtr<ValuePool>& pool, const std::string& slot, const T& value)
    {
        const StrongPtr<VSlot> output = findOutput(slot);
        write(pool, output ? output : findSlot(slot), value);
    }

    /// Writes the value and notifies if it differs. Returns false if it does not.
    template<class T>
    bool writeIfDifferent(const StrongPtr<ValuePool>& pool, const std::string& slot, const T& value)
    {
        if (read<T>(pool, slot) == value)
            return false;
        write(pool, slot, value);
        return true;
    }

    static constexpr double Modulus = 1'000'003;
    static inline std::atomic<std::size_t> living{0};

    Work work;
    std::atomic<unsigned> runs{0}; // several pools may run it concurrently
};

/// Creates an object with the output "out" and the given inputs, ready to evaluate.
inline StrongPtr<Node> makeNode(const std::string& name, const std::vector<std::string>& inputs = {"in"})
{
    auto node = Loam::makeStrong<Node>(name);
    for (const std::string& input : inputs)
        node->addInput(input);
    node->addOutput("out");
    node->enableRequestProcessing();
    return node;
}

inline bool connect(const StrongPtr<Node>& from, const StrongPtr<Node>& to, const std::string& input = "in",
                    const std::string& member = {}, const std::string& output = "out")
{
    return to->attachOutput(from->findOutput(output), to->findSlot(input), member);
}

/// Creates a network without loops, of objects with the inputs "x" and "y". An object's
/// name is its number; each input reads an earlier object or is not connected.
inline std::vector<StrongPtr<Node>> makeRandomNetwork(std::mt19937& random, std::size_t count)
{
    std::vector<StrongPtr<Node>> nodes;
    for (std::size_t i = 0; i < count; ++i) {
        nodes.push_back(makeNode(std::to_string(i), {"x", "y"}));
        for (const char* input : {"x", "y"}) {
            if (i > 0 && random() % 4 != 0)
                connect(nodes[random() % i], nodes[i], input);
        }
    }
    return nodes;
}

/// Creates the random network number \p seed.
inline std::vector<StrongPtr<Node>> makeRandomNetwork(unsigned seed)
{
    std::mt19937 random(seed);
    return makeRandomNetwork(random, 6 + seed % 10);
}

/// Schedules all objects in the pool and runs them.
inline VScheduler::Summary runAll(const std::vector<StrongPtr<Node>>& nodes, const StrongPtr<ValuePool>& pool)
{
    for (const StrongPtr<Node>& node : nodes)
        VScheduler::schedule(node, 0, pool);
    return VScheduler::run(pool);
}

/// Returns the number of runs of each node since the last call.
inline std::vector<unsigned> runsOf(const std::vector<StrongPtr<Node>>& nodes)
{
    std::vector<unsigned> runs;
    for (const StrongPtr<Node>& node : nodes)
        runs.push_back(node->runs.exchange(0));
    return runs;
}

/// Fails a test that leaks an object, a value or a byte, or that leaves a warning unread.
class FrameworkTest : public testing::Test {
protected:
    FrameworkTest() { VActionNotifier::add(m_log); }

    ~FrameworkTest() override
    {
        EXPECT_EQ(VManagedObject::count(), m_objects);
        EXPECT_EQ(Node::living, m_nodes);
        EXPECT_EQ(livingTestValues, m_values);
        EXPECT_EQ(ChunkBase::TotalMemsize, m_memory);
        EXPECT_THAT(warnings(), testing::IsEmpty());
    }

    /// Returns the warnings since the last call.
    std::vector<std::string> warnings() { return std::exchange(m_log->messages, {}); }

private:
    struct Log final : VActionNotifier {
        bool warned(const std::string& message) override
        {
            messages.push_back(message);
            return true;
        }
        std::vector<std::string> messages;
    };

    StrongPtr<Log> m_log{new Log};
    std::size_t m_objects = VManagedObject::count();
    std::size_t m_nodes = Node::living;
    std::size_t m_values = livingTestValues;
    std::size_t m_memory = ChunkBase::TotalMemsize;
};

/// A fixture with objects that record their runs.
class RecordingTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
    std::vector<std::string> ran;

    /// Creates an object that records its runs and writes nothing.
    StrongPtr<Node> makeRecorder(const std::string& name)
    {
        auto node = makeNode(name);
        node->work = [this](Node& self, VRequest&, double) {
            ran.push_back(self.Name());
            return true;
        };
        return node;
    }
};

/// A fixture for evaluations with an executor.
class ExecutorTest : public FrameworkTest {
protected:
    static VScheduler::Summary run(const StrongPtr<ValuePool>& each, VExecutor& executor)
    {
        VRequest request(each);
        return VScheduler::run(request, executor);
    }

    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace Orla
