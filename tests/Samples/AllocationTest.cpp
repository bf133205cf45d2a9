#include "Samples/AllocationCount.h"
#include "Samples/SamplePlayer.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

TEST(AllocationCount, CountsWhatContainersAndBuffersTake)
{
    size_t before = MKTest::Get_Allocation_Count();
    std::vector<int>().reserve(100);
    EXPECT_GT(MKTest::Get_Allocation_Count(), before);
    before = MKTest::Get_Allocation_Count();
    const SmartPtr<vrMKPBuffer> buffer(vrMKPBuffer::Create(100, "layer"));
    EXPECT_GT(MKTest::Get_Allocation_Count(), before);
}

class SampleAllocation : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Samples, SampleAllocation, testing::ValuesIn(MKTest::Sample_Files()),
                         [](const auto &info) { return MKTest::Sample_Name(info.param); });

TEST_P(SampleAllocation, HasNoneAfterTheFirstSecond)
{
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(1);
    MKTest::SamplePlayer player(GetParam());
    player.Run_Seconds(1.0f);
    for (int frame = 31; frame <= 150; ++frame) {
        const size_t before = MKTest::Get_Allocation_Count();
        player.Run_Frame();
        const size_t taken = MKTest::Get_Allocation_Count() - before;
        EXPECT_EQ(taken, 0u) << "allocations in frame " << frame;
    }
}

/// On the driver that runs tasks and draws nothing. A layer makes room when it first draws, which may be late, so that
/// it is the second run that counts.
TEST_P(SampleAllocation, ItsRendersHaveNoneOnceAllLayersHaveDrawn)
{
    Init_Floating_Point_Mode();
    ThreadPool::System_Init(1);
    vrNullDriverMethods::Set_Runs_Tasks(true);
    ASSERT_TRUE(vrNullDriverMethods::Init(nullptr, 640, 480));
    {
        MKTest::SamplePlayer player(GetParam());
        const SmartPtr<vrCamera> camera(new vrCamera);
        camera->Set_Depth_Range(5.0f, 10000.0f);
        camera->Set_Transform(Mat3DClass::Look_At({0.0f, -500.0f, 200.0f}, Vector3(0.0f)));
        for (int frame = 1; frame <= 300; ++frame) {
            if (frame == 151) player.Restart();
            player.Run_Frame();
            const size_t before = MKTest::Get_Allocation_Count();
            TheGraphicsDriver->Begin_Frame();
            player.Get_Scene().Render(camera.Get(), VR_RENDER_MODE_NORMAL, false);
            TheGraphicsDriver->End_Frame();
            TheGraphicsDriver->Page_Flip(true);
            const size_t taken = MKTest::Get_Allocation_Count() - before;
            if (frame <= 180) continue;
            EXPECT_EQ(taken, 0u) << "allocations in frame " << frame;
        }
    }
    vrNullDriverMethods::Shutdown();
    vrNullDriverMethods::Set_Runs_Tasks(false);
}

} // namespace
