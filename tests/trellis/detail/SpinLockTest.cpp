#include <trellis/detail/SpinLock.hpp>

#include "support/Threads.hpp"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

namespace SpinLockTest {

using namespace Orla;

TEST(SpinLock, admitsOneThreadAtATime)
{
    Detail::SpinLock lock;
    int count = 0;
    inThreads(3, [&](unsigned) {
        for (int i = 0; i < 1000; ++i) {
            const std::lock_guard guard{lock};
            const int before = count;
            std::this_thread::yield();
            count = before + 1;
        }
    });
    EXPECT_EQ(count, 3000);
}

} // namespace SpinLockTest
