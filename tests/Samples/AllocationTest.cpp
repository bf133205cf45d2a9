#include "Samples/AllocationCount.h"
#include "Samples/SamplePlayer.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"

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

} // namespace
