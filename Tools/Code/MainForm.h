#pragma once

#include "Code/FormTypes.h"

#include <string>

class BindingSource;
class ParticleGrid;

/// The main window, made with the IFlareTrimUIManager that it reports to.
class MainForm
{
public:
    virtual ~MainForm() = default;

    virtual BindingSource &Get_Particle_Data_Source() = 0;
    virtual ParticleGrid &Get_Particle_Grid_View() = 0;
    virtual void Set_Settings_Controls_Enabled(bool enabled) = 0;
    virtual void Set_Save_All_Button_Enabled(bool enabled) = 0;
    virtual void Set_Current_Path(const std::string &path) = 0;
    virtual bool Get_Auto_Checkout() const = 0;
    virtual void Set_Auto_Checkout(bool enabled) = 0;
    virtual bool Get_Preview() const = 0;
    /// A change is reported through Preview_Button_Changed.
    virtual void Set_Preview(bool enabled) = 0;
    virtual void Resize_Columns() = 0;
    /// Why the grid is empty, in place of its rows; an empty text when there is nothing to tell.
    virtual void Set_Scan_Failure(const std::string &reason) = 0;
    /// Whether there is a device to show a preview with.
    virtual void Set_Preview_Available(bool available) = 0;
    virtual Point Get_Location() const = 0; ///< screen pixels
    virtual void Set_Location(Point location) = 0;
    virtual Size Get_Size() const = 0;
    virtual void Set_Size(Size size) = 0;
    virtual FormWindowState Get_Window_State() const = 0;
    virtual void Set_Window_State(FormWindowState state) = 0;
};
