#include "Code/ParticleData.h"
#include "Code/RunTool.h"
#include "MKLib/File/File.h"
#include "Desktop/DesktopProgressDialog.h"
#include "Tools/Code/FakeP4.h"
#include "Tools/Desktop/DesktopFixture.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QStatusBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

using namespace ToolTest;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

class Form : public testing::Test
{
protected:
    Form()
    {
        tool.Add_Emitter("fire.vro", {Plain_Layer("a")});
        tool.Add_Emitter("smoke.vro", {Plain_Layer("b")});
        tool.Open();
        tool.Scan();
    }
    /// By keyboard: the level of a row, from Lowest one up.
    void Edit(int row)
    {
        tool.Click(row, "DynamicLODNearDistance");
        tool.Type("7\r");
        ASSERT_TRUE(tool.Row(row).Get_Modified());
    }
    float Saved_Near(const char *file)
    {
        const SmartPtr<vrMKParticleEmitter> emitter = Read_Emitter(tool.Model_Path(file));
        const SmartPtr<vrMKPRenderable> renderable = emitter->Get_Particle_Renderable(0);
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get());
        return group->Get_Particle(0)->Get_Spawner()->Get_Dynamic_LOD_Near();
    }

    DesktopTool tool;
    QStringList messages;
};

TEST_F(Form, SaveWritesTheSelectionAndSaveAllTheRest)
{
    Edit(0);
    Edit(1);
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Saved_Near("smoke.vro"), 7.0f);
    EXPECT_NE(Saved_Near("fire.vro"), 7.0f);
    EXPECT_THAT(tool.form->statusBar()->currentMessage().toStdString(), HasSubstr("1 effect still to be saved"));
    EXPECT_TRUE(tool.form->Get_Actions().SaveAll->isEnabled());
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Saved_Near("fire.vro"), 7.0f);
    EXPECT_FALSE(tool.form->Get_Actions().SaveAll->isEnabled());
    EXPECT_FALSE(tool.form->isWindowModified());
}

TEST_F(Form, SaveTakesWhatIsStillBeingTyped)
{
    tool.Click(0, "DynamicLODNearDistance");
    tool.Type("9");
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Saved_Near("fire.vro"), 9.0f);
}

TEST_F(Form, AReadOnlyFileIsCheckedOutAndTheWindowSaysWhatItWaitsFor)
{
    const FakeP4 p4(tool.directory, MAKE_WRITABLE);
    QObject::connect(tool.form->statusBar(), &QStatusBar::messageChanged, tool.form.get(),
                     [this](const QString &text) { messages << text; });
    Edit(0);
    Set_Read_Only(tool.Model_Path("fire.vro"), true);
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(p4.Calls(), "[edit][" + tool.Model_Path("fire.vro") + "]\n");
    EXPECT_EQ(Saved_Near("fire.vro"), 7.0f);
    EXPECT_TRUE(messages.contains(QString::fromStdString("Waiting for p4 edit " + tool.Model_Path("fire.vro"))));
    EXPECT_FALSE(QGuiApplication::overrideCursor());
}

TEST_F(Form, ACheckOutThatIsRefusedOrDeclinedLeavesAllAsItWas)
{
    const FakeP4 p4(tool.directory, REFUSE);
    Edit(0);
    Set_Read_Only(tool.Model_Path("fire.vro"), true);
    {
        BoxAnswers answers("Cancel");
        tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
        EXPECT_THAT(answers.texts, ElementsAre(HasSubstr("Unable to check out file.\nMake sure")));
    }
    tool.form->Get_Actions().AutoCheckout->trigger();
    BoxAnswers answers("No");
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(answers.texts, ElementsAre("Checkout 'fire' from perforce?"));
    EXPECT_EQ(p4.Calls(), "[edit][" + tool.Model_Path("fire.vro") + "]\n") << "once";
    EXPECT_TRUE(tool.Row(0).Get_Modified());
}

TEST_F(Form, ClosingAndScanningWithUnsavedChangesAsk)
{
    Edit(0);
    {
        BoxAnswers answers("No");
        EXPECT_FALSE(tool.form->close());
        tool.Scan();
        ASSERT_EQ(answers.texts.size(), 2u);
        EXPECT_THAT(answers.texts[0], HasSubstr("Continue Closing Anyway?"));
    }
    EXPECT_TRUE(tool.form->isVisible());
    EXPECT_EQ(tool.Row(0).Get_DynamicLODNearDistance(), 7.0f);
    BoxAnswers answers("Yes");
    tool.Scan();
    EXPECT_NE(tool.Row(0).Get_DynamicLODNearDistance(), 7.0f);
    EXPECT_FALSE(tool.form->isWindowModified());
    Edit(0);
    EXPECT_TRUE(tool.form->close());
    EXPECT_EQ(answers.texts.size(), 2u);
    EXPECT_THAT(MKTest::Read_Text_File("FlareTrimSettings.xml"), HasSubstr("<MainFormLocationSet>true<"));
}

TEST_F(Form, AFailedScanSaysWhyAndAnotherOneBringsTheGridBack)
{
    {
        FileClass holder(tool.Model_Path("smoke.vro"));
        ASSERT_TRUE(holder.Open(MKPlatform::FILE_OPEN_EXCLUSIVE_READ));
        tool.Scan();
    }
    EXPECT_TRUE(tool.reports.Has_Log(tool.Model_Path("smoke.vro") + " can't be opened: Device or resource busy"));
    EXPECT_EQ(tool.form->Get_Model().Get_Count(), 0);
    EXPECT_FALSE(tool.form->Get_Actions().Save->isEnabled());
    EXPECT_THAT(tool.Label_Text("gridMessage").toStdString(), HasSubstr("smoke.vro"));
    EXPECT_TRUE(tool.form->findChild<QLabel *>("gridMessage")->isVisible());
    tool.Scan();
    EXPECT_EQ(tool.form->Get_Model().Get_Count(), 2);
    EXPECT_FALSE(tool.form->findChild<QLabel *>("gridMessage")->isVisible());
    Edit(0);
}

