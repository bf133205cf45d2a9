#include "Headless/HeadlessForms.h"

#include "Code/IFlareTrimUIManager.h"
#include "Code/ParticleData.h"
#include "Headless/HeadlessApplication.h"

HeadlessMainForm::HeadlessMainForm(IFlareTrimUIManager &uiManager) : manager(uiManager), grid(source)
{
    manager.Register_Main_Form(this);
}

void HeadlessMainForm::Set_Preview(bool enabled)
{
    if (preview == enabled) return;
    preview = enabled;
    manager.Preview_Button_Changed(this, EventArgs());
}

void HeadlessMainForm::Activate()
{
    if (closed) return;
    manager.Main_Form_Activated(this, EventArgs());
}

void HeadlessMainForm::Change_Window_State(FormWindowState state)
{
    if (closed) return;
    placement.state = state;
    manager.Main_Form_Resize(this, EventArgs());
}

void HeadlessMainForm::Click_Scan()
{
    if (closed) return;
    manager.Scan_Button_Click(this, EventArgs());
}

void HeadlessMainForm::Click_Browse()
{
    if (closed) return;
    manager.Browse_Button_Click(this, EventArgs());
}

void HeadlessMainForm::Click_Save()
{
    if (closed) return;
    manager.Save_Button_Click(this, EventArgs());
}

bool HeadlessMainForm::Click_Save_All()
{
    if (closed || !saveAllButtonEnabled) return false;
    manager.Save_All_Button_Click(this, EventArgs());
    return true;
}

void HeadlessMainForm::Check_Auto_Checkout(bool enabled)
{
    if (closed) return;
    autoCheckout = enabled;
    manager.Auto_Checkout_Check_Box_Click(this, EventArgs());
}

bool HeadlessMainForm::Click_Convert_To_Heat()
{
    const std::shared_ptr<ParticleData> row = source.Get_Current();
    if (!settingsControlsEnabled || !row || !row->Get_SupportsHeat() || row->Get_UsesHeatVisualizer()) return false;
    manager.Convert_To_Heat_Button_Click(this, EventArgs());
    return true;
}

bool HeadlessMainForm::Edit_Current(std::string_view property, std::string_view text)
{
    return settingsControlsEnabled && grid.Edit_Current(property, text);
}

bool HeadlessMainForm::Close()
{
    if (closed) return true;
    CancelEventArgs args;
    manager.Main_Form_Closing(this, args);
    closed = !args.Cancel;
    return closed;
}

HeadlessSceneViewForm::HeadlessSceneViewForm(HeadlessApplication &application, IFlareTrimUIManager &uiManager)
    : owner(application), manager(uiManager)
{
    owner.viewForm = this;
}

HeadlessSceneViewForm::~HeadlessSceneViewForm()
{
    owner.viewForm = nullptr;
}

void HeadlessSceneViewForm::Activate()
{
    manager.View_Form_Activated(this, EventArgs());
}

void HeadlessSceneViewForm::Select_View_Mode(int index)
{
    state.viewModeIndex = index;
    manager.View_Mode_Changed(this, EventArgs());
}

void HeadlessSceneViewForm::Select_Speed(float speed)
{
    state.speed = speed;
    manager.Speed_Changed(this, EventArgs());
}

bool HeadlessSceneViewForm::Close()
{
    CancelEventArgs args;
    manager.View_Form_Closing(this, args);
    return !args.Cancel;
}

void HeadlessProgressDialog::Set_Steps(int stepsDone)
{
    steps = stepsDone;
    if (application.progressObserver) application.progressObserver(*this);
}

void HeadlessProgressDialog::Done(bool success)
{
    done = true;
    succeeded = success;
}

DialogResult HeadlessProgressDialog::Show_Dialog()
{
    application.Run_Until(done);
    return succeeded ? DialogResult::OK : DialogResult::Cancel;
}
