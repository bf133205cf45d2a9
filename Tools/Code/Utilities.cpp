#include "Code/Utilities.h"

#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Files.h"

namespace Utilities
{

void Initialize_Logger(const std::string &path)
{
    if (!MKPlatform::File_Exists(path)) return;
    MKDebug::Logger::Configure(MKPlatform::To_System_Path(path).c_str());
}

} // namespace Utilities
