#pragma once

#include "Code/FormTypes.h"

struct PreviewStatistics;

/// The panel of the view window that the preview draws into.
class ViewPanel
{
public:
    virtual ~ViewPanel() = default;

    virtual void *Get_Handle() const = 0; ///< of the system's window; null where there is none
    virtual Rectangle Get_Client_Rectangle() const = 0;
    virtual int Get_Width() const = 0;
    virtual int Get_Height() const = 0;
    virtual void Invalidate() = 0;
    virtual void Focus() = 0;
    virtual Point Screen_To_Client(Point screen) const = 0;
};

/// The view window, made with the IFlareTrimUIManager that it reports to.
class SceneViewForm
{
public:
    virtual ~SceneViewForm() = default;

    virtual ViewPanel &Get_View_Panel() = 0;
    virtual int Get_View_Mode_Index() const = 0;
    virtual void Set_View_Mode_Index(int index) = 0;
    virtual void Set_Render_Axes(bool enabled) = 0;
    virtual void Set_Render_Background(bool enabled) = 0;
    virtual void Set_Heat(bool enabled) = 0;
    virtual void Set_Bloom(bool enabled) = 0;
    virtual void Set_Camera_Distance(int distance) = 0;
    virtual void Set_Particles_Simulated(int count) = 0;
    virtual void Set_Particles_Rendered(int count) = 0;
    virtual void Set_Paused(bool paused) = 0;
    virtual float Get_Speed() const = 0; ///< how fast the animation plays; 1 is real time
    virtual void Set_Speed(float speed) = 0;
    virtual void Set_Ground_Plane(bool enabled) = 0;
    virtual void Set_Target(bool enabled) = 0;
    virtual void Set_Statistics(const PreviewStatistics &statistics) = 0; ///< after each tick
    virtual void Set_Visible(bool visible) = 0;
    virtual void Bring_To_Front() = 0;
    virtual Point Get_Location() const = 0; ///< screen pixels
    virtual void Set_Location(Point location) = 0;
    virtual Size Get_Size() const = 0;
    virtual void Set_Size(Size size) = 0;
    virtual FormWindowState Get_Window_State() const = 0;
    virtual void Set_Window_State(FormWindowState state) = 0;
};
