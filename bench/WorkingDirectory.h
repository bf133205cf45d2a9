#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// A working directory with any number of emitter files of the samples' kinds, each under a name of its own. Goes away
/// with the object.
class WorkingDirectory
{
public:
    /// Copies the zlib files of `samples` round and round until there are `count`.
    WorkingDirectory(const std::filesystem::path &samples, int count);
    WorkingDirectory(const WorkingDirectory &) = delete;
    WorkingDirectory &operator=(const WorkingDirectory &) = delete;
    ~WorkingDirectory();

    const std::filesystem::path &Get_Path() const { return Path; }
    const std::vector<std::string> &Get_Files() const { return Files; }

private:
    std::filesystem::path Path;
    std::vector<std::string> Files;
};
