#include "vrOpenGL/vrEGLSurface.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace
{

constexpr int MAX_DEVICES = 16;

std::string Error_Text(const char *what)
{
    char text[96];
    std::snprintf(text, sizeof(text), "%s: EGL error 0x%04x", what, static_cast<unsigned>(eglGetError()));
    return text;
}

void Add_Line(std::string &text, const std::string &line)
{
    if (!text.empty()) text += "; ";
    text += line;
}

bool Has_Client_Extension(std::string_view name)
{
    return epoxy_has_egl_extension(EGL_NO_DISPLAY, name.data());
}

} // namespace

void vrEGLSurface::Prefer_Exact_Filtering()
{
    ::setenv("GALLIVM_PERF", "no_aos_sampling", 0);
}

std::unique_ptr<vrEGLSurface> vrEGLSurface::Create(int width, int height, std::string &error)
{
    error.clear();
    std::unique_ptr<vrEGLSurface> surface(new vrEGLSurface(width, height));
    if (!surface->Open(error)) return nullptr;
    return surface;
}

std::unique_ptr<vrEGLSurface> vrEGLSurface::Create_On_Window(void *display, unsigned long window, std::string &error)
{
    error.clear();
    if (!epoxy_has_egl() || !Has_Client_Extension("EGL_EXT_platform_x11")) {
        error = "no EGL for windows of X11";
        return nullptr;
    }
    std::unique_ptr<vrEGLSurface> surface(new vrEGLSurface(0, 0));
    surface->Window = window;
    if (!surface->Try(eglGetPlatformDisplayEXT(EGL_PLATFORM_X11_EXT, display, nullptr), "EGL window", error))
        return nullptr;
    return surface;
}

vrEGLSurface::~vrEGLSurface()
{
    Lose_Context();
}

bool vrEGLSurface::Open(std::string &error)
{
    if (!epoxy_has_egl()) {
        error = "no EGL library";
        return false;
    }
    if (Has_Client_Extension("EGL_EXT_platform_base")) {
        if (Has_Client_Extension("EGL_EXT_platform_device") && Has_Client_Extension("EGL_EXT_device_enumeration")) {
            std::array<EGLDeviceEXT, MAX_DEVICES> devices{};
            EGLint count = 0;
            if (!eglQueryDevicesEXT(MAX_DEVICES, devices.data(), &count)) count = 0;
            if (count == 0) Add_Line(error, "EGL device: none");
            for (EGLint i = 0; i < count; ++i)
                if (Try(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<size_t>(i)], nullptr),
                        "EGL device", error))
                    return true;
        }
        if (Has_Client_Extension("EGL_MESA_platform_surfaceless") &&
            Try(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr),
                "EGL surfaceless", error))
            return true;
    }
    return Try(eglGetDisplay(EGL_DEFAULT_DISPLAY), "EGL default display", error);
}

bool vrEGLSurface::Try(void *display, const char *way, std::string &error)
{
    Way = way;
    Display = display;
    std::string reason;
    if (display == EGL_NO_DISPLAY) {
        reason = Error_Text("no display");
    } else if (!eglInitialize(display, nullptr, nullptr)) {
        reason = Error_Text("display can't be opened");
    } else if (Make_Context(reason)) {
        error.clear();
        return true;
    }
    Add_Line(error, Way + ": " + reason);
    Display = nullptr;
    return false;
}

