#include "Code/NoPreview.h"
#include "Code/RunTool.h"
#include "FlareTrim/DemoSession.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"

#include <cstdio>

int main()
{
    HeadlessApplication application;
    bool succeeded = false;
    application.Set_Session(
        [&](HeadlessMainForm &form) { succeeded = DemoSession(application, form).Run(); });
    const int code = Run_Tool(application, std::make_unique<NoPreview>());
    for (const ShownMessageBox &box : application.Get_Message_Boxes()) std::fprintf(stderr, "%s\n", box.Text.c_str());
    return code == 0 && succeeded ? 0 : 1;
}
