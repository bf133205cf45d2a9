#pragma once

#include "Code/FormTypes.h"

class MainForm;

/// Every action of the user, as the interface layer reports it. `Register_Main_Form` comes first, from the main form's
/// construction, and each widget event goes to the operation of its name. On the user interface's thread.
class IFlareTrimUIManager
{
public:
    virtual ~IFlareTrimUIManager() = default;

    virtual void Register_Main_Form(MainForm *form) = 0;
    virtual void Main_Form_Activated(Sender sender, const EventArgs &args) = 0;
    virtual void Main_Form_Closing(Sender sender, CancelEventArgs &args) = 0;
    virtual void Main_Form_Resize(Sender sender, const EventArgs &args) = 0;
    virtual void Scan_Button_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Browse_Button_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Save_Button_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Save_All_Button_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Auto_Checkout_Check_Box_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Preview_Button_Changed(Sender sender, const EventArgs &args) = 0;
    virtual void Convert_To_Heat_Button_Click(Sender sender, const EventArgs &args) = 0;
    virtual void View_Form_Activated(Sender sender, const EventArgs &args) = 0;
    virtual void View_Form_Closing(Sender sender, CancelEventArgs &args) = 0;
    virtual void View_Form_Closed(Sender sender, const EventArgs &args) = 0;
    virtual void View_Panel_Resize(Sender sender, const EventArgs &args) = 0;
    virtual void View_Panel_Paint(Sender sender, const PaintEventArgs &args) = 0;
    virtual void View_Panel_Mouse_Down(Sender sender, const MouseEventArgs &args) = 0;
    virtual void View_Panel_Mouse_Up(Sender sender, const MouseEventArgs &args) = 0;
    virtual void View_Panel_Mouse_Move(Sender sender, const MouseEventArgs &args) = 0;
    virtual void View_Panel_Mouse_Wheel(Sender sender, const MouseEventArgs &args) = 0;
    virtual void View_Mode_Changed(Sender sender, const EventArgs &args) = 0;
    virtual void Render_Axes_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Render_Background_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Set_Background_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Heat_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Bloom_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Reset_Camera_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Reset_Animation_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Pause_Click(Sender sender, const EventArgs &args) = 0;
    /// Pauses a running preview, too.
    virtual void Single_Step_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Speed_Changed(Sender sender, const EventArgs &args) = 0;
    virtual void Ground_Plane_Click(Sender sender, const EventArgs &args) = 0;
    virtual void Target_Click(Sender sender, const EventArgs &args) = 0;
};
