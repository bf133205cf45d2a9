#pragma once

/// Plain types that the core and its interface layer exchange.

struct Point
{
    int X = 0;
    int Y = 0;
    friend bool operator==(const Point &, const Point &) = default;
};

struct Size
{
    int Width = 0;
    int Height = 0;
    friend bool operator==(const Size &, const Size &) = default;
};

struct Rectangle
{
    int X = 0;
    int Y = 0;
    int Width = 0;
    int Height = 0;
};

enum class FormWindowState : int
{
    Normal = 0,
    Minimized = 1,
    Maximized = 2
};

/// Bits, as mouse events give them.
enum MouseButtons : int
{
    MOUSE_NONE = 0,
    MOUSE_LEFT = 0x100000,
    MOUSE_RIGHT = 0x200000,
    MOUSE_OTHER = 0x400000 ///< any of the others
};

/// Whoever raised an event. The core doesn't look at it.
using Sender = const void *;

struct EventArgs
{
};

struct CancelEventArgs
{
    bool Cancel = false; ///< set by a handler to keep what was about to happen from happening
};

struct PaintEventArgs
{
    Rectangle ClipRectangle;
};

struct MouseEventArgs
{
    int Button = MOUSE_NONE; ///< the button that the event is about
    int X = 0;               ///< panel coordinates, pixels
    int Y = 0;
    int Delta = 0; ///< of the wheel; 120 a notch, positive away from the user
};
