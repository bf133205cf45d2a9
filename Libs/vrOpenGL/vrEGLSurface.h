#pragma once

#include "vrGraphics/drivercommon/vrDevice.h"

#include <memory>
#include <string>

/// A surface off-screen, for programs without a window, or on a window of X11: an OpenGL 3.3 core context from EGL.
///
/// The display is the first that gives a context: those of the EGL devices in their order, the surfaceless platform,
/// the default display. Contexts go without a surface of their own where EGL allows that, since the driver draws into a
/// buffer of its own anyway, and with a pbuffer otherwise. Used on one thread at a time. Displays are the process's and
/// stay open for others.
class vrEGLSurface final : public vrSurface
{
public:
    /// Null, with what each way answered in `error`, when there is no context to be had.
    static std::unique_ptr<vrEGLSurface> Create(int width, int height, std::string &error);
    /// On a window that somebody else made and that outlives the surface; `display` is Xlib's, `window` its number.
    /// Frames are shown when they are done, without a wait for the screen.
    static std::unique_ptr<vrEGLSurface> Create_On_Window(void *display, unsigned long window, std::string &error);
    ~vrEGLSurface() override;
    /// Mesa's rasteriser on the processor filters textures in bytes by itself, whose steps show as blocks where light
    /// is faint: from here on it doesn't, unless the environment has a GALLIVM_PERF of its own. Ahead of the process's
    /// first surface, and of threads that read the environment.
    static void Prefer_Exact_Filtering();

    bool Make_Current() override;
    void Release_Current() override;
    int Get_Width() const override;
    int Get_Height() const override;
    void Swap() override;
    unsigned Get_Generation() const override { return Generation; }
    bool Recreate_Context() override;
    std::string Describe() const override { return Description; }

    /// The size that the driver takes at its next resize; pixels.
    void Set_Size(int width, int height);
    /// Ends the context, as a device that is removed does: `Make_Current` fails until `Recreate_Context`.
    void Lose_Context();

private:
    vrEGLSurface(int width, int height) : Width(width), Height(height) {}
    bool Open(std::string &error);
    bool Try(void *display, const char *way, std::string &error);
    bool Make_Context(std::string &error);
    bool Make_Buffer(std::string &error);
    int Get_Window_Measure(int what, int told) const;

    int Width;
    int Height;
    unsigned Generation = 0;
    // EGL's handles.
    void *Display = nullptr;
    void *Config = nullptr;
    void *Context = nullptr;
    void *Buffer = nullptr; ///< the window's or the pbuffer; none where contexts go without
    unsigned long Window = 0;
    std::string Way;
    std::string Description;
};
