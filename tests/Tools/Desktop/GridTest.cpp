#include "Code/ParticleData.h"
#include "Desktop/ParticleCellDelegate.h"
#include "Desktop/ParticleRowFilter.h"
#include "Tools/Desktop/DesktopFixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

/// Rows 0 and 1 belong to "fire", rows 2 and 3 to "smoke"; row 1 is heat, row 3 could be.
class Grid : public testing::Test
{
protected:
    Grid()
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("flames"), Heat_Layer("haze")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("puffs"), Old_Heat_Layer("shimmer")});
        tool.Open();
        tool.Scan();
    }
    /// A place on a slider, given as thousandths.
    QPoint On_Slider(int row, const char *property, int thousandths)
    {
        const QPoint center = tool.Center(row, property);
        const QRect track = ParticleCellDelegate::Get_Track(tool.Table().visualRect(tool.Cell(row, property)),
                                                            tool.Table().fontMetrics());
        return {track.left() + track.width() * thousandths / THOUSANDTHS, center.y()};
    }

    DesktopTool tool;
};

TEST_F(Grid, MouseAndKeyboardSelectAndMoveTheCurrentRow)
{
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("flames")) << "since the scan";
    EXPECT_EQ(tool.Label_Text("counts"), QString("4 layers of 2 effects \u00b7 1 selected"));
    tool.Click(1, "ParticleName");
    tool.Click(3, "ParticleName", Qt::ControlModifier);
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("haze", "shimmer"));
    EXPECT_EQ(tool.form->Get_Particle_Data_Source().Get_Position(), 3);
    tool.Click(2, "ParticleName");
    tool.Press_Key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("haze", "puffs"));
    EXPECT_EQ(tool.core->Get_Current_Emitter(), &tool.Row(0).Get_EmitterData());
    tool.Press_Key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(tool.Selected_Names().size(), 4u) << "whole effects";
}

TEST_F(Grid, ASliderDraggedInOneSelectedRowMovesAllAndKeepsTheSelection)
{
    tool.Click(0, "ParticleName");
    tool.Click(2, "ParticleName", Qt::ControlModifier);
    QWidget *viewport = tool.Table().viewport();
    const char *column = "DynamicLODFarDistancePerThousandth";
    QTest::mousePress(viewport, Qt::LeftButton, {}, On_Slider(0, column, 250));
    QTest::mouseMove(viewport, On_Slider(0, column, 500));
    QTest::mouseMove(viewport, On_Slider(0, column, 1000) + QPoint(300, 0));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, On_Slider(0, column, 1000));
    Let_Events_Run();
    EXPECT_EQ(tool.Row(0).Get_DynamicLODFarDistance(), 10000.0f);
    EXPECT_EQ(tool.Row(2).Get_DynamicLODFarDistance(), 10000.0f);
    EXPECT_EQ(tool.Row(1).Get_DynamicLODFarDistance(), 2000.0f) << "isn't selected";
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("flames", "puffs"));
    EXPECT_EQ(tool.Cell(1, "Modified").data().toString(), QString(QChar(0x25cf))) << "of the same emitter";
    EXPECT_TRUE(tool.form->Get_Actions().SaveAll->isEnabled());
    EXPECT_THAT(tool.Label_Text("counts").toStdString(), HasSubstr("2 effects modified"));
    EXPECT_TRUE(tool.form->isWindowModified());
}

/// A stray click must not cost a value that nothing brings back.
TEST_F(Grid, ASliderInAnUnselectedRowSelectsFirst)
{
    tool.Click(0, "ParticleName");
    const QPoint start = On_Slider(2, "MinimumDynamicLODPerThousandth", 0);
    QTest::mouseClick(tool.Table().viewport(), Qt::LeftButton, {}, start);
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("puffs"));
    EXPECT_EQ(tool.Row(2).Get_MinimumDynamicLOD(), 1.0f);
    QTest::mouseClick(tool.Table().viewport(), Qt::LeftButton, {}, start);
    EXPECT_EQ(tool.Row(2).Get_MinimumDynamicLOD(), 0.0f);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 1.0f);
}

