#include "MKLib/MKDebug/Logger.h"

#include <log4cxx/basicconfigurator.h>
#include <log4cxx/consoleappender.h>
#include <log4cxx/helpers/exception.h>
#include <log4cxx/logger.h>
#include <log4cxx/logmanager.h>
#include <log4cxx/patternlayout.h>
#include <log4cxx/propertyconfigurator.h>

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <mutex>

namespace MKDebug
{

namespace
{

constexpr const char *LEVEL_NAMES[] = {"TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL", "OFF"};

std::mutex ConfigurationLock;
std::mutex CollectorLock;
LogCollector Collector = nullptr;
void *CollectorContext = nullptr;

log4cxx::LevelPtr Backend_Level(LogLevel level)
{
    return log4cxx::Level::toLevel(LEVEL_NAMES[static_cast<int>(level)]);
}

void Install_Console(LogLevel level)
{
    log4cxx::LogManager::getLoggerRepository()->resetConfiguration();
    auto layout = std::make_shared<log4cxx::PatternLayout>("%c: %m%n");
    auto appender = std::make_shared<log4cxx::ConsoleAppender>(layout, log4cxx::ConsoleAppender::getSystemErr());
    log4cxx::BasicConfigurator::configure(appender);
    log4cxx::Logger::getRootLogger()->setLevel(Backend_Level(level));
}

/// The first logger that is used before any configuration gets the default one.
void Ensure_Configured()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Our texts are UTF-8 in every locale; in one of another character set log4cxx prints the rest as question marks.
        std::setlocale(LC_CTYPE, "C.UTF-8");
        Install_Console(LogLevel::Warning);
    });
}

std::string Format(const char *format, va_list arguments)
{
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) return format;
    std::string text(static_cast<size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

} // namespace

std::atomic<unsigned> Logger::CurrentGeneration{1};

bool Logger::Configure(const char *propertiesPath)
{
    Ensure_Configured();
    std::error_code error;
    if (!std::filesystem::is_regular_file(propertiesPath, error)) return false;
    const std::lock_guard lock(ConfigurationLock);
    log4cxx::LogManager::getLoggerRepository()->resetConfiguration();
    bool configured = false;
    try {
        configured = log4cxx::PropertyConfigurator::configure(log4cxx::File(propertiesPath)) ==
                     log4cxx::spi::ConfigurationStatus::Configured;
    } catch (const log4cxx::helpers::Exception &error) {
        std::fprintf(stderr, "%s: %s\n", propertiesPath, error.what());
    }
    if (!configured) Install_Console(LogLevel::Warning);
    CurrentGeneration.fetch_add(1);
    return configured;
}

void Logger::Configure_Console(LogLevel level)
{
    Ensure_Configured();
    const std::lock_guard lock(ConfigurationLock);
    Install_Console(level);
    CurrentGeneration.fetch_add(1);
}

void Logger::Refresh()
{
    Ensure_Configured();
    const std::lock_guard lock(ConfigurationLock);
    const auto backend = log4cxx::Logger::getLogger(Name);
    int threshold = static_cast<int>(LogLevel::Off);
    for (int level = threshold - 1; level >= 0; --level)
        if (backend->isEnabledFor(Backend_Level(static_cast<LogLevel>(level)))) threshold = level;
    Threshold.store(threshold);
    Generation.store(CurrentGeneration.load());
}

void Logger::Write(LogLevel level, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = Format(format, arguments);
    va_end(arguments);
    {
        const std::lock_guard lock(CollectorLock);
        if (Collector) {
            Collector(Name, level, text, CollectorContext);
            return;
        }
    }
    log4cxx::Logger::getLogger(Name)->forcedLog(Backend_Level(level), text);
}

void Set_Log_Collector(LogCollector collector, void *context)
{
    const std::lock_guard lock(CollectorLock);
    Collector = collector;
    CollectorContext = context;
}

} // namespace MKDebug
