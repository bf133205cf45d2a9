#include "Code/ManagedUtility.h"

#include "Code/ShellUtil.h"
#include "MKPlatform/Files.h"
#include "MKPlatform/Processes.h"

namespace ManagedUtility
{

std::string Str::ToStdString(const std::string &text)
{
    return text;
}

bool Cmd::Execute_Command(const std::string &command, const char *directory)
{
    return MKPlatform::Run_And_Wait(Str::ToStdString(command), directory ? directory : "");
}

bool Cmd::Check_Out(const std::string &path)
{
    Execute_Command(ShellUtil::Command_On_File("p4 edit", path), nullptr);
    return !MKPlatform::File_Is_Read_Only(path);
}

} // namespace ManagedUtility
