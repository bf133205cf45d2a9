#include "MKLib/File/DiskOnlyFiles.h"

#include "MKPlatform/Paths.h"
#include "MKPlatform/Threads.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>

namespace DiskOnlyFiles
{

namespace
{

/// Compares in place: every open asks, and builds no string for it.
struct IsBeforeIgnoringCase
{
    using is_transparent = void;

    bool operator()(std::string_view left, std::string_view right) const
    {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                            [](char a, char b) { return MK::Lower(a) < MK::Lower(b); });
    }
};

struct State
{
    FastThreadLockClass Lock;
    std::set<MK::String, IsBeforeIgnoringCase> Names;
    std::vector<MK::String> DataRoots;
};

State &The_State()
{
    static State state;
    return state;
}

// Most programs register nothing, and then an open takes no lock here.
std::atomic<bool> HasNames{false};

bool Is_Separator(char c)
{
    return c == '\\' || c == '/';
}

/// What follows `Data\`, or nothing.
std::string_view Rest_Of_Data_Name(std::string_view name)
{
    if (name.starts_with('.')) name.remove_prefix(1);
    if (!name.empty() && Is_Separator(name[0])) name.remove_prefix(1);
    if (name.size() < 5 || !MK::Equal_Ignoring_Case(name.substr(0, 4), "Data") || !Is_Separator(name[4])) return {};
    return name.substr(5);
}

} // namespace

void Add(std::string_view name)
{
    State &state = The_State();
    const std::lock_guard lock(state.Lock);
    state.Names.emplace(MKPlatform::Path_File_Name(name));
    HasNames = true;
}

bool Contains(std::string_view path)
{
    if (!HasNames.load(std::memory_order_relaxed)) return false;
    State &state = The_State();
    const std::lock_guard lock(state.Lock);
    return state.Names.contains(MKPlatform::Path_File_Name(path));
}

void Set_Data_Roots(std::vector<MK::String> roots)
{
    State &state = The_State();
    const std::lock_guard lock(state.Lock);
    state.DataRoots = std::move(roots);
}

std::vector<MK::String> Data_Root_Names(std::string_view name)
{
    std::vector<MK::String> names;
    const std::string_view rest = Rest_Of_Data_Name(name);
    if (rest.empty()) return names;
    State &state = The_State();
    const std::lock_guard lock(state.Lock);
    for (const MK::String &root : state.DataRoots) (names.emplace_back(root) += "\\Data\\").append(rest);
    return names;
}

} // namespace DiskOnlyFiles
