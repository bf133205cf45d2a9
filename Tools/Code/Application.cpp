#include "Code/Application.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKPlatform/Files.h"

namespace
{

Application *TheApplication = nullptr;

} // namespace

Application::Application()
{
    MK_ASSERT(TheApplication == nullptr, "TheApplication == NULL");
    TheApplication = this;
}

Application::~Application()
{
    TheApplication = nullptr;
}

Application &Application::Get_Instance()
{
    return *TheApplication;
}

std::string Application::Get_Startup_Path() const
{
    return MKPlatform::Executable_Directory();
}

std::string Application::Get_Current_Directory() const
{
    return MKPlatform::Get_Current_Directory();
}

void Application::Set_Current_Directory(const std::string &path)
{
    MKPlatform::Set_Current_Directory(path);
}
