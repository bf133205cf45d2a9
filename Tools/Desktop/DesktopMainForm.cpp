#include "Desktop/DesktopMainForm.h"

#include "Code/EmitterData.h"
#include "Code/IFlareTrimUIManager.h"
#include "Code/ParticleData.h"
#include "Desktop/CountedText.h"
#include "Desktop/DesktopApplication.h"
#include "Desktop/DesktopSceneViewForm.h"
#include "Desktop/ParticleRowFilter.h"
#include "Desktop/ParticleTableModel.h"
#include "Desktop/ParticleTableView.h"
#include "Desktop/SelectionPanel.h"
#include "MKPlatform/Files.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>

#include <utility>

namespace
{

constexpr int MESSAGE_MILLISECONDS = 8000;
constexpr QSize FIRST_SIZE(1440, 860);

} // namespace

DesktopMainForm::DesktopMainForm(DesktopApplication &owner, IFlareTrimUIManager &uiManager)
    : application(owner), manager(uiManager), placement(*this), model(std::make_unique<ParticleTableModel>()),
      filter(std::make_unique<ParticleRowFilter>(*model)), source(*model)
{
    setObjectName("mainForm");
    resize(FIRST_SIZE.boundedTo(screen()->availableSize()));
    Make_Actions();
    Make_Tool_Bar();
    Make_Centre();
    Make_Menus();
    Make_Status_Bar();
    grid = std::make_unique<DesktopGrid>(*model, *table);
    Connect_Grid();
    Restore_Layout();
    owner.mainForm = this;
    manager.Register_Main_Form(this);
    Update_State();
    table->setFocus();
}

DesktopMainForm::~DesktopMainForm()
{
    closed = true; // what the widgets still tell while they go is nobody's business
    application.mainForm = nullptr;
    source.ListChanged.Unsubscribe<&DesktopMainForm::Rows_Reset>(this);
    grid->Refreshed.Unsubscribe<&DesktopMainForm::Grid_Refreshed>(this);
    table->Set_Current_Changed(nullptr);
    table->Set_Selection_Changed(nullptr);
    delete table; // ahead of its models
}

void DesktopMainForm::Connect_Grid()
{
    source.ListChanged.Subscribe<&DesktopMainForm::Rows_Reset>(this);
    grid->Refreshed.Subscribe<&DesktopMainForm::Grid_Refreshed>(this);
    model->Set_Edited([this](int row) { Row_Edited(row); });
    model->Set_Refused([this](const QString &reason) {
        statusBar()->showMessage(reason, MESSAGE_MILLISECONDS);
        Schedule_Update();
    });
    table->Set_Current_Changed([this] {
        if (closed) return;
        application.Guard([this] { source.Set_Position(table->Get_Current_Source_Row()); });
        Schedule_Update();
    });
    table->Set_Selection_Changed([this] { Schedule_Update(); });
    table->Set_Space_Pressed([this] { Pause(); });
    connect(filterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        table->Set_Filter(text);
        Schedule_Update();
    });
    connect(&panel->Get_Convert_Button(), &QPushButton::clicked, actions.Convert, &QAction::trigger);
}

void DesktopMainForm::Report(Operation operation)
{
    if (!closed) application.Guard([&] { (manager.*operation)(this, EventArgs()); });
}

void DesktopMainForm::Set_Settings_Controls_Enabled(bool enabled)
{
    settingsControlsEnabled = enabled;
    table->Set_Editing_Enabled(enabled);
    panel->Set_Editing_Enabled(enabled);
    actions.Save->setEnabled(enabled);
    Schedule_Update();
}

void DesktopMainForm::Set_Save_All_Button_Enabled(bool enabled)
{
    actions.SaveAll->setEnabled(enabled);
}

void DesktopMainForm::Set_Current_Path(const std::string &path)
{
    currentPath = QString::fromStdString(MKPlatform::To_System_Path(path));
    pathField->setText(currentPath);
    pathField->setToolTip(currentPath);
    setWindowTitle(QString("%1[*] - Flare Trim").arg(currentPath));
    Schedule_Update();
}

bool DesktopMainForm::Get_Auto_Checkout() const
{
    return actions.AutoCheckout->isChecked();
}

void DesktopMainForm::Set_Auto_Checkout(bool enabled)
{
    actions.AutoCheckout->setChecked(enabled);
}

