#include "Code/RunTool.h"

#include "Code/Application.h"
#include "Code/ApplicationCore.h"
#include "Code/PreviewDriver.h"

#include <exception>
#include <utility>

int Run_Tool(Application &application, std::unique_ptr<PreviewDriver> preview)
{
    try {
        ApplicationCore core(std::move(preview));
        if (!core.Initialize()) return -1;
        application.Do_Events();
        application.Run(core);
    } catch (const std::exception &exception) {
        application.Show_Message_Box(std::string("Exception: ") + exception.what());
    } catch (...) {
        application.Show_Message_Box("Exception: of an unknown kind");
    }
    return 0;
}
