#include "Code/ParticleData.h"
#include "Desktop/SelectionPanel.h"
#include "Tools/Desktop/DesktopFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

using namespace ToolTest;

namespace
{

/// Two plain layers of "fire" and a heat layer of "smoke", with near distances 100, 300 and 300.
class Panel : public testing::Test
{
protected:
    Panel()
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("a"), Plain_Layer("b")});
        tool.Add_Emitter("smoke.vro", {Heat_Layer("c")});
        tool.Open();
        tool.Scan();
        tool.Row(0).Set_DynamicLODNearDistance(100.0f);
        tool.Click(1, "ParticleName");
        tool.Row(1).Set_DynamicLODNearDistance(300.0f);
        tool.Click(2, "ParticleName");
        tool.Row(2).Set_DynamicLODNearDistance(300.0f);
    }
    void Select(std::vector<int> rows)
    {
        tool.Table().Select_Source_Rows(rows);
        Let_Events_Run();
    }
    QLineEdit &Line(const char *property) { return *tool.form->findChild<QLineEdit *>(property); }
    template <typename Widget>
    Widget &Field(const char *property)
    {
        return *tool.form->findChild<Widget *>(property);
    }

    DesktopTool tool;
};

TEST_F(Panel, ShowsOneValueWhereTheRowsAgreeAndTheRangeWhereTheyDoNot)
{
    Select({1, 2});
    EXPECT_EQ(Line("DynamicLODNearDistance").text(), "300");
    EXPECT_EQ(tool.Label_Text("selectionTitle"), "2 layers of 2 effects");
    Select({0, 1, 2});
    EXPECT_EQ(Line("DynamicLODNearDistance").text(), "");
    EXPECT_EQ(Line("DynamicLODNearDistance").placeholderText(), QString("100\u2013300"));
    EXPECT_FALSE(tool.Row(0).Get_Modified() || tool.Row(2).Get_Modified()) << "showing writes nothing";
}

/// 0.251 of single precision is a little less, and reads as 250.
TEST_F(Panel, ASliderGoesToAllOfTheSelectionAndOnFromWhatItWrote)
{
    Select({0, 2});
    tool.Row(0).Set_MinimumDynamicLOD(0.25f);
    Select({1});
    QSlider &slider = Field<QSlider>("MinimumDynamicLODPerThousandth");
    EXPECT_EQ(slider.value(), 1000);
    Select({0, 2});
    slider.setFocus();
    for (int step = 0; step < 2; ++step) {
        QTest::keyClick(&slider, Qt::Key_Right);
        Let_Events_Run();
    }
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.252f);
    EXPECT_EQ(tool.Row(2).Get_MinimumDynamicLOD(), 0.252f);
    EXPECT_EQ(tool.Row(1).Get_MinimumDynamicLOD(), 1.0f);
}

TEST_F(Panel, HeatIsEditedThroughTheRowThatHasItWhateverRowIsCurrent)
{
    Select({0, 2});
    ASSERT_EQ(tool.form->Get_Particle_Data_Source().Get_Position(), 0);
    QLineEdit &line = Line("HeatDistortionScale");
    ASSERT_TRUE(line.isEnabled());
    line.setFocus();
    line.selectAll();
    QTest::keyClicks(&line, "1.5");
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(tool.Row(2).Get_HeatDistortionScale(), 1.5f);
    Select({0});
    EXPECT_FALSE(line.isEnabled());
}

TEST_F(Panel, LevelsAndLightingShowThatTheyAreMixed)
{
    tool.Click(2, "ParticleName");
    tool.Row(2).Set_GlobalLOD(GlobalLevelOfDetail::High);
    Select({0, 1, 2});
    QComboBox &level = Field<QComboBox>("GlobalLOD");
    EXPECT_EQ(level.currentIndex(), -1);
    EXPECT_EQ(level.placeholderText(), "mixed");
    level.setFocus();
    QTest::keyClick(&level, Qt::Key_Down);
    Let_Events_Run();
    for (int row = 0; row < 3; ++row) EXPECT_EQ(tool.Row(row).Get_GlobalLOD(), GlobalLevelOfDetail::Lowest);
    QCheckBox &lighting = Field<QCheckBox>("SceneLightingAdjustments");
    const bool before = tool.Row(0).Get_SceneLightingAdjustments();
    Select({0});
    QTest::mouseClick(&lighting, Qt::LeftButton, {}, QPoint(8, lighting.height() / 2));
    Let_Events_Run();
    EXPECT_EQ(tool.Row(0).Get_SceneLightingAdjustments(), !before);
    Select({0, 1});
    EXPECT_EQ(lighting.checkState(), Qt::PartiallyChecked);
}

} // namespace
