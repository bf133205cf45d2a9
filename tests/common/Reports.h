#pragma once

#include "MKLib/MKDebug/Logger.h"

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace MKTest
{

/// While one lives, assertions and log lines of every thread are collected here and nothing is printed. One at a time.
class Reports
{
public:
    /// Collects log lines from `level` up.
    explicit Reports(MKDebug::LogLevel level = MKDebug::LogLevel::Trace);
    Reports(const Reports &) = delete;
    Reports &operator=(const Reports &) = delete;
    ~Reports();

    /// The quoted texts of the violated assertions, in order.
    std::vector<std::string> Get_Asserts() const;
    /// Log lines in order, each as "Logger: text" without its newline.
    std::vector<std::string> Get_Logs() const;

    bool Has_Assert(std::string_view text) const { return Count_Asserts(text) > 0; } ///< exactly this text
    bool Has_Log(std::string_view part) const { return Count_Logs(part) > 0; }       ///< some line holds this part
    int Count_Asserts(std::string_view text) const;
    int Count_Logs(std::string_view part) const;
    std::string Get_Text() const; ///< everything, a line each; for failure messages
    void Clear();

private:
    mutable std::mutex Lock;
    std::vector<std::string> Asserts;
    std::vector<std::string> Logs;
};

} // namespace MKTest
