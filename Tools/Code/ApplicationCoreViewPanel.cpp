#include "Code/ApplicationCore.h"

#include "Code/Application.h"
#include "Code/EmitterData.h"
#include "Code/PreviewDriver.h"
#include "Code/SceneViewForm.h"

#include <cmath>

void ApplicationCore::View_Panel_Resize(Sender, const EventArgs &)
{
    if (!vorenInitialized || viewForm->Get_Window_State() == FormWindowState::Minimized) return;
    ViewPanel &panel = viewForm->Get_View_Panel();
    vorenData->Resize(panel.Get_Width(), panel.Get_Height());
    panel.Invalidate();
}

void ApplicationCore::View_Panel_Paint(Sender, const PaintEventArgs &)
{
    if (!animationTimer->Get_Enabled()) Render_Scene();
}

Point ApplicationCore::Get_Panel_Cursor_Position()
{
    return viewForm->Get_View_Panel().Screen_To_Client(Application::Get_Instance().Get_Cursor_Position());
}

/// -1 to 1 over the panel, y up. A panel without an extent leaves the position as it was.
void ApplicationCore::Update_Mouse_Position(int x, int y)
{
    const Rectangle client = viewForm->Get_View_Panel().Get_Client_Rectangle();
    if (client.Width == 0 || client.Height == 0) return;
    const double halfWidth = static_cast<float>(client.Width) / 2.0;
    const double halfHeight = static_cast<float>(client.Height) / 2.0;
    mouseX = static_cast<float>((x - halfWidth) / halfWidth);
    mouseY = static_cast<float>(-(y - halfHeight) / halfHeight);
}

void ApplicationCore::Left_Button_Down(int x, int y)
{
    leftButtonDown = true;
    Update_Mouse_Position(x, y);
    vorenData->On_Rotate_Begin();
}

void ApplicationCore::Left_Button_Up(int x, int y)
{
    leftButtonDown = false;
    Update_Mouse_Position(x, y);
    vorenData->On_Rotate_End();
}

void ApplicationCore::Right_Button_Down(int x, int y)
{
    rightButtonDown = true;
    Update_Mouse_Position(x, y);
    vorenData->On_Rotate_Begin();
}

void ApplicationCore::Right_Button_Up(int x, int y)
{
    rightButtonDown = false;
    Update_Mouse_Position(x, y);
    vorenData->On_Rotate_End();
}

void ApplicationCore::Mouse_Move(int x, int y)
{
    const float oldX = mouseX, oldY = mouseY;
    Update_Mouse_Position(x, y);
    vorenData->On_Mouse_Move(mouseX - oldX, mouseY - oldY);
}

void ApplicationCore::View_Panel_Mouse_Down(Sender, const MouseEventArgs &)
{
    const Point position = Get_Panel_Cursor_Position();
    Left_Button_Up(position.X, position.Y);
    Right_Button_Up(position.X, position.Y);
    const int held = Application::Get_Instance().Get_Mouse_Buttons();
    if (held == MOUSE_LEFT)
        Left_Button_Down(position.X, position.Y);
    else if (held == MOUSE_RIGHT || held == (MOUSE_LEFT | MOUSE_RIGHT))
        Right_Button_Down(position.X, position.Y);
    viewForm->Get_View_Panel().Focus();
}

void ApplicationCore::View_Panel_Mouse_Up(Sender, const MouseEventArgs &args)
{
    const Point position = Get_Panel_Cursor_Position();
    if (args.Button == MOUSE_LEFT)
        Left_Button_Up(position.X, position.Y);
    else if (args.Button == MOUSE_RIGHT)
        Right_Button_Up(position.X, position.Y);
}

void ApplicationCore::View_Panel_Mouse_Move(Sender, const MouseEventArgs &)
{
    const Point position = Get_Panel_Cursor_Position();
    Mouse_Move(position.X, position.Y);
}

/// Either way of the wheel moves the camera away, by twice the step.
void ApplicationCore::View_Panel_Mouse_Wheel(Sender, const MouseEventArgs &args)
{
    const double step = std::abs(static_cast<double>(args.Delta)) * 10.0;
    for (int i = 0; i < 2; ++i) {
        vorenData->Set_Camera_Distance(static_cast<float>(vorenData->Get_Camera_Distance() + step));
        Show_Camera_Distance();
    }
}
