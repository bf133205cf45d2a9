#pragma once

#include "Code/FormTypes.h"

class QWidget;

/// A window's place in the terms of the core: the frame's corner and the size without it, in the desktop's logical
/// pixels. A maximised window that goes back to normal answers at once with what it goes back to, before the desktop
/// has moved it.
class WindowPlacement
{
public:
    explicit WindowPlacement(QWidget &window) : window(window) {}

    Point Get_Location() const;
    void Set_Location(Point location);
    Size Get_Size() const;
    void Set_Size(Size size);
    FormWindowState Get_State() const;
    void Set_State(FormWindowState state);

private:
    /// A window whose title no screen shows, or that is larger than its screen, can't be got hold of.
    void Keep_On_Screen();

    QWidget &window;
    Point givenLocation;
    bool isRestored = false; ///< the two below hold, and not what the window says
    Point restoredLocation;
    Size restoredSize;
};