TEST_F(Grid, TypedNumbersGoToTheSelection)
{
    tool.Click(0, "ParticleName");
    tool.Click(2, "ParticleName", Qt::ControlModifier);
    tool.Table().selectionModel()->setCurrentIndex(tool.Cell(2, "MinimumDynamicLODPerThousandth"),
                                                   QItemSelectionModel::NoUpdate);
    tool.Type("25");
    tool.Type("0\r");
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.25f);
    EXPECT_EQ(tool.Row(2).Get_MinimumDynamicLOD(), 0.25f);
    tool.Table().setFocus();
    tool.Press_Key(Qt::Key_Plus);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.251f);
    EXPECT_EQ(tool.Selected_Names().size(), 2u);
}

/// 0.251 of single precision is a little less, and reads as 250.
TEST_F(Grid, StepsGoOnFromWhatTheyWroteWhereReadingTruncates)
{
    tool.Click(0, "MinimumDynamicLODPerThousandth");
    tool.Row(0).Set_MinimumDynamicLOD(0.25f);
    tool.Press_Key(Qt::Key_Plus);
    tool.Press_Key(Qt::Key_Plus);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.252f);
    tool.Press_Key(Qt::Key_Minus);
    tool.Press_Key(Qt::Key_Minus);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 0.25f);
}

TEST_F(Grid, AnEditorThatWasOnlyOpenedOrHoldsAWrongNumberWritesNothing)
{
    tool.Click(0, "MinimumDynamicLOD");
    tool.Press_Key(Qt::Key_F2);
    ASSERT_EQ(QApplication::focusWidget()->objectName(), "cellEditor");
    tool.Press_Key(Qt::Key_Return);
    EXPECT_FALSE(tool.Row(0).Get_Modified());
    tool.Press_Key(Qt::Key_F2);
    tool.Type("1.5\r");
    EXPECT_FALSE(tool.Row(0).Get_Modified());
    EXPECT_EQ(tool.form->statusBar()->currentMessage(), "Least detail takes a number from 0 to 1, not \"1.5\"");
}

TEST_F(Grid, LevelsAreChosenFromAList)
{
    tool.Click(0, "GlobalLOD");
    tool.Press_Key(Qt::Key_F2);
    auto *box = qobject_cast<QComboBox *>(QApplication::focusWidget());
    ASSERT_TRUE(box);
    box->showPopup();
    QTest::keyClick(box->findChild<QAbstractItemView *>(), Qt::Key_Down);
    QTest::keyClick(box->findChild<QAbstractItemView *>(), Qt::Key_Down);
    QTest::keyClick(box->findChild<QAbstractItemView *>(), Qt::Key_Return);
    Let_Events_Run();
    EXPECT_EQ(tool.Row(0).Get_GlobalLOD(), GlobalLevelOfDetail::Medium);
}

TEST_F(Grid, ChecksToggleByMouseAndKeyWhereTheLayerHasTheSwitch)
{
    const bool before = tool.Row(0).Get_SceneLightingAdjustments();
    tool.Click(0, "SceneLightingAdjustments");
    EXPECT_EQ(tool.Row(0).Get_SceneLightingAdjustments(), !before);
    tool.Press_Key(Qt::Key_Return);
    EXPECT_EQ(tool.Row(0).Get_SceneLightingAdjustments(), before);
}

TEST_F(Grid, HeatValuesAreOnlyWrittenWhereThereIsHeat)
{
    EXPECT_FALSE(tool.Cell(0, "HeatDistortionScale").flags() & Qt::ItemIsEditable);
    EXPECT_TRUE(tool.Cell(1, "HeatDistortionScale").flags() & Qt::ItemIsEditable);
    tool.Click(0, "HeatDistortionScale");
    tool.Type("2\r");
    EXPECT_FALSE(tool.Row(0).Get_Modified());
    tool.Click(1, "HeatDistortionScale");
    tool.Type("2\r");
    EXPECT_EQ(tool.Row(1).Get_HeatDistortionScale(), 2.0f);
}

