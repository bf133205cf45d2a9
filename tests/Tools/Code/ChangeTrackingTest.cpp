#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKParticle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// Notes the rows that were reset, whoever asked for it.
struct ResetRecorder
{
    explicit ResetRecorder(BindingSource &bindingSource) : source(bindingSource)
    {
        source.ListChanged.Subscribe<&ResetRecorder::Note>(this);
    }
    ~ResetRecorder() { source.ListChanged.Unsubscribe<&ResetRecorder::Note>(this); }
    void Note(Sender, const ListChangedEventArgs &args) { rows.push_back(args.NewIndex); }

    BindingSource &source;
    std::vector<int> rows;
};

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

TEST_F(ChangeTracking, AnEditMarksTheEmitterOfEachSelectedRowOnce)
{
    tool.Select({0, 1, 2});
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire", "smoke"));
    EXPECT_TRUE(tool.form->Is_Save_All_Button_Enabled());
    for (int row = 0; row < 5; ++row) EXPECT_EQ(tool.Row(row).Get_Modified(), row < 4) << row;
    EXPECT_EQ(tool.form->Get_Particle_Grid_View().Get_Refresh_Count(), 1);

    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "2"));
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire", "smoke"));
    EXPECT_EQ(tool.form->Get_Particle_Grid_View().Get_Refresh_Count(), 2);
}

TEST_F(ChangeTracking, OnlyTheEditedRowsEmitterGetsItsRowsReset)
{
    tool.Select({1, 2});
    ResetRecorder recorder(tool.form->Get_Particle_Data_Source());
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    // The edit of row 1, seen ahead of what it leads to or after it, and the run of "fire" for each of the two
    // emitters.
    std::sort(recorder.rows.begin(), recorder.rows.end());
    EXPECT_THAT(recorder.rows, ElementsAre(0, 0, 1, 1, 1));
}

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
