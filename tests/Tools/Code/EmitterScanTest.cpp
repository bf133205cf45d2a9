#include "Code/ParticleData.h"
#include "Tools/Code/ToolFixture.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;

namespace
{

std::vector<std::string> Row_Names(Tool &tool)
{
    std::vector<std::string> names;
    for (int row = 0; row < tool.Row_Count(); ++row)
        names.push_back(tool.Row(row).Get_EmitterName() + "/" + tool.Row(row).Get_ParticleName());
    return names;
}

TEST(EmitterScan, ListsALayerARowInTheOrderOfTheFiles)
{
    Tool tool;
    tool.Add_Emitter("smoke.vro", {Plain_Layer("column")});
    tool.Add_Emitter("fire.vro", {Plain_Layer("flames"), Plain_Layer("embers")});
    tool.directory.Make_Directory("game/Art/Models/sub");
    tool.Add_Emitter("sub/hidden.vro", {Plain_Layer("hidden")});
    tool.directory.Write("game/Art/Models/readme.txt", "no effect");
    tool.Scan();
    EXPECT_THAT(Row_Names(tool), ElementsAre("fire/flames", "fire/embers", "smoke/column"));
}

TEST(EmitterScan, WhatIsNoEmitterIsSkippedWithoutAWordAndOneWithoutGroupsHasNoRow)
{
    Tool tool;
    Write_Model(tool.Model_Path("tank.vro"));
    tool.directory.Write("game/Art/Models/empty.vro", "");
    tool.directory.Write("game/Art/Models/text.vro", "not a chunk file");
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    emitter->Add_Renderable(SmartPtr<vrMKPModel>(new vrMKPModel).Get());
    Write_Emitter(tool.Model_Path("stone.vro"), *emitter);
    EXPECT_TRUE(tool.core.Scan_Emitter_Files());
    EXPECT_EQ(tool.core.Get_Emitter_List()->size(), 1u);
    EXPECT_EQ(tool.Row_Count(), 0);
    EXPECT_TRUE(tool.application.Get_Message_Boxes().empty());
}

TEST(EmitterScan, ADamagedEmitterEndsTheScanUntilTheNextOne)
{
    Tool tool;
    tool.Add_Emitter("a.vro", {Plain_Layer()});
    tool.Scan();
    // An emitter's root that promises more than the file has.
    {
        FileClass file(tool.Model_Path("b.vro"));
        ChunkFileWriterClass writer(&file, 128, 0, false);
        ASSERT_TRUE(Make_Emitter({Plain_Layer()})->Save(&writer) && writer.Close());
    }
    const MKTest::Bytes whole = MKTest::Read_Whole_File(tool.Model_Path("b.vro"));
    MKTest::Write_Whole_File(tool.Model_Path("b.vro"), whole.data(), whole.size() / 2);

    EXPECT_FALSE(tool.core.Scan_Emitter_Files());
    EXPECT_EQ(tool.Row_Count(), 0);
    EXPECT_FALSE(tool.form->Are_Settings_Controls_Enabled());
    EXPECT_EQ(tool.core.Get_Emitter_List()->size(), 1u) << "what was loaded before stays";
    EXPECT_TRUE(tool.reports.Has_Log("b.vro")) << tool.reports.Get_Text();
    EXPECT_THAT(tool.form->Get_Scan_Failure(), testing::HasSubstr("b.vro is an emitter file that can't be loaded"));
    EXPECT_TRUE(tool.application.Get_Message_Boxes().empty());

    std::filesystem::remove(tool.Model_Path("b.vro"));
    tool.Scan();
    EXPECT_EQ(tool.Row_Count(), 1);
    EXPECT_TRUE(tool.form->Are_Settings_Controls_Enabled());
    // The handlers stand again, and once.
    tool.Select({0});
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    EXPECT_THAT(tool.Modified_Names(), ElementsAre("a"));
}

TEST(EmitterScan, NamesThatDifferInCaseAloneStayFilesOfTheirOwn)
{
    // The later one once showed the earlier one's layers, and a save wrote those over it.
    Tool tool;
    // Made by the system itself: to the engine a new name is that of the file which is there.
    for (const char *name : {"FIRE.vro", "fire.vro"}) tool.directory.Write(std::string("game/Art/Models/") + name, "");
    tool.Add_Emitter("FIRE.vro", {Plain_Layer("upper")});
    tool.Add_Emitter("fire.vro", {Plain_Layer("lower")});
    tool.Scan();
    ASSERT_THAT(Row_Names(tool), ElementsAre("FIRE/upper", "fire/lower"));
    EXPECT_TRUE(tool.reports.Has_Log(tool.Model_Path("fire.vro") + " and the file of emitter FIRE"));
    tool.Select({0, 1});
    ASSERT_TRUE(tool.form->Edit_Current("GlobalLOD", "1"));
    EXPECT_TRUE(tool.form->Click_Save_All());
    tool.Scan();
    EXPECT_THAT(Row_Names(tool), ElementsAre("FIRE/upper", "fire/lower"));
    for (const int row : {0, 1}) EXPECT_EQ(tool.Row(row).Get_GlobalLOD(), GlobalLevelOfDetail::Low);
}

TEST(EmitterScan, RowsOutliveTheListThatTheyCameFrom)
{
    Tool tool;
    tool.Add_Emitter("fire.vro", {Plain_Layer()});
    tool.Scan();
    const std::shared_ptr<ParticleData> row = tool.form->Get_Particle_Data_Source().Get_Current();
    tool.Scan();
    EXPECT_EQ(row->Get_EmitterName(), "fire");
    EXPECT_NE(row.get(), &tool.Row(0));
}

} // namespace
