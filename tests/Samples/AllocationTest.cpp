#include "Samples/AllocationCount.h"
#include "Samples/SamplePlayer.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

TEST(AllocationCount, CountsWhatABufferTakes)
{
    const size_t before = MKTest::Get_Allocation_Count();
    if (before == 0) GTEST_SKIP() << "a sanitizer has the allocator";
    const SmartPtr<vrMKPBuffer> buffer(vrMKPBuffer::Create(100, "layer"));
    EXPECT_GT(MKTest::Get_Allocation_Count(), before);
}

class SampleAllocation : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Samples, SampleAllocation, testing::ValuesIn(MKTest::Sample_Files()),
                         [](const auto &info) { return MKTest::Sample_Name(info.param); });

/// Twice the same, on the driver that runs tasks and draws nothing. A layer makes room when it first draws, which may
/// be late, so that it is the second time that counts for what is drawn.
TEST_P(SampleAllocation, HasNoneInTheSteadyState)
{
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(1);
    vrNullDriverMethods::Set_Runs_Tasks(true);
    ASSERT_TRUE(vrNullDriverMethods::Init(nullptr, 640, 480));
    auto player = std::make_unique<MKTest::SamplePlayer>(GetParam());
    for (int frame = 1; frame <= 300; ++frame) {
        if (frame == 151) player->Restart();
        const size_t before = MKTest::Get_Allocation_Count();
        player->Run_Frame();
        const size_t between = MKTest::Get_Allocation_Count();
        player->Draw();
        const size_t after = MKTest::Get_Allocation_Count();
        EXPECT_TRUE(between == before || frame <= 30 || frame == 151) << "the simulation allocates in frame " << frame;
        EXPECT_TRUE(after == between || frame <= 180) << "the drawing allocates in frame " << frame;
    }
    player.reset();
    vrNullDriverMethods::Shutdown();
    vrNullDriverMethods::Set_Runs_Tasks(false);
}

} // namespace
