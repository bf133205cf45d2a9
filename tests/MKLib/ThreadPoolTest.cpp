#include "MKLib/ThreadPool.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/MKMath/Vectors.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cfenv>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace
{

class ThreadPoolTest : public testing::TestWithParam<int>
{
protected:
    void SetUp() override { ThreadPool::System_Init(GetParam()); }
    void TearDown() override { ThreadPool::System_Shutdown(); }
};

TEST_P(ThreadPoolTest, CoversTheRangeOnceAndWaits)
{
    std::vector<std::atomic<int>> visits(1000);
    std::atomic<int> wrongRanges{0};
    ThreadPool::Parallel_For(3, 998, 10, [&](int first, int last) {
        if (first >= last || (GetParam() > 1 && last - first > 10)) ++wrongRanges;
        for (int i = first; i < last; ++i) ++visits[static_cast<size_t>(i)];
    });
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(visits[static_cast<size_t>(i)], i >= 3 && i < 998 ? 1 : 0) << i;
    ThreadPool::Parallel_For(5, 5, 1, [&](int, int) { ++wrongRanges; });
    EXPECT_EQ(wrongRanges, 0);
}

TEST_P(ThreadPoolTest, UsesMoreThanOneThreadAndNoMoreThanAsked)
{
    std::mutex lock;
    std::condition_variable arrived;
    std::set<std::thread::id> threads;
    ThreadPool::Parallel_For(0, 64, 1, [&](int, int) {
        std::unique_lock guard(lock);
        threads.insert(std::this_thread::get_id());
        arrived.notify_all();
        // The first range waits for a second thread, however busy the machine is.
        arrived.wait_for(guard, std::chrono::seconds(GetParam() > 1 ? 20 : 0), [&] { return threads.size() > 1; });
    });
    EXPECT_EQ(threads.size() > 1, GetParam() > 1);
    EXPECT_LE(threads.size(), static_cast<size_t>(GetParam()));
    EXPECT_EQ(threads.count(std::this_thread::get_id()), 1u);
}

TEST_P(ThreadPoolTest, RunsInTheFloatingPointModeOfTheCaller)
{
    Init_Floating_Point_Mode();
    std::fesetround(FE_DOWNWARD);
    std::atomic<int> otherModes{0};
    ThreadPool::Parallel_For(0, 64, 1, [&](int, int) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        if (std::fegetround() != FE_DOWNWARD) ++otherModes;
    });
    std::fesetround(FE_TONEAREST);
    ThreadPool::Parallel_For(0, 64, 1, [&](int, int) {
        if (std::fegetround() != FE_TONEAREST) ++otherModes;
    });
    EXPECT_EQ(otherModes, 0);
}

INSTANTIATE_TEST_SUITE_P(Threads, ThreadPoolTest, testing::Values(1, 2, 4));

TEST(ThreadPoolWithout, RunsOnTheCaller)
{
    int count = 0;
    ThreadPool::Parallel_For(0, 10, 3, [&](int first, int last) { count += last - first; });
    EXPECT_EQ(count, 10);
}

TEST(FloatingPoint, TheModeRoundsToNearestAndKeepsDenormals)
{
    std::fesetround(FE_UPWARD);
    Init_Floating_Point_Mode();
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    volatile float least = std::numeric_limits<float>::min();
    EXPECT_GT(least / 2.0f, 0.0f);
    volatile float zero = 0.0f;
    EXPECT_FALSE(Is_Valid(1.0f / zero)); // a masked exception, not a signal
}

TEST(FloatingPoint, ValidMeansNoNaNAndNoInfinity)
{
    for (int component = 0; component < 4; ++component) {
        Vector4 vector(1.0f);
        vector[component] = std::numeric_limits<float>::quiet_NaN();
        EXPECT_FALSE(Is_Valid(vector));
        EXPECT_FALSE(Is_Valid(RGBAClass{vector.x, vector.y, vector.z, vector.w}));
        EXPECT_EQ(Is_Valid(Vector3(vector)), component == 3);
        EXPECT_EQ(Is_Valid(Vector2(vector)), component >= 2);
    }
}

} // namespace
