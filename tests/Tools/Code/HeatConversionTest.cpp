#include "Code/ParticleData.h"
#include "Code/VisualizerParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKParticle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;

namespace
{

class HeatConversion : public testing::Test
{
protected:
    HeatConversion()
    {
        tool.Add_Emitter("fire.vro", {Old_Heat_Layer(), Plain_Layer(), Heat_Layer()});
        tool.Scan();
        tool.Select({0});
    }
    vrMKPVisualizer &Visualizer(int row) { return *tool.Row(row).Get_Particle()->Get_Visualizer(); }

    Tool tool;
};

TEST_F(HeatConversion, WhatBothVisualizersHaveGoesAcross)
{
    // Each Boolean away from the heat visualizer's default, so that a value that is not copied shows.
    const char *const names[] = {"Normal Render Mode",     "Reflection Render Mode", "Refraction Render Mode",
                                 "Shadow-map Render Mode", "Disable Depth Test",     "Sort"};
    vrMKPVisualizer &heat = Visualizer(2);
    for (const char *name : names)
        Find_Bool_Parameter(Visualizer(0), name)->Set_Value(!Find_Bool_Parameter(heat, name)->Get_Value());
    Find_String_Parameter(Visualizer(0), "Texture Name")->Set_Value("p_shimmer.tga");
    Find_String_Parameter(Visualizer(0), "Shader Name")->Set_Value("ParticleBillboardHEAT.fx");

    ASSERT_TRUE(tool.form->Click_Convert_To_Heat());
    EXPECT_EQ(Visualizer(0).Get_Plugin_Class(), kvrMKPHeatAndSaturationVisualizer);
    for (const char *name : names)
        EXPECT_NE(Find_Bool_Parameter(Visualizer(0), name)->Get_Value(), Find_Bool_Parameter(heat, name)->Get_Value())
            << name;
    EXPECT_EQ(Find_String_Parameter(Visualizer(0), "Texture Name")->Get_Value(), "p_shimmer.tga");
    EXPECT_EQ(Find_String_Parameter(Visualizer(0), "Shader Name")->Get_Value(), "ParticleBillboardHEAT.fx");
}

TEST_F(HeatConversion, OnlyTheCurrentRowIsConverted)
{
    tool.Add_Emitter("smoke.vro", {Old_Heat_Layer()});
    tool.Scan();
    tool.Select({0, 3});
    ASSERT_TRUE(tool.form->Click_Convert_To_Heat());
    EXPECT_TRUE(tool.Row(0).Get_UsesHeatVisualizer());
    EXPECT_FALSE(tool.Row(3).Get_UsesHeatVisualizer());
    // The reset of the row marks every selected row's emitter.
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("fire", "smoke"));
}

TEST_F(HeatConversion, WithoutACurrentRowNothingHappens)
{
    tool.form->Get_Particle_Data_Source().Clear();
    tool.core.Convert_To_Heat_Button_Click(nullptr, EventArgs());
    EXPECT_TRUE(tool.Modified_Names().empty());
}

} // namespace