bool vrEGLSurface::Make_Context(std::string &error)
{
    if (!eglBindAPI(EGL_OPENGL_API)) {
        error = Error_Text("no OpenGL");
        return false;
    }
    const bool needsBuffer = Window || !epoxy_has_egl_extension(Display, "EGL_KHR_surfaceless_context");
    const EGLint bufferBit = Window ? EGL_WINDOW_BIT : EGL_PBUFFER_BIT;
    const EGLint configAttributes[] = {EGL_SURFACE_TYPE,
                                       needsBuffer ? bufferBit : EGL_DONT_CARE,
                                       EGL_RENDERABLE_TYPE,
                                       EGL_OPENGL_BIT,
                                       EGL_RED_SIZE,
                                       8,
                                       EGL_GREEN_SIZE,
                                       8,
                                       EGL_BLUE_SIZE,
                                       8,
                                       EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(Display, configAttributes, &Config, 1, &count) || count == 0) {
        if (needsBuffer || !epoxy_has_egl_extension(Display, "EGL_KHR_no_config_context")) {
            error = Error_Text("no configuration with 8 bits a channel");
            return false;
        }
        Config = EGL_NO_CONFIG_KHR;
    }

    // A context that tells of a reset is better than one that doesn't; not all can.
    const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION_KHR,
                                 3,
                                 EGL_CONTEXT_MINOR_VERSION_KHR,
                                 3,
                                 EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR,
                                 EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT_KHR,
                                 EGL_CONTEXT_OPENGL_RESET_NOTIFICATION_STRATEGY_KHR,
                                 EGL_LOSE_CONTEXT_ON_RESET_KHR,
                                 EGL_NONE};
    Context = eglCreateContext(Display, Config, EGL_NO_CONTEXT, attributes);
    if (!Context) {
        EGLint plain[7];
        for (int i = 0; i < 6; ++i) plain[i] = attributes[i];
        plain[6] = EGL_NONE;
        Context = eglCreateContext(Display, Config, EGL_NO_CONTEXT, plain);
    }
    if (!Context) {
        error = Error_Text("no OpenGL 3.3 core context");
        return false;
    }
    if ((needsBuffer && !Make_Buffer(error)) || !Make_Current()) {
        if (error.empty()) error = Error_Text("the context can't be made current");
        Lose_Context();
        return false;
    }
    // The tool's timer is the clock, and must not wait for the screen's.
    if (Window) eglSwapInterval(Display, 0);
    const auto *renderer = reinterpret_cast<const char *>(glGetString(GL_RENDERER));
    Description = Way + (Buffer && !Window ? " with a pbuffer, " : ", ") + (renderer ? renderer : "unnamed renderer");
    return true;
}

bool vrEGLSurface::Make_Buffer(std::string &error)
{
    if (Window) {
        Buffer = eglCreateWindowSurface(Display, Config, Window, nullptr);
        if (!Buffer) error = Error_Text("the window can't be drawn into");
        return Buffer != nullptr;
    }
    const EGLint size[] = {EGL_WIDTH, std::max(1, Width), EGL_HEIGHT, std::max(1, Height), EGL_NONE};
    Buffer = eglCreatePbufferSurface(Display, Config, size);
    if (!Buffer) error = Error_Text("no pbuffer");
    return Buffer != nullptr;
}

/// Until the owner tells a size: EGL may learn of a new one only after the next frame.
int vrEGLSurface::Get_Window_Measure(int what, int told) const
{
    EGLint measure = 0;
    const bool isKnown = told > 0 || !Window || !Buffer;
    return !isKnown && eglQuerySurface(Display, Buffer, what, &measure) ? measure : told;
}

int vrEGLSurface::Get_Width() const
{
    return Get_Window_Measure(EGL_WIDTH, Width);
}

int vrEGLSurface::Get_Height() const
{
    return Get_Window_Measure(EGL_HEIGHT, Height);
}

void vrEGLSurface::Swap()
{
    if (Window && Buffer) eglSwapBuffers(Display, Buffer);
}

bool vrEGLSurface::Make_Current()
{
    if (!Context) return false;
    if (eglGetCurrentContext() == Context) return true;
    // The API that a context is made current for is the thread's own state.
    return eglBindAPI(EGL_OPENGL_API) && eglMakeCurrent(Display, Buffer, Buffer, Context);
}

void vrEGLSurface::Release_Current()
{
    if (Context && eglGetCurrentContext() == Context)
        eglMakeCurrent(Display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

bool vrEGLSurface::Recreate_Context()
{
    if (!Display) return false;
    Lose_Context();
    std::string error;
    return Make_Context(error);
}

void vrEGLSurface::Set_Size(int width, int height)
{
    Width = width;
    Height = height;
}

void vrEGLSurface::Lose_Context()
{
    if (!Context) return;
    Release_Current();
    if (Buffer) eglDestroySurface(Display, Buffer);
    eglDestroyContext(Display, Context);
    Buffer = nullptr;
    Context = nullptr;
    ++Generation;
}
