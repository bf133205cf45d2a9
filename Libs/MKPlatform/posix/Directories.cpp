#include "MKPlatform/Files.h"

#include "MKPlatform/posix/SystemPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace MKPlatform
{

namespace
{

/// Follows links. The type that the listing gives for nothing spares most entries the look at their node.
bool Is_Of_Kind(DIR *listing, const dirent *entry, bool directories)
{
    if (entry->d_type == DT_REG) return !directories;
    if (entry->d_type == DT_DIR) return directories;
    struct stat status;
    if (fstatat(dirfd(listing), entry->d_name, &status, 0) != 0) return false;
    return directories ? S_ISDIR(status.st_mode) : S_ISREG(status.st_mode);
}

bool List(std::string_view directory, std::string_view pattern, bool directories, std::vector<std::string> &names,
          std::string *error)
{
    names.clear();
    const std::string path = directory.empty() ? "." : To_System_Path(directory);
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(opendir(path.c_str()), closedir);
    int failure = listing ? 0 : errno;
    while (listing) {
        errno = 0;
        const dirent *entry = readdir(listing.get());
        if (!entry) {
            failure = errno;
            break;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && Name_Matches(name, pattern) && Is_Of_Kind(listing.get(), entry, directories))
            names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    if (failure != 0 && error) *error = path + ": " + Error_Text(failure);
    return failure == 0;
}

} // namespace

// At a mismatch it goes back to the latest star alone, which is enough and keeps the cost at the product of the
// lengths.
bool Name_Matches(std::string_view name, std::string_view pattern)
{
    if (pattern == "*.*") pattern = "*";
    size_t n = 0, p = 0, star = pattern.npos, retry = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || Lowered(pattern[p]) == Lowered(name[n]))) {
            ++p;
            ++n;
        } else if (star != pattern.npos) {
            p = star + 1;
            n = ++retry;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

bool List_Files(std::string_view directory, std::string_view pattern, std::vector<std::string> &names,
                std::string *error)
{
    return List(directory, pattern, false, names, error);
}

bool List_Directories(std::string_view directory, std::vector<std::string> &names, std::string *error)
{
    return List(directory, "*", true, names, error);
}

std::string Get_Current_Directory()
{
    const std::unique_ptr<char, void (*)(void *)> path(getcwd(nullptr, 0), std::free);
    return path ? path.get() : ".";
}

bool Set_Current_Directory(std::string_view enginePath)
{
    return enginePath.find('\0') == enginePath.npos && chdir(To_System_Path(enginePath).c_str()) == 0;
}

std::string Absolute_Path(std::string_view enginePath)
{
    const std::filesystem::path path(To_System_Path(enginePath));
    return (std::filesystem::path(Get_Current_Directory()) / path).lexically_normal().string();
}

std::string Executable_Directory()
{
    std::string target(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", target.data(), target.size());
        if (length < 0) return ".";
        if (static_cast<size_t>(length) < target.size()) {
            target.resize(static_cast<size_t>(length));
            break;
        }
        target.resize(target.size() * 2);
    }
    const size_t separator = target.rfind('/');
    return separator == target.npos ? "." : target.substr(0, separator);
}

} // namespace MKPlatform
