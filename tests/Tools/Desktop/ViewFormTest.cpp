#include "Code/EmitterData.h"
#include "Code/ParticleData.h"
#include "Desktop/DesktopSceneViewForm.h"
#include "Desktop/DesktopViewPanel.h"
#include "Tools/Code/RecordingPreview.h"
#include "Tools/Desktop/DesktopFixture.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ToolTest;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

/// The tool with a device, both windows open, and two effects.
class View : public testing::Test
{
protected:
    View() : tool(std::make_unique<RecordingPreview>(record))
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("a")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("b")});
        tool.Open();
        tool.Scan();
        record.Take();
    }
    DesktopSceneViewForm &Form() { return *tool.application.Get_View_Form(); }
    ApplicationSettings &Settings() { return tool.core->Get_Settings(); }
    /// What the preview was told while the timer had time to tick.
    std::vector<std::string> Calls_Of_A_While()
    {
        record.Take();
        Let_Events_Run(60);
        return record.Take();
    }
    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button)
    {
        QWindow *window = Form().Get_Panel().windowHandle();
        QCursor::setPos(Form().Get_Panel().mapToGlobal(position));
        if (type == QEvent::MouseButtonPress) QTest::mousePress(window, button, {}, position);
        if (type == QEvent::MouseButtonRelease) QTest::mouseRelease(window, button, {}, position);
        if (type == QEvent::MouseMove) QTest::mouseMove(window, position);
        Let_Events_Run();
    }

    PreviewRecord record;
    DesktopTool tool;
};

TEST_F(View, FollowsTheCurrentRowUntilItsCloseBoxHidesItAndTurnsTheToggleOff)
{
    EXPECT_TRUE(Form().isVisible() && tool.form->Get_Preview());
    EXPECT_THAT(Calls_Of_A_While(), Contains("update"));
    EXPECT_FALSE(Form().close());
    EXPECT_FALSE(Form().isVisible());
    EXPECT_FALSE(tool.form->Get_Preview());
    EXPECT_THAT(Calls_Of_A_While(), IsEmpty()) << "no timer runs for a window that is hidden";
    tool.Click(1, "ParticleName");
    EXPECT_THAT(record.Take(), Not(Contains("add smoke"))) << "a selection waits for the toggle";
    tool.form->Get_Actions().Preview->trigger();
    EXPECT_TRUE(Form().isVisible());
    EXPECT_THAT(record.Take(), Contains("add smoke"));
}

TEST_F(View, MinimisingTheMainWindowStopsItAndRestoringGoesOn)
{
    tool.form->showMinimized();
    Let_Events_Run();
    EXPECT_FALSE(Form().isVisible());
    EXPECT_THAT(Calls_Of_A_While(), IsEmpty());
    tool.form->showNormal();
    Let_Events_Run();
    EXPECT_TRUE(Form().isVisible());
    EXPECT_THAT(Calls_Of_A_While(), Not(Contains(StartsWith("add"))));
}

TEST_F(View, MinimisedItNeitherSimulatesNorDrawsAndGoesOnWithoutAJump)
{
    Form().showMinimized();
    Let_Events_Run();
    EXPECT_THAT(Calls_Of_A_While(), IsEmpty());
    record.steps.clear();
    Form().showNormal();
    EXPECT_THAT(Calls_Of_A_While(), Contains("update"));
    ASSERT_FALSE(record.steps.empty());
    EXPECT_EQ(record.steps.front(), 0.0f);
}

TEST_F(View, TogglesFlipTheSettings)
{
    const ViewFormActions &actions = Form().Get_Actions();
    actions.Axes->trigger();
    actions.Heat->trigger();
    EXPECT_TRUE(!Settings().RenderAxes && Settings().RenderBackground);
    EXPECT_TRUE(!Settings().EnableHeat && Settings().EnableBloom);
    for (QAction *action : {actions.Axes, actions.Background, actions.Heat, actions.Bloom}) action->trigger();
    EXPECT_TRUE(Settings().RenderAxes && !Settings().RenderBackground);
    EXPECT_TRUE(Settings().EnableHeat && !Settings().EnableBloom);
    EXPECT_TRUE(actions.Axes->isChecked() && !actions.Bloom->isChecked());
    actions.Ground->trigger();
    actions.Target->trigger();
    for (const char *call : {"heat off", "bloom off", "ground on", "target on"})
        EXPECT_THAT(record.calls, Contains(call));
}

