#pragma once

/// Named loggers of the engine, over log4cxx, whose headers stay inside Logger.cpp.
///
/// A `Logger` is a static object of one source file, named as the logging configuration names it ("MegaFileLog"). A
/// disabled level costs one relaxed load and a compare, with no formatting. Any thread may log.

#include <atomic>
#include <string>

namespace MKDebug
{

enum class LogLevel : int
{
    Trace,
    Debug,
    Info,
    Warning,
    Error,
    Fatal,
    Off
};

class Logger
{
public:
    /// `name` must be static: it is kept.
    explicit constexpr Logger(const char *name) : Name(name) {}
    Logger(const Logger &) = delete;
    Logger &operator=(const Logger &) = delete;

    bool Is_Enabled(LogLevel level)
    {
        if (Generation.load(std::memory_order_relaxed) != CurrentGeneration.load(std::memory_order_relaxed)) Refresh();
        return static_cast<int>(level) >= Threshold.load(std::memory_order_relaxed);
    }

    /// printf-style. A trailing newline is dropped: the layout of the configuration ends the line.
    void Write(LogLevel level, const char *format, ...) __attribute__((format(printf, 3, 4)));

    /// Reads the levels and appenders from a log4cxx properties file (a system path). False when it can't be read: the
    /// default configuration (warnings and worse, on standard error) then stays in force.
    static bool Configure(const char *propertiesPath);

    /// Writes everything from `level` up to standard error, in place of any configuration.
    static void Configure_Console(LogLevel level);

private:
    void Refresh();

    static std::atomic<unsigned> CurrentGeneration; ///< grows with each configuration
    const char *Name;
    std::atomic<unsigned> Generation{0};
    std::atomic<int> Threshold{0};
};

/// Receives every enabled line in place of log4cxx while set; tests use it to look at what was logged. Null removes it.
using LogCollector = void (*)(const char *logger, LogLevel level, const std::string &text, void *context);
void Set_Log_Collector(LogCollector collector, void *context);

} // namespace MKDebug

#define MK_LOG(logger, level, ...)                                                                                     \
    do {                                                                                                               \
        if ((logger).Is_Enabled(level)) (logger).Write(level, __VA_ARGS__);                                            \
    } while (false)
