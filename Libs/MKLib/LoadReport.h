#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What a load had to mend. Loads go on past what they can't use: a default stands in, or data is dropped. Whoever
/// wants to know installs a collector on the thread that loads; without one, a report costs one thread-local load.
namespace LoadReport
{

struct Finding
{
    std::string Place;  ///< such as "group 0 / layer 2 / spawner"; empty for the whole file
    std::string Found;  ///< what was there
    std::string Result; ///< what becomes of it
};

/// Collects the findings of its thread for as long as it lives; one that was installed before has its turn again after.
class Collector
{
public:
    static constexpr size_t MAX_FINDINGS = 1000; ///< what comes after is only counted

    Collector();
    Collector(const Collector &) = delete;
    Collector &operator=(const Collector &) = delete;
    ~Collector();

    const std::vector<Finding> &Get_Findings() const { return Findings; }
    size_t Get_Left_Out() const { return LeftOut; } ///< findings past the limit
    void Add(std::string found, std::string result);

private:
    friend class Place;

    Collector *Previous;
    const class Place *Innermost = nullptr;
    std::vector<Finding> Findings;
    size_t LeftOut = 0;
};

/// Whether a collector is installed; texts are worth making only then.
bool Is_Wanted();
/// Adds a finding at the current place; without a collector it is lost.
void Add(std::string found, std::string result);

/// Names the part of the file that is being loaded for as long as it lives. Places nest.
class Place
{
public:
    /// `what` must be static; `index` tells which of several, or is -1.
    explicit Place(const char *what, int index = -1);
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;
    ~Place();

private:
    friend class Collector;

    Collector *Owner;
    const Place *Outer = nullptr;
    const char *What;
    int Index;
};

} // namespace LoadReport
