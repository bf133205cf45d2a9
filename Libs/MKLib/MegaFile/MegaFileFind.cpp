#include "MKLib/MegaFile/MegaFileManager.h"

#include "MKLib/File/FileLock.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKPlatform/Paths.h"

#include <algorithm>
#include <mutex>
#include <set>

using namespace MKPlatform;

namespace
{

/// A search in the making: each name once, whatever its case.
class Finder
{
public:
    explicit Finder(std::string_view spec) : Directory(Path_Directory(spec)), Pattern(Path_File_Name(spec)) {}

    void Add_Disk_Files()
    {
        std::vector<std::string> names;
        List_Files(Directory, Pattern, names);
        for (const std::string &name : names) {
            FileClass file(std::string(Directory) + (Directory.empty() ? "" : "\\") + name);
            if (file.Open(FILE_OPEN_GENERIC_READ)) Add(name, file.Get_Size());
        }
    }

    void Add_Sub_Files(const MegaFileClass &archive)
    {
        for (int i = 0; i < archive.Get_Subfile_Count(); ++i) {
            const std::string_view path = archive.Subfile_Get_Name(i);
            const std::string_view name = Path_File_Name(path);
            if (Name_Matches(name, Pattern) && Is_In_Directory(Path_Directory(path)))
                Add(name, archive.Subfile_Get_Size(i));
        }
    }

    std::vector<FileFindStruct> Found;

private:
    void Add(std::string_view name, int64_t size)
    {
        if (Seen.insert(MK::Lowered(name)).second) Found.push_back({std::string(name), size});
    }

    bool Is_In_Directory(std::string_view directory) const
    {
        return MegaFileHeaderClass::Name_CRC(directory) == MegaFileHeaderClass::Name_CRC(Directory);
    }

    std::string_view Directory;
    std::string_view Pattern;
    std::set<MK::String> Seen;
};

} // namespace

bool MegaFileManagerClass::Find_First(const char *file_spec, FileFindStruct *find_data)
{
    if (!MK_VERIFY(file_spec && find_data, "!file_spec || !find_data")) return false;
    const FileLockClass fileLock;
    const std::lock_guard lock(Lock);
    Finder finder(file_spec);
    finder.Add_Disk_Files();
    for (const MegaFileEntry &entry : MegaFileList)
        if (entry.Access == ACCESS_PUBLIC) finder.Add_Sub_Files(*entry.MegaFileData);
    if (finder.Found.empty()) return false;
    Find_Close(find_data);
    FindStack.emplace_back(MegafileFindStateClass{std::move(finder.Found), 0}, find_data);
    return Find_Next(find_data);
}

bool MegaFileManagerClass::Find_Next(FileFindStruct *find_data)
{
    const FileLockClass fileLock;
    const std::lock_guard lock(Lock);
    const auto state = std::find_if(FindStack.rbegin(), FindStack.rend(),
                                    [find_data](const auto &search) { return search.second == find_data; });
    if (!MK_VERIFY(find_data && state != FindStack.rend(), "find_state == NULL || !find_data")) return false;
    if (state->first.Next == state->first.Found.size()) return false;
    *find_data = state->first.Found[state->first.Next++];
    return true;
}

bool MegaFileManagerClass::Find_Close(FileFindStruct *find_data)
{
    const FileLockClass fileLock;
    const std::lock_guard lock(Lock);
    return std::erase_if(FindStack, [find_data](const auto &search) { return search.second == find_data; }) > 0;
}
