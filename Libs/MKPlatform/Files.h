#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Files of the operating system. Paths here are engine paths: `\` and `/` both separate, and letters match in either
/// case; `To_System_Path` is the only place that maps them. Any thread.
namespace MKPlatform
{

/// How a file is opened. Values 3 and 4 are the exclusive forms of 0 and 1.
enum FileAccess : int
{
    FILE_OPEN_INVALID = -1,
    FILE_OPEN_GENERIC_READ = 0,  ///< must exist; others may read, write and delete it
    FILE_OPEN_GENERIC_WRITE = 1, ///< an existing file is emptied at once
    FILE_OPEN_WRITE_APPEND = 2,  ///< opened or created, at its end
    FILE_OPEN_EXCLUSIVE_READ = 3,
    FILE_OPEN_EXCLUSIVE_WRITE = 4,
    FILE_OPEN_TOTAL = 5
};

enum FileSeekOrigin : int
{
    FILE_SEEK_INVALID = -1,
    FILE_SEEK_BEGIN = 0,
    FILE_SEEK_CURRENT = 1,
    FILE_SEEK_END = 2,
    FILE_SEEK_TOTAL = 3
};

using FileHandle = int;
constexpr FileHandle INVALID_FILE = -1;

/// The system's form of an engine path: separators, and then for each component that isn't there as written the first
/// entry (in name order) of its directory that equals it ignoring case. What isn't found stays as written. Any name of
/// the system's own passes unchanged, so that a `\` inside a file name only matters when the name with `/` is missing.
std::string To_System_Path(std::string_view enginePath);

/// INVALID_FILE on failure, with the system's error number in `error` when given. A write to a file with the read-only
/// attribute is refused for every user.
FileHandle File_Open(std::string_view enginePath, FileAccess access, int *error = nullptr);
/// False when bytes that were written before didn't reach the disk; the handle is gone all the same.
bool File_Close(FileHandle handle, int *error = nullptr);
/// Bytes moved (fewer at the end of a file or on a full disk), or -1 on failure.
int64_t File_Read(FileHandle handle, void *buffer, int64_t size);
/// `error`, when given, gets the system's error number when not all was written, and 0 otherwise.
int64_t File_Write(FileHandle handle, const void *buffer, int64_t size, int *error = nullptr);
/// The new position, or -1.
int64_t File_Seek(FileHandle handle, int64_t offset, FileSeekOrigin origin);
int64_t File_Size(FileHandle handle);

/// What the system says about an error number.
std::string Error_Text(int error);

bool File_Exists(std::string_view enginePath);
bool Directory_Exists(std::string_view enginePath);
/// The read-only attribute: nobody may write the file, or this process may not. False for a missing file.
bool File_Is_Read_Only(std::string_view enginePath);
/// Whether a name fits a pattern of `*` and `?`, with A to Z equal to a to z; `*.*` fits names without a dot too.
bool Name_Matches(std::string_view name, std::string_view pattern);
/// Names (not paths) of the regular files of a directory that match `pattern` (`*` and `?`, ignoring case), sorted by
/// bytes so that every system lists alike. False with `error` set when the directory can't be read.
bool List_Files(std::string_view directory, std::string_view pattern, std::vector<std::string> &names,
                std::string *error = nullptr);
/// The same for sub-directories, without `.` and `..`.
bool List_Directories(std::string_view directory, std::vector<std::string> &names, std::string *error = nullptr);

/// One result of a file search.
struct FileFindStruct
{
    std::string FileName; ///< without directory
    int64_t FileSize = 0; ///< in bytes
};

std::string Get_Current_Directory();
bool Set_Current_Directory(std::string_view enginePath);
/// Absolute and lexically normal system path of an engine path, against the current directory.
std::string Absolute_Path(std::string_view enginePath);
/// The directory of the running program, without a separator at the end.
std::string Executable_Directory();

} // namespace MKPlatform