bool DesktopMainForm::Get_Preview() const
{
    return actions.Preview->isChecked();
}

void DesktopMainForm::Set_Preview(bool enabled)
{
    actions.Preview->setChecked(enabled);
}

void DesktopMainForm::Resize_Columns()
{
    table->Fit_Columns();
}

void DesktopMainForm::Set_Scan_Failure(const std::string &reason)
{
    scanFailure = QString::fromStdString(reason);
    Schedule_Update();
}

void DesktopMainForm::Set_Preview_Available(bool available)
{
    const QString reason = "No preview: there is no graphics device";
    actions.Preview->setEnabled(available);
    actions.Preview->setToolTip(available ? "Show the effect of the current row as it plays (F6)" : reason);
    previewState->setText(available ? QString() : reason);
    previewState->setVisible(!available);
    for (QAction *action : {actions.Pause, actions.Step, actions.ResetAnimation, actions.ResetCamera})
        action->setEnabled(available);
}

void DesktopMainForm::Open()
{
    Report(&IFlareTrimUIManager::Main_Form_Activated);
    show();
    const DesktopSceneViewForm *view = application.Get_View_Form();
    if (view && view->isVisible()) Set_Preview(true);
    activateWindow();
}

void DesktopMainForm::Show_Wait(const QString &what)
{
    if (what.isEmpty()) {
        statusBar()->clearMessage();
        return;
    }
    statusBar()->showMessage(what);
    statusBar()->repaint();
    // The window system gets the picture now, and no user's event is handled.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers, 1);
}

void DesktopMainForm::Commit_Edits()
{
    QWidget *focus = QApplication::focusWidget();
    if (!focus || !isAncestorOf(focus) || focus == table || focus == filterField) return;
    focus->clearFocus(); // takes what was typed
    table->setFocus();
}

void DesktopMainForm::Browse()
{
    Report(&IFlareTrimUIManager::Browse_Button_Click);
}

void DesktopMainForm::Scan()
{
    Commit_Edits();
    Report(&IFlareTrimUIManager::Scan_Button_Click);
    // The first row is current, which nobody was told while the rows changed.
    if (settingsControlsEnabled) application.Guard([this] { source.Announce_Current(); });
    Schedule_Update();
}

void DesktopMainForm::Save()
{
    Commit_Edits();
    const int before = Count_Modified_Effects();
    Report(&IFlareTrimUIManager::Save_Button_Click);
    Tell_Saved(before);
}

void DesktopMainForm::Save_All()
{
    Commit_Edits();
    const int before = Count_Modified_Effects();
    Report(&IFlareTrimUIManager::Save_All_Button_Click);
    Tell_Saved(before);
}

void DesktopMainForm::Tell_Saved(int modifiedBefore)
{
    const int left = Count_Modified_Effects();
    const int saved = modifiedBefore - left;
    QString text = saved > 0 ? "Saved " + Counted(saved, "effect") : QString("Nothing was saved");
    if (left > 0) text += QString("; %1 still to be saved (Save All, Ctrl+Shift+S)").arg(Counted(left, "effect"));
    statusBar()->showMessage(text, MESSAGE_MILLISECONDS);
    Schedule_Update();
}

void DesktopMainForm::Convert()
{
    Commit_Edits();
    Report(&IFlareTrimUIManager::Convert_To_Heat_Button_Click);
    Schedule_Update();
}

void DesktopMainForm::Select_Effects()
{
    table->Select_Whole_Effects();
}

void DesktopMainForm::Focus_Filter()
{
    filterField->setFocus(Qt::ShortcutFocusReason);
    filterField->selectAll();
}

void DesktopMainForm::Pause()
{
    Report(&IFlareTrimUIManager::Pause_Click);
}

void DesktopMainForm::Step()
{
    Report(&IFlareTrimUIManager::Single_Step_Click);
}

void DesktopMainForm::Reset_Animation()
{
    Report(&IFlareTrimUIManager::Reset_Animation_Click);
}

void DesktopMainForm::Reset_Camera()
{
    Report(&IFlareTrimUIManager::Reset_Camera_Click);
}

void DesktopMainForm::Row_Edited(int row)
{
    application.Guard([&] { source.Item_Edited(row); });
    Schedule_Update();
}

