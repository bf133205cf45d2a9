#include "Code/ParticleData.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKParticle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;

namespace
{

/// Rows 0 and 1 belong to "fire", 2 and 3 to "smoke", 4 to "spark".
class ChangeTracking : public testing::Test
{
protected:
    ChangeTracking()
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("a"), Plain_Layer("b")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("c"), Plain_Layer("d")});
        tool.Add_Emitter("spark.vro", {Plain_Layer("e")});
        tool.Scan();
    }

    Tool tool;
};

TEST_F(ChangeTracking, AnEditOfARowThatIsNotSelectedMarksTheSelection)
{
    tool.Select({4});
    tool.form->Get_Particle_Data_Source().Set_Position(0);
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("spark"));
    EXPECT_EQ(tool.Row(4).Get_GlobalLOD(), GlobalLevelOfDetail::Low);
}

TEST_F(ChangeTracking, AnEditReachesARunningLayer)
{
    vrMKParticle &particle = *tool.Row(4).Get_Particle();
    particle.Set_Buffer(vrMKPBuffer::Create(1, "test"));
    tool.Select({4});
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "2"));
    ASSERT_TRUE(tool.form->Edit_Current("MinimumDynamicLOD", "0.5"));
    ASSERT_TRUE(tool.form->Edit_Current("DynamicLODNearDistance", "12"));
    ASSERT_TRUE(tool.form->Edit_Current("DynamicLODFarDistance", "34"));
    const vrMKPBuffer &buffer = *particle.Get_Buffer();
    EXPECT_EQ(buffer.GlobalLOD, 2);
    EXPECT_EQ(buffer.MinDynamicLOD, 0.5f);
    EXPECT_EQ(buffer.DynamicLODNear, 12.0f);
    EXPECT_EQ(buffer.DynamicLODFar, 34.0f);
}

} // namespace