TEST_F(Grid, ConvertsTheCurrentRowAlone)
{
    tool.Click(0, "ParticleName");
    EXPECT_FALSE(tool.form->Get_Actions().Convert->isEnabled());
    tool.Click(3, "ParticleName");
    EXPECT_TRUE(tool.form->Get_Actions().Convert->isEnabled());
    tool.Press_Key(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(tool.Row(3).Get_UsesHeatVisualizer());
    EXPECT_FALSE(tool.form->Get_Actions().Convert->isEnabled());
}

TEST_F(Grid, TheFilterLooksAtEffectLayerAndPluginAndKeepsTheCoresOrder)
{
    const struct
    {
        const char *what;
        const char *words;
        std::vector<int> rows;
    } cases[] = {{"effect", "SMOKE", {2, 3}},
                 {"layer", "haz", {1}},
                 {"plugin", "heat and sat", {1}},
                 {"two words", "fire fla", {0}},
                 {"nothing has both", "fire puffs", {}},
                 {"blanks", "  ", {0, 1, 2, 3}}};
    tool.Press_Key(Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &tool.form->Get_Filter_Field());
    const auto &filter = *static_cast<const ParticleRowFilter *>(tool.Table().model());
    for (const auto &[what, words, rows] : cases) {
        tool.form->Get_Filter_Field().clear();
        tool.Type(words);
        std::vector<int> shown;
        for (int row = 0; row < tool.Table().model()->rowCount(); ++row) shown.push_back(filter.To_Source(row));
        EXPECT_EQ(shown, rows) << what;
        EXPECT_EQ(tool.form->findChild<QLabel *>("gridMessage")->isVisible(), rows.empty()) << what;
    }
    EXPECT_EQ((*tool.core->Get_Particle_List())[2]->Get_ParticleName(), "puffs");
}

TEST_F(Grid, AnEditReachesNoRowThatTheFilterHides)
{
    tool.Press_Key(Qt::Key_A, Qt::ControlModifier);
    ASSERT_EQ(tool.Selected_Names().size(), 4u);
    tool.form->Get_Filter_Field().setText("smoke");
    Let_Events_Run();
    EXPECT_THAT(tool.Selected_Names(), ElementsAre("puffs", "shimmer"));
    EXPECT_EQ(tool.form->Get_Particle_Data_Source().Get_Position(), 2);
    QTest::mouseClick(tool.Table().viewport(), Qt::LeftButton, {}, On_Slider(0, "MinimumDynamicLODPerThousandth", 0));
    EXPECT_EQ(tool.Row(2).Get_MinimumDynamicLOD(), 0.0f);
    EXPECT_EQ(tool.Row(3).Get_MinimumDynamicLOD(), 0.0f);
    EXPECT_EQ(tool.Row(0).Get_MinimumDynamicLOD(), 1.0f);
}

TEST_F(Grid, AHeadingOrdersWhatIsShownAndTheThirdClickGoesBack)
{
    tool.Click(1, "ParticleName");
    tool.Row(1).Set_MinimumDynamicLOD(0.5f);
    const auto order = [this] {
        std::string text;
        for (int row = 0; row < 4; ++row) text += tool.Cell(row, "ParticleName").data().toString()[0].toLatin1();
        return text;
    };
    QHeaderView *header = tool.Table().horizontalHeader();
    const auto click = [&] {
        const int x = header->sectionViewportPosition(Find_Particle_Column("MinimumDynamicLOD")) + 20;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() - 5));
    };
    click();
    EXPECT_EQ(order(), "hfps");
    click();
    EXPECT_EQ(order(), "fpsh");
    tool.Click(3, "ParticleName");
    EXPECT_EQ(tool.form->Get_Particle_Data_Source().Get_Position(), 1) << "the core's index";
    click();
    EXPECT_EQ(order(), "fhps");
}

TEST(GridColumns, AreKeptFromRunToRun)
{
    const int hidden = Find_Particle_Column("SaturationScale"), wide = Find_Particle_Column("ParticleName");
    {
        DesktopTool tool;
        tool.Open();
        tool.Table().setColumnHidden(hidden, true);
        tool.Table().setColumnWidth(wide, 234);
        tool.form->close();
    }
    DesktopTool tool;
    tool.Add_Emitter("fire.vro", {Plain_Layer("a")});
    tool.Open();
    EXPECT_TRUE(tool.Table().isColumnHidden(hidden));
    EXPECT_EQ(tool.Table().columnWidth(wide), 234);
    tool.Scan();
    EXPECT_EQ(tool.Table().columnWidth(wide), 234) << "a scan fits the others";
    tool.Table().Restore_Columns("not a state");
    EXPECT_TRUE(tool.Table().isColumnHidden(hidden));
}

} // namespace