TEST_F(Form, BrowsingChoosesAnotherDirectoryAndScansNothing)
{
    const std::string other = tool.directory.Make_Directory("other");
    QTimer::singleShot(0, [&] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        dialog->findChild<QLineEdit *>("fileNameEdit")->setText(QString::fromStdString(other));
        static_cast<QDialog *>(dialog)->accept();
    });
    tool.form->Get_Actions().Browse->trigger();
    EXPECT_EQ(tool.form->findChild<QLineEdit *>("pathField")->text().toStdString(), other);
    EXPECT_EQ(tool.form->Get_Model().Get_Count(), 2);
}

TEST_F(Form, WithoutADeviceTheToolSaysThatThereIsNoPreview)
{
    EXPECT_FALSE(tool.form->Get_Actions().Preview->isEnabled());
    EXPECT_EQ(tool.Label_Text("previewState"), "No preview: there is no graphics device");
}

TEST(Progress, ALongNameKeepsTheDialogsWidth)
{
    DesktopProgressDialog dialog(Get_Desktop(), nullptr);
    dialog.show();
    Let_Events_Run();
    const int width = dialog.width();
    dialog.Set_Step_Name(std::string(250, 'w') + ".vro");
    Let_Events_Run();
    EXPECT_EQ(dialog.width(), width);
}

/// Desktops put the program's display name behind every title when it has one.
TEST(Boxes, HaveTheirCaptionsAsTheyStand)
{
    EXPECT_EQ(QGuiApplication::applicationDisplayName(), QCoreApplication::applicationName());
}

TEST(Boxes, ThatAnErrorEndsAnswerWhatChangesNothing)
{
    DesktopApplication &application = Get_Desktop();
    const struct
    {
        MessageBoxButtons buttons;
        DialogResult result;
    } cases[] = {{MessageBoxButtons::YesNo, DialogResult::No}, {MessageBoxButtons::RetryCancel, DialogResult::Cancel}};
    for (const auto &[buttons, result] : cases) {
        QTimer::singleShot(20, [&] { application.Guard([] { throw std::runtime_error("lost"); }); });
        EXPECT_EQ(application.Show_Message_Box("Really?", "", buttons, MessageBoxIcon::Question), result);
        EXPECT_THROW(application.Rethrow(), std::runtime_error);
    }
}

class Placement : public testing::Test
{
protected:
    /// Opens the window where the settings of the last run have it.
    void Open(Point location, Size size, bool isMaximized = false)
    {
        ApplicationSettings &settings = tool.core->Get_Settings();
        settings.MainFormLocationSet = true;
        settings.MainFormMaximized = isMaximized;
        settings.MainFormLocation = location;
        settings.MainFormSize = size;
        tool.Open();
    }

    DesktopTool tool;
};

TEST_F(Placement, OfAMaximisedWindowIsTheOneThatItGoesBackTo)
{
    Open({40, 30}, {700, 500}, true);
    EXPECT_TRUE(tool.form->isMaximized());
    tool.form->close();
    const ApplicationSettings saved = ApplicationSettings::Load("FlareTrimSettings.xml");
    EXPECT_TRUE(saved.MainFormMaximized);
    EXPECT_EQ(saved.MainFormLocation, (Point{40, 30}));
    EXPECT_EQ(saved.MainFormSize, (Size{700, 500}));
}

class PlacementOutOfReach : public Placement, public testing::WithParamInterface<std::pair<Point, Size>>
{
};

INSTANTIATE_TEST_SUITE_P(Places, PlacementOutOfReach,
                         testing::Values(std::pair(Point{5000, 100}, Size{600, 400}),
                                         std::pair(Point{100, -3000}, Size{600, 400}),
                                         std::pair(Point{0, 0}, Size{9000, 9000}),
                                         std::pair(Point{INT_MAX, INT_MIN}, Size{600, 400}),
                                         std::pair(Point{-4000, 0}, Size{0, 0})));

TEST_P(PlacementOutOfReach, ComesIntoIt)
{
    Open(GetParam().first, GetParam().second);
    const QRect screen = tool.form->screen()->availableGeometry();
    const QRect title(tool.form->pos(), QSize(tool.form->width(), 24));
    EXPECT_GE(screen.intersected(title).width(), 80);
    EXPECT_LE(tool.form->width(), screen.width());
    EXPECT_LE(tool.form->height(), screen.height());
}

/// What ends a run when the working directory is gone is the message box of the entry point.
TEST(WholeRun, AMissingWorkingDirectoryEndsInTheExceptionsBox)
{
    MKTest::Reports reports;
    const MKTest::TempDirectory directory;
    const MKTest::CurrentDirectory current(directory.Make_Directory("run"));
    DesktopApplication &application = Get_Desktop();
    application.Set_Session([](DesktopMainForm &form) { form.Get_Actions().Scan->trigger(); });
    BoxAnswers answers("OK");
    EXPECT_EQ(Run_Tool(application, std::make_unique<NoPreview>()), 0);
    EXPECT_THAT(answers.texts, ElementsAre(HasSubstr("Exception: The emitter files can't be listed.")));
    EXPECT_EQ(application.Get_Main_Form(), nullptr);
    application.Set_Session(nullptr);
}

} // namespace
