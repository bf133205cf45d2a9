#include "MKLib/MKDebug/Assert.h"

#include "MKLib/MKDebug/AssertScope.h"

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
thread_local AssertScope *innermostScope = nullptr;

} // namespace

void Set_Assert_Collector(AssertCollector collector, void *context)
{
    const std::lock_guard lock(CollectorLock);
    Collector = collector;
    CollectorContext = context;
}

void Report_Assert(const char *text, const char *file, int line)
{
    if (!AssertScope::Is_New(text)) return;
    {
        const std::lock_guard lock(CollectorLock);
        if (Collector) {
            Collector({text, file, line}, CollectorContext);
            return;
        }
    }
    MK_LOG(AssertLog, LogLevel::Error, "%s (%s:%d)", text, file, line);
}

AssertScope::AssertScope() : Outer(innermostScope)
{
    innermostScope = this;
}

AssertScope::~AssertScope()
{
    innermostScope = Outer;
}

bool AssertScope::Is_New(const char *text)
{
    AssertScope *scope = innermostScope;
    if (!scope) return true;
    for (int at = 0; at < scope->Count; ++at)
        if (scope->Texts[at] == text) return false;
    if (scope->Count < MAX_TEXTS) scope->Texts[scope->Count++] = text;
    return true;
}

} // namespace MKDebug
