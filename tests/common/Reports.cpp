#include "common/Reports.h"

#include "MKLib/MKDebug/Assert.h"

#include <algorithm>

namespace MKTest
{

Reports::Reports(MKDebug::LogLevel level)
{
    MKDebug::Logger::Configure_Console(level);
    MKDebug::Set_Assert_Collector(
        [](const MKDebug::AssertReport &report, void *context) {
            auto *self = static_cast<Reports *>(context);
            const std::lock_guard lock(self->Lock);
            self->Asserts.emplace_back(report.text);
        },
        this);
    MKDebug::Set_Log_Collector(
        [](const char *logger, MKDebug::LogLevel, const std::string &text, void *context) {
            auto *self = static_cast<Reports *>(context);
            const std::lock_guard lock(self->Lock);
            self->Logs.push_back(std::string(logger) + ": " + text);
        },
        this);
}

Reports::~Reports()
{
    MKDebug::Set_Assert_Collector(nullptr, nullptr);
    MKDebug::Set_Log_Collector(nullptr, nullptr);
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Warning);
}

std::vector<std::string> Reports::Get_Asserts() const
{
    const std::lock_guard lock(Lock);
    return Asserts;
}

std::vector<std::string> Reports::Get_Logs() const
{
    const std::lock_guard lock(Lock);
    return Logs;
}

int Reports::Count_Asserts(std::string_view text) const
{
    const std::lock_guard lock(Lock);
    return static_cast<int>(std::count(Asserts.begin(), Asserts.end(), text));
}

int Reports::Count_Logs(std::string_view part) const
{
    const std::lock_guard lock(Lock);
    return static_cast<int>(std::count_if(
        Logs.begin(), Logs.end(), [part](const std::string &line) { return line.find(part) != std::string::npos; }));
}

std::string Reports::Get_Text() const
{
    const std::lock_guard lock(Lock);
    std::string text;
    for (const std::string &line : Asserts) text += "assert " + line + "\n";
    for (const std::string &line : Logs) text += line + "\n";
    return text;
}

void Reports::Clear()
{
    const std::lock_guard lock(Lock);
    Asserts.clear();
    Logs.clear();
}

} // namespace MKTest
