#pragma once

#include "MKLib/MegaFile/MegaFile.h"
#include "MKPlatform/Files.h"
#include "MKPlatform/Threads.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

constexpr int INVALID_MEGAFILE_HANDLE = -1;

/// What is left of a search that `Find_First` began.
struct MegafileFindStateClass
{
    std::vector<MKPlatform::FileFindStruct> Found;
    size_t Next = 0;
};

/// The open archives, and the sub-files that are open in them. `FileClass` asks the one in `TheMegaFileManager`. Any
/// thread: each operation takes the global file lock and then the manager's own.
class MegaFileManagerClass
{
public:
    enum AccessType : int
    {
        ACCESS_PUBLIC = 0, ///< every search by name looks into it
        ACCESS_PRIVATE = 1 ///< only searches that name its handle do
    };

    MegaFileManagerClass() = default;
    MegaFileManagerClass(const MegaFileManagerClass &) = delete;
    MegaFileManagerClass &operator=(const MegaFileManagerClass &) = delete;
    /// Expects that nothing is left open; see `Close_All`.
    ~MegaFileManagerClass();

    /// Adds the archives that `Data\MegaFiles.xml`, or else `Data\MegaFiles.chk`, lists. For each the form in the
    /// current language comes first. An archive that can't be added is only logged. False when there is no list.
    bool Load_Default_Mega_Files(MegaFileClass::MegaFileAccess openType);
    /// The same from `Data\MegaFiles.xml` under a directory; the names count from there, with no language forms.
    bool Load_Mega_Files(std::string_view directory, MegaFileClass::MegaFileAccess openType);
    /// Of the language table ("English", "French", ...); false for another one. English at first.
    bool Set_Language(std::string_view language);
    /// A name in the current language: `Data\Text.meg` becomes `Data\Text_English.meg`.
    MK::String Get_Localised_Name(std::string_view name) const;

    /// A handle, or INVALID_MEGAFILE_HANDLE with a log line. An archive that was added earlier wins over a later one.
    int Megafile_Add(std::string_view name, MegaFileClass::MegaFileAccess openType, AccessType access);
    /// Sub-files that are still open in it read nothing from then on.
    bool Megafile_Remove(int handle);
    void Close_All();
    void Megafile_Debug_Dump_List();

    /// Looks by name in the archive with the handle first, when one is given, and then in the public ones. A sub-file
    /// handle, or -1.
    int Subfile_Open(std::string_view subfileName, int megafileHandle = INVALID_MEGAFILE_HANDLE);
    /// As those of FileClass. 0 bytes and -1 for a handle that isn't open.
    int64_t Subfile_Read(int handle, void *buffer, int64_t size);
    int64_t Subfile_Seek(int handle, int64_t offset, MKPlatform::FileSeekOrigin origin);
    int64_t Subfile_Get_Size(int handle);
    bool Subfile_Close(int handle);

    /// Files that match a path with `*` and `?` in its file name: those of the disk by name, then those of the public
    /// archives in order, each name once. `find_data` gets the first and names the search until `Find_Close`.
    bool Find_First(const char *file_spec, MKPlatform::FileFindStruct *find_data);
    bool Find_Next(MKPlatform::FileFindStruct *find_data);
    bool Find_Close(MKPlatform::FileFindStruct *find_data);

private:
    struct MegaFileEntry
    {
        int Handle;
        AccessType Access;
        std::unique_ptr<MegaFileClass> MegaFileData;
    };
    struct OpenSubFile
    {
        int MegaFileHandle;
        int Index;
        int64_t Position;                       ///< used while there is no private file
        std::unique_ptr<FileClass> PrivateFile; ///< null for the first sub-file that is open in an archive
    };

    bool Read_XML_List(std::string_view listName, std::vector<MK::String> &names);
    bool Read_Chunk_List(std::string_view listName, std::vector<MK::String> &names);
    MegaFileClass *Get_Mega_File(int handle);
    OpenSubFile *Get_Open_Subfile(int handle, MegaFileClass *&archive);
    int Add_Open_Subfile(int megafileHandle, MegaFileClass &archive, int index);
    bool Has_Open_Subfile(int megafileHandle) const;

    mutable FastThreadLockClass Lock;
    std::vector<MegaFileEntry> MegaFileList;
    std::vector<int> ModMegaFileList; ///< handles of those that came with a directory
    std::map<int, OpenSubFile> OpenSubFileList;
    std::vector<std::pair<MegafileFindStateClass, MKPlatform::FileFindStruct *>> FindStack;
    int NextGeneratedMegafileHandle = 0;
    int NextSubfileHandle = 0;
    const char *Language = "English";
};

/// The manager that `FileClass` asks; null means that all files are on disk. Whoever sets it owns it, and sets it only
/// while no other thread opens files.
extern MegaFileManagerClass *TheMegaFileManager;
