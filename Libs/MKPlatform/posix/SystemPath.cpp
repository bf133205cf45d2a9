#include "MKPlatform/Files.h"

#include "MKPlatform/posix/SystemPath.h"

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace MKPlatform
{

namespace
{

bool Equal_Ignoring_Case(std::string_view left, std::string_view right)
{
    if (left.size() != right.size()) return false;
    for (size_t i = 0; i < left.size(); ++i)
        if (Lowered(left[i]) != Lowered(right[i])) return false;
    return true;
}

bool Is_There(const std::string &path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

/// The first entry in name order that equals `component` ignoring case, or empty.
std::string Find_In_Directory(const std::string &directory, std::string_view component)
{
    std::string found;
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(opendir(directory.empty() ? "." : directory.c_str()), closedir);
    if (!listing) return found;
    while (const dirent *entry = readdir(listing.get()))
        if (Equal_Ignoring_Case(entry->d_name, component) && (found.empty() || found > entry->d_name))
            found = entry->d_name;
    return found;
}

std::string Resolve_Components(const std::string &path)
{
    std::string resolved;
    for (size_t start = 0; start < path.size();) {
        if (path[start] == '/') {
            resolved += path[start++];
            continue;
        }
        const size_t end = std::min(path.find('/', start), path.size());
        const std::string_view component = std::string_view(path).substr(start, end - start);
        const size_t parent = resolved.size();
        resolved += component;
        if (!Is_There(resolved)) {
            const std::string entry = Find_In_Directory(resolved.substr(0, parent), component);
            if (entry.empty()) return resolved + path.substr(end);
            resolved.replace(parent, resolved.npos, entry);
        }
        start = end;
    }
    return resolved;
}

} // namespace

std::string With_System_Separators(std::string_view enginePath)
{
    std::string path(enginePath);
    for (char &c : path)
        if (c == '\\') c = '/';
    return path;
}

std::string To_System_Path(std::string_view enginePath)
{
    std::string path = With_System_Separators(enginePath);
    if (path.find('\0') != path.npos || Is_There(path)) return path;
    if (enginePath.find('\\') != enginePath.npos)
        if (std::string raw(enginePath); Is_There(raw)) return raw;
    return Resolve_Components(path);
}

} // namespace MKPlatform