void DesktopMainForm::Rows_Reset(Sender, const ListChangedEventArgs &args)
{
    if (args.Type == ListChangedType::Reset) {
        filterField->setEnabled(model->Get_Count() > 0);
        table->Select_Source_Rows(model->Get_Count() > 0 ? std::vector<int>{0} : std::vector<int>());
    }
    Schedule_Update();
}

void DesktopMainForm::Grid_Refreshed()
{
    model->Touch_All();
    table->viewport()->update();
    Schedule_Update();
}

void DesktopMainForm::Schedule_Update()
{
    if (std::exchange(isUpdateScheduled, true) || closed) return;
    QMetaObject::invokeMethod(
        this, [this] { Update_State(); }, Qt::QueuedConnection);
}

void DesktopMainForm::Update_State()
{
    isUpdateScheduled = false;
    if (closed) return;
    const std::shared_ptr<ParticleData> row = source.Get_Current();
    const bool canConvert = settingsControlsEnabled && row && row->Get_SupportsHeat() && !row->Get_UsesHeatVisualizer();
    actions.Convert->setEnabled(canConvert);
    panel->Get_Convert_Button().setEnabled(canConvert);
    std::vector<int> selected = table->Get_Selected_Source_Rows();
    Update_Counts(selected.size());
    panel->Show_Rows(std::move(selected), source.Get_Position());
    Update_Message();
}

/// An effect's layers lie together in the core's list.
template <typename Counts>
int DesktopMainForm::Count_Effects_That(Counts counts) const
{
    int count = 0;
    const EmitterData *last = nullptr;
    for (int row = 0; row < model->Get_Count(); ++row) {
        const EmitterData *effect = &model->Get_Row(row)->Get_EmitterData();
        if (effect != last && counts(*effect)) ++count;
        last = effect;
    }
    return count;
}

int DesktopMainForm::Count_Modified_Effects() const
{
    return Count_Effects_That([](const EmitterData &effect) { return effect.Get_Modified(); });
}

void DesktopMainForm::Update_Counts(size_t selected)
{
    const int effects = Count_Effects_That([](const EmitterData &) { return true; });
    const int modified = Count_Modified_Effects();
    setWindowModified(modified > 0);
    const int shown = filter->rowCount(), all = model->Get_Count();
    QStringList parts = {Counted(all, "layer") + " of " + Counted(effects, "effect")};
    if (shown != all) parts << QString("%1 shown").arg(shown);
    parts << QString("%1 selected").arg(selected);
    if (modified > 0) parts << Counted(modified, "effect") + " modified";
    counts->setText(all > 0 ? parts.join(QString(" %1 ").arg(QChar(0xb7))) : QString());
}

void DesktopMainForm::Update_Message()
{
    QString text;
    if (!scanFailure.isEmpty())
        text = QString("The scan ended early, and the grid stays empty.\n\n%1\n\nMend it, and scan again (F5).")
                   .arg(scanFailure);
    else if (model->Get_Count() > 0 && filter->rowCount() == 0)
        text =
            QString("No layer has \"%1\" in the name of its effect, its own or a plugin's.").arg(filterField->text());
    else if (model->Get_Count() == 0)
        text = settingsControlsEnabled
                   ? QString("There are no effects in\n%1").arg(currentPath + "/Art/Models")
                   : QString("Scan (F5) lists the effects of\n%1\n\nBrowse chooses another working directory.")
                         .arg(currentPath);
    message->setText(text);
    message->setVisible(!text.isEmpty());
}

void DesktopMainForm::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier)
        Pause();
    else
        QMainWindow::keyPressEvent(event);
}

void DesktopMainForm::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (!application.Get_Main_Form() || closed) return; // still being made
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Report(&IFlareTrimUIManager::Main_Form_Activated);
    if (event->type() == QEvent::WindowStateChange) Report(&IFlareTrimUIManager::Main_Form_Resize);
}

void DesktopMainForm::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (application.Get_Main_Form() && !closed) Report(&IFlareTrimUIManager::Main_Form_Resize);
}

void DesktopMainForm::closeEvent(QCloseEvent *event)
{
    if (closed) return;
    Commit_Edits();
    CancelEventArgs args;
    application.Guard([&] { manager.Main_Form_Closing(this, args); });
    if (args.Cancel) {
        event->ignore();
        return;
    }
    Keep_Layout();
    closed = true;
    event->accept();
    application.Leave();
}
