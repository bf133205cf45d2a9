#include "Code/NoPreview.h"
#include "Code/RunTool.h"
#include "Code/ScenePreview.h"
#include "Desktop/DesktopApplication.h"
#include "FlareTrim/DemoSession.h"
#include "FlareTrim/PanelDevice.h"
#include "FlareTrim/ScreenshotSession.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"
#include "vrOpenGL/vrEGLSurface.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr const char *USAGE = "Usage: FlareTrim [--headless | --screenshots DIR]\n"
                              "\n"
                              "Trims the effects of the game whose directory it runs in a folder of.\n"
                              "\n"
                              "  --headless         without a window: runs the main job once, and prints each step\n"
                              "  --screenshots DIR  runs the main job in the window, and leaves its pictures in DIR\n";

int Run_Headless()
{
    HeadlessApplication application;
    bool succeeded = false;
    application.Set_Session([&](HeadlessMainForm &form) { succeeded = DemoSession(application, form).Run(); });
    const int code = Run_Tool(application, std::make_unique<NoPreview>());
    for (const ShownMessageBox &box : application.Get_Message_Boxes()) std::fprintf(stderr, "%s\n", box.Text.c_str());
    return code == 0 && succeeded ? 0 : 1;
}

bool Has_Screen()
{
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

std::unique_ptr<PreviewDriver> Make_Preview(const DesktopApplication &application)
{
    return std::make_unique<ScenePreview>(
        [&application](ViewPanel &panel, std::string &error) { return Make_Panel_Device(application, panel, error); });
}

int Run_Screenshots(int argc, char **argv, const char *directory)
{
    DesktopApplication application(argc, argv);
    bool succeeded = false;
    application.Set_Session(
        [&](DesktopMainForm &form) { succeeded = ScreenshotSession(application, form, directory).Run(); });
    const int code = Run_Tool(application, Make_Preview(application));
    return code == 0 && succeeded ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const bool isOption = argc > 1 && std::strncmp(argv[1], "--", 2) == 0;
    if (argc == 2 && std::strcmp(argv[1], "--headless") == 0) return Run_Headless();
    const bool wantsPictures = argc == 3 && std::strcmp(argv[1], "--screenshots") == 0;
    if (isOption && !wantsPictures) {
        std::fputs(USAGE, stdout);
        return std::strcmp(argv[1], "--help") == 0 ? 0 : 2;
    }
    if (!Has_Screen()) {
        std::fputs("There is no screen here. Run the tool under xvfb-run, or with --headless.\n", stderr);
        return 2;
    }
    vrEGLSurface::Prefer_Exact_Filtering();
    if (wantsPictures) return Run_Screenshots(argc, argv, argv[2]);
    DesktopApplication application(argc, argv);
    return Run_Tool(application, Make_Preview(application));
}
