#include "Code/ParticleData.h"
#include "Code/RunTool.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
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
using testing::IsEmpty;

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

TEST_F(Form, ARefusedCheckOutAsksForARetryAndCancelLeavesAllAsItWas)
{
    const FakeP4 p4(tool.directory, REFUSE);
    Edit(0);
    Set_Read_Only(tool.Model_Path("fire.vro"), true);
    BoxAnswers answers("Cancel");
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(answers.texts, ElementsAre(HasSubstr("Unable to check out file.\nMake sure")));
    EXPECT_TRUE(tool.Row(0).Get_Modified());
}

TEST_F(Form, WithoutAutoCheckoutTheUserIsAskedAndMayDecline)
{
    const FakeP4 p4(tool.directory, MAKE_WRITABLE);
    tool.form->Get_Actions().AutoCheckout->trigger();
    EXPECT_FALSE(tool.core->Get_Settings().AutoCheckout);
    Edit(0);
    Set_Read_Only(tool.Model_Path("fire.vro"), true);
    BoxAnswers answers("No");
    tool.Press_Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(answers.texts, ElementsAre("Checkout 'fire' from perforce?"));
    EXPECT_EQ(p4.Calls(), "");
    EXPECT_TRUE(tool.Row(0).Get_Modified());
}

TEST_F(Form, ClosingWithUnsavedChangesAsks)
{
    Edit(0);
    {
        BoxAnswers answers("No");
        EXPECT_FALSE(tool.form->close());
        EXPECT_THAT(answers.texts, ElementsAre(HasSubstr("Continue Closing Anyway?")));
    }
    EXPECT_TRUE(tool.form->isVisible());
    EXPECT_TRUE(tool.Row(0).Get_Modified());
    BoxAnswers answers("Yes");
    EXPECT_TRUE(tool.form->close());
    EXPECT_THAT(MKTest::Read_Text_File("FlareTrimSettings.xml"), HasSubstr("<MainFormLocationSet>true<"));
}

TEST_F(Form, ARescanWithUnsavedChangesAsks)
{
    Edit(0);
    {
        BoxAnswers answers("No");
        tool.Scan();
        EXPECT_EQ(answers.texts.size(), 1u);
    }
    EXPECT_EQ(tool.Row(0).Get_DynamicLODNearDistance(), 7.0f);
    BoxAnswers answers("Yes");
    tool.Scan();
    EXPECT_EQ(answers.texts.size(), 1u);
    EXPECT_NE(tool.Row(0).Get_DynamicLODNearDistance(), 7.0f);
    EXPECT_FALSE(tool.form->isWindowModified());
}

TEST_F(Form, AFailedScanSaysWhyAndAnotherOneBringsTheGridBack)
{
    {
        FileClass file(tool.Model_Path("zinc.vro"));
        ChunkFileWriterClass writer(&file, 128, 0, false); // plain, so that half of it still begins as an emitter
        ASSERT_TRUE(Make_Emitter({Plain_Layer("z")})->Save(&writer) && writer.Close());
    }
    const MKTest::Bytes whole = MKTest::Read_Whole_File(tool.Model_Path("zinc.vro"));
    MKTest::Write_Whole_File(tool.Model_Path("zinc.vro"), whole.data(), whole.size() / 2);
    tool.Scan();
    EXPECT_EQ(tool.form->Get_Model().Get_Count(), 0);
    EXPECT_FALSE(tool.form->Get_Actions().Save->isEnabled());
    EXPECT_THAT(tool.Label_Text("gridMessage").toStdString(),
                HasSubstr("zinc.vro is an emitter file that can't be loaded"));
    EXPECT_TRUE(tool.form->findChild<QLabel *>("gridMessage")->isVisible());
    std::filesystem::remove(tool.Model_Path("zinc.vro"));
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
    EXPECT_EQ(tool.core->Get_Settings().WorkingDirectory, other);
    EXPECT_EQ(tool.form->Get_Model().Get_Count(), 2);
}

TEST_F(Form, WithoutADeviceTheToolSaysThatThereIsNoPreview)
{
    EXPECT_FALSE(tool.form->Get_Actions().Preview->isEnabled());
    EXPECT_EQ(tool.Label_Text("previewState"), "No preview: there is no graphics device");
}

