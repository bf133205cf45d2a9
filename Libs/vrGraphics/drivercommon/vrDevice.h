#pragma once

/// What stands between a graphics driver and the system that it draws on.

#include <string>

/// What a driver draws into at the end: a window's panel or memory off-screen. Made by who owns that; borrowed by the
/// driver, and used on the thread that owns the driver alone.
class vrSurface
{
public:
    virtual ~vrSurface() = default;

    /// Makes the device's context current on the calling thread; false when the surface or the context is lost.
    virtual bool Make_Current() = 0;
    virtual void Release_Current() = 0;
    // Pixels.
    virtual int Get_Width() const = 0;
    virtual int Get_Height() const = 0;
    /// Shows what was drawn.
    virtual void Swap() = 0;
    /// The framebuffer object to draw into at the end; 0 where the surface has one of the system's own.
    virtual unsigned Get_Framebuffer() const { return 0; }
    /// Counts the contexts that the surface has had: what was made in an earlier one is gone.
    virtual unsigned Get_Generation() const { return 0; }
    /// Makes a new context in place of a lost one; false where the surface's owner does that, or it can't be had now.
    virtual bool Recreate_Context() { return false; }
    /// For messages: "EGL device, llvmpipe".
    virtual std::string Describe() const = 0;
};

/// The life of a driver, for those who don't care which it is. On the main thread.
class vrDevice
{
public:
    virtual ~vrDevice() = default;

    /// Starts the driver, which `TheGraphicsDriver` points to from then on. Expects none to be there.
    virtual bool Init() = 0;
    /// Makes what needs a surface. False, with the reason in `error`, when there is no device to be had.
    virtual bool Create_Device(std::string &error) = 0;
    /// False while the device is lost: callers skip the frame.
    virtual bool Is_Device_Operational() = 0;
    /// The surface's size changed; -1 takes the surface's own.
    virtual void Resize_Back_Buffer(int width, int height) = 0;
    virtual void Shutdown() = 0;
};
