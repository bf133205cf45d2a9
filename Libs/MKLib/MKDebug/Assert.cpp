#include "MKLib/MKDebug/Assert.h"

#include "MKLib/MKDebug/Logger.h"

#include <mutex>

namespace MKDebug
{

namespace
{
std::mutex CollectorLock;
AssertCollector Collector = nullptr;
void *CollectorContext = nullptr;
Logger AssertLog("Assert");
} // namespace

void Set_Assert_Collector(AssertCollector collector, void *context)
{
    const std::lock_guard lock(CollectorLock);
    Collector = collector;
    CollectorContext = context;
}

void Report_Assert(const char *text, const char *file, int line)
{
    {
        const std::lock_guard lock(CollectorLock);
        if (Collector) {
            Collector({text, file, line}, CollectorContext);
            return;
        }
    }
    MK_LOG(AssertLog, LogLevel::Error, "%s (%s:%d)", text, file, line);
}

} // namespace MKDebug
