#include "FlareTrim/PanelDevice.h"

#include "Code/SceneViewForm.h"
#include "Desktop/DesktopApplication.h"
#include "vrOpenGL/vrEGLSurface.h"
#include "vrOpenGL/vrOpenGLDevice.h"

#include <cstdint>
#include <utility>

namespace
{

/// An OpenGL device with the surface that it borrows.
class PanelDevice final : public vrDevice
{
public:
    PanelDevice(std::unique_ptr<vrEGLSurface> surface, const ViewPanel &panel)
        : Surface(std::move(surface)), Device(*Surface), Panel(panel)
    {
    }

    bool Init() override { return Device.Init(); }
    bool Create_Device(std::string &error) override { return Device.Create_Device(error); }
    bool Is_Device_Operational() override { return Device.Is_Device_Operational(); }
    void Resize_Back_Buffer(int width, int height) override
    {
        Surface->Set_Size(Panel.Get_Width(), Panel.Get_Height());
        Device.Resize_Back_Buffer(width, height);
    }
    void Shutdown() override { Device.Shutdown(); }

private:
    std::unique_ptr<vrEGLSurface> Surface;
    vrOpenGLDevice Device;
    const ViewPanel &Panel;
};

} // namespace

std::unique_ptr<vrDevice> Make_Panel_Device(const DesktopApplication &application, const ViewPanel &panel,
                                            std::string &error)
{
    void *display = application.Get_X_Display();
    if (!display) {
        error = "the windows aren't on an X server";
        return nullptr;
    }
    auto surface = vrEGLSurface::Create_On_Window(display, reinterpret_cast<uintptr_t>(panel.Get_Handle()), error);
    if (!surface) return nullptr;
    return std::make_unique<PanelDevice>(std::move(surface), panel);
}