TEST_F(View, TheViewModeIsAppliedWhenTheUserPicksIt)
{
    vrMKPSpawner::Set_Global_LOD_Level(4);
    auto *modes = Form().findChild<QComboBox *>("viewMode");
    modes->setFocus();
    QTest::keyClick(modes, Qt::Key_Home);
    EXPECT_EQ(Settings().ViewMode, 0);
    EXPECT_EQ(vrMKPSpawner::Get_Global_LOD(), 0);
    vrMKPSpawner::Set_Global_LOD_Level(4);
}

TEST_F(View, ADragTurnsTheCameraAndTheWheelMovesItAway)
{
    const QPoint middle = Form().Get_Panel().rect().center();
    Mouse(QEvent::MouseButtonPress, middle, Qt::LeftButton);
    EXPECT_THAT(record.Take(), Contains("rotate begin"));
    Mouse(QEvent::MouseMove, middle + QPoint(Form().Get_Panel().width() / 4, 0), Qt::NoButton);
    EXPECT_THAT(record.Take(), Contains(StartsWith("move 0.")));
    Mouse(QEvent::MouseButtonRelease, middle, Qt::LeftButton);
    EXPECT_THAT(record.Take(), Contains("rotate end"));

    QWheelEvent wheel(middle, Form().Get_Panel().mapToGlobal(middle), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Form().Get_Panel(), &wheel);
    EXPECT_EQ(record.cameraDistance, 550.0f + 2 * 1200.0f);
    Let_Events_Run(200);
    EXPECT_THAT(Form().findChild<QLabel *>("counters")->text().toStdString(), StartsWith("Distance 2950"));
}

TEST_F(View, AResizeReachesTheDevice)
{
    Form().resize(700, 600);
    Let_Events_Run();
    const DesktopViewPanel &panel = Form().Get_Panel();
    EXPECT_THAT(record.Take(), Contains(std::to_string(panel.Get_Width()) + "x" + std::to_string(panel.Get_Height())));
}

TEST_F(View, SpacePausesFromEitherWindowAndAStepGoesOneOn)
{
    Activate(Form());
    QTest::keyClick(&Form(), Qt::Key_Space);
    EXPECT_TRUE(Form().Get_Actions().Pause->isChecked());
    EXPECT_THAT(Calls_Of_A_While(), testing::AllOf(Not(Contains("update")), Contains(StartsWith("render"))));
    Form().Get_Actions().Step->trigger();
    const std::vector<std::string> calls = Calls_Of_A_While();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "update"), 1);
    Activate(*tool.form);
    tool.Table().setFocus();
    tool.Press_Key(Qt::Key_Space);
    EXPECT_FALSE(Form().Get_Actions().Pause->isChecked());
    EXPECT_THAT(Calls_Of_A_While(), Contains("update"));
}

TEST_F(View, StatisticsLieOverThePanelOnDemand)
{
    auto *overlay = Form().findChild<QLabel *>("statistics");
    EXPECT_FALSE(overlay->isVisible());
    Form().Get_Actions().Statistics->trigger();
    Let_Events_Run(250);
    EXPECT_TRUE(overlay->isVisible());
    EXPECT_TRUE(overlay->text().contains("simulated          70")) << overlay->text().toStdString();
}

TEST_F(View, ItsPlacementIsKeptOnClosing)
{
    Form().move(60, 50);
    Form().resize(640, 480);
    Let_Events_Run();
    tool.form->close();
    EXPECT_EQ(Settings().ViewFormLocation, (Point{60, 50}));
    EXPECT_EQ(Settings().ViewFormSize, (Size{640, 480}));
    EXPECT_EQ(tool.application.Get_View_Form(), nullptr);
}

TEST(ViewAlone, ItsCloseBoxHidesItAheadOfTheMainWindow)
{
    PreviewRecord record;
    DesktopTool tool(std::make_unique<RecordingPreview>(record));
    ASSERT_TRUE(tool.application.Get_View_Form()->isVisible());
    EXPECT_FALSE(tool.application.Get_View_Form()->close());
    EXPECT_FALSE(tool.application.Get_View_Form()->isVisible());
}

} // namespace