TEST(Progress, CountsFromTheFirstFileAndSaysThatThereIsNone)
{
    const struct
    {
        int count, done;
        const char *text;
    } cases[] = {{0, 0, "0 of 0"}, {3, 0, "1 of 3"}, {3, 2, "3 of 3"}};
    for (const auto &[count, done, text] : cases) {
        DesktopProgressDialog dialog(Get_Desktop(), nullptr);
        dialog.Set_Step_Count(count);
        dialog.Set_Steps(done);
        EXPECT_EQ(dialog.findChild<QLabel *>("progressCount")->text(), text);
    }
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

TEST(Placement, OfAFirstStartFitsTheScreen)
{
    DesktopTool tool;
    tool.Open();
    const QSize screen = tool.form->screen()->availableSize();
    EXPECT_LE(tool.form->width(), screen.width());
    EXPECT_LE(tool.form->height(), screen.height());
}

TEST(Placement, IsRestoredBeforeTheWindowShows)
{
    DesktopTool tool;
    ApplicationSettings &settings = tool.core->Get_Settings();
    settings.MainFormLocationSet = true;
    settings.MainFormLocation = {40, 30};
    settings.MainFormSize = {700, 500};
    tool.Open();
    EXPECT_EQ(tool.form->Get_Location(), (Point{40, 30}));
    EXPECT_EQ(tool.form->Get_Size(), (Size{700, 500}));
}

TEST(Placement, OfAMaximisedWindowIsTheOneThatItGoesBackTo)
{
    DesktopTool tool;
    ApplicationSettings &settings = tool.core->Get_Settings();
    settings.MainFormLocationSet = true;
    settings.MainFormMaximized = true;
    settings.MainFormLocation = {40, 30};
    settings.MainFormSize = {700, 500};
    tool.Open();
    EXPECT_TRUE(tool.form->isMaximized());
    tool.form->close();
    EXPECT_TRUE(tool.core->Get_Settings().MainFormMaximized);
    EXPECT_EQ(tool.core->Get_Settings().MainFormLocation, (Point{40, 30}));
    EXPECT_EQ(tool.core->Get_Settings().MainFormSize, (Size{700, 500}));
}

TEST(Placement, OnAScreenThatIsGoneOrTooSmallComesIntoReach)
{
    const QRect screen =
        QGuiApplication::primaryScreen() ? QGuiApplication::primaryScreen()->availableGeometry() : QRect();
    const struct
    {
        const char *what;
        Point location;
        Size size;
    } cases[] = {{"right of all screens", {5000, 100}, {600, 400}},
                 {"above", {100, -3000}, {600, 400}},
                 {"larger than the screen", {0, 0}, {9000, 9000}},
                 {"where no number goes", {INT_MAX, INT_MIN}, {600, 400}},
                 {"without a size", {-4000, 0}, {0, 0}}};
    for (const auto &[what, location, size] : cases) {
        DesktopTool tool;
        ApplicationSettings &settings = tool.core->Get_Settings();
        settings.MainFormLocationSet = true;
        settings.MainFormLocation = location;
        settings.MainFormSize = size;
        tool.Open();
        const QRect title(tool.form->pos(), QSize(tool.form->width(), 24));
        EXPECT_GE(screen.intersected(title).width(), 80) << what;
        EXPECT_LE(tool.form->width(), screen.width()) << what;
        EXPECT_LE(tool.form->height(), screen.height()) << what;
    }
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

TEST(WholeRun, TwoModifiedEffectsOfOneNameEndInTheExceptionsBox)
{
    MKTest::Reports reports;
    const MKTest::TempDirectory directory;
    const MKTest::CurrentDirectory current(directory.Make_Directory("run"));
    directory.Make_Directory("Art/Models");
    const std::string file = directory / "Art/Models/fire.vro";
    Write_Emitter(file, {Plain_Layer()});
    std::filesystem::copy_file(file, directory / "Art/Models/fire.VRO"); // an emitter is named as its file
    DesktopApplication &application = Get_Desktop();
    application.Set_Session([&](DesktopMainForm &form) {
        form.Get_Actions().Scan->trigger();
        form.Get_Table().Select_Source_Rows({0, 1});
        const int column = Find_Particle_Column("DynamicLODNearDistance");
        EXPECT_EQ(form.Get_Model().Get_Count(), 2);
        form.Get_Model().setData(form.Get_Model().index(0, column), "7");
        application.Leave();
    });
    BoxAnswers answers("OK");
    EXPECT_EQ(Run_Tool(application, std::make_unique<NoPreview>()), 0);
    EXPECT_THAT(answers.texts, ElementsAre(HasSubstr("Exception: Two modified emitters are named 'fire'")));
    application.Set_Session(nullptr);
}

TEST(WholeRun, UnreadableSettingsGiveTheDefaultsAndCloseWritesThemAnew)
{
    MKTest::Reports reports;
    const MKTest::TempDirectory directory;
    const MKTest::CurrentDirectory current(directory.Make_Directory("run"));
    directory.Write("run/FlareTrimSettings.xml", "<ApplicationSettings><ViewMode>");
    DesktopApplication &application = Get_Desktop();
    bool autoCheckout = false;
    application.Set_Session([&](DesktopMainForm &form) {
        autoCheckout = form.Get_Auto_Checkout();
        form.close();
    });
    BoxAnswers answers("OK");
    EXPECT_EQ(Run_Tool(application, std::make_unique<NoPreview>()), 0);
    EXPECT_THAT(answers.texts, IsEmpty());
    EXPECT_TRUE(autoCheckout);
    EXPECT_THAT(MKTest::Read_Text_File("FlareTrimSettings.xml"), HasSubstr("<ViewMode>4</ViewMode>"));
    application.Set_Session(nullptr);
}

} // namespace
