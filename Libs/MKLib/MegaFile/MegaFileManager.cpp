#include "MKLib/MegaFile/MegaFileManager.h"

#include "MKLib/File/FileLock.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <algorithm>
#include <climits>
#include <mutex>

using MKDebug::LogLevel;
using namespace MKPlatform;

MegaFileManagerClass *TheMegaFileManager = nullptr;

namespace
{

MKDebug::Logger MegaFileLog("MegaFileLog");

/// The manager's lock comes after the global file lock everywhere, since a read through FileClass holds that already.
class ManagerLock
{
public:
    explicit ManagerLock(FastThreadLockClass &lock) : ListLock(lock) {}

private:
    FileLockClass FileLock;
    std::lock_guard<FastThreadLockClass> ListLock;
};

} // namespace

MegaFileManagerClass::~MegaFileManagerClass()
{
    MK_ASSERT(MegaFileList.empty(), "MegaFileList.empty() == true");
    MK_ASSERT(ModMegaFileList.empty(), "ModMegaFileList.empty() == true");
    MK_ASSERT(OpenSubFileList.empty(), "OpenSubFileList.empty() == true");
}

int MegaFileManagerClass::Megafile_Add(std::string_view name, MegaFileClass::MegaFileAccess openType, AccessType access)
{
    if (!MK_VERIFY(!name.empty(), "megafile_name.empty() == false") ||
        !MK_VERIFY(openType > MegaFileClass::MEGAFILE_OPEN_INVALID,
                   "open_type > MegaFileClass::MEGAFILE_OPEN_INVALID") ||
        !MK_VERIFY(openType < MegaFileClass::MEGAFILE_OPEN_TOTAL, "open_type < MegaFileClass::MEGAFILE_OPEN_TOTAL") ||
        !MK_VERIFY(access == ACCESS_PUBLIC || access == ACCESS_PRIVATE,
                   "access_type == ACCESS_PUBLIC || access_type == ACCESS_PRIVATE"))
        return INVALID_MEGAFILE_HANDLE;
    const ManagerLock lock(Lock);
    auto archive = std::make_unique<MegaFileClass>();
    if (NextGeneratedMegafileHandle == INT_MAX || !archive->Open(name, openType)) {
        MK_LOG(MegaFileLog, LogLevel::Error, "Error: MegaFileManagerClass::Add_Megafile() - can't add %.*s\n",
               static_cast<int>(name.size()), name.data());
        return INVALID_MEGAFILE_HANDLE;
    }
    const int handle = NextGeneratedMegafileHandle++;
    MK_ASSERT(Get_Mega_File(handle) == nullptr, "Get_Mega_File( handle ) == NULL");
    MegaFileList.push_back({handle, access, std::move(archive)});
    return handle;
}

bool MegaFileManagerClass::Megafile_Remove(int handle)
{
    const ManagerLock lock(Lock);
    std::erase(ModMegaFileList, handle);
    return std::erase_if(MegaFileList, [handle](const MegaFileEntry &entry) { return entry.Handle == handle; }) > 0;
}

void MegaFileManagerClass::Close_All()
{
    const ManagerLock lock(Lock);
    OpenSubFileList.clear();
    FindStack.clear();
    ModMegaFileList.clear();
    MegaFileList.clear();
}

void MegaFileManagerClass::Megafile_Debug_Dump_List()
{
    const ManagerLock lock(Lock);
    MK_LOG(MegaFileLog, LogLevel::Info, "Current Tracked MegaFile List:\n");
    for (const MegaFileEntry &entry : MegaFileList)
        MK_LOG(MegaFileLog, LogLevel::Info, "--- %s\n", entry.MegaFileData->Get_Name().c_str());
    if (MegaFileList.empty()) MK_LOG(MegaFileLog, LogLevel::Info, "[ LIST EMPTY ]\n");
    MK_LOG(MegaFileLog, LogLevel::Info, "------------------------------\n");
}

MegaFileClass *MegaFileManagerClass::Get_Mega_File(int handle)
{
    const auto found = std::find_if(MegaFileList.begin(), MegaFileList.end(),
                                    [handle](const MegaFileEntry &entry) { return entry.Handle == handle; });
    return found == MegaFileList.end() ? nullptr : found->MegaFileData.get();
}

int MegaFileManagerClass::Subfile_Open(std::string_view subfileName, int megafileHandle)
{
    if (!MK_VERIFY(!subfileName.empty(), "subfile_name.empty() == false")) return INVALID_SUBFILE_HANDLE;
    const ManagerLock lock(Lock);
    if (MegaFileList.empty()) return INVALID_SUBFILE_HANDLE;
    if (megafileHandle != INVALID_MEGAFILE_HANDLE) {
        MegaFileClass *archive = Get_Mega_File(megafileHandle);
        if (MK_VERIFY(archive && archive->Is_Open(), "entry->MegaFileData.Is_Open() == true"))
            if (const int index = archive->Find_Subfile(subfileName); index != INVALID_SUBFILE_INDEX)
                return Add_Open_Subfile(megafileHandle, *archive, index);
    }
    for (const MegaFileEntry &entry : MegaFileList) {
        if (entry.Access != ACCESS_PUBLIC) continue;
        if (const int index = entry.MegaFileData->Find_Subfile(subfileName); index != INVALID_SUBFILE_INDEX)
            return Add_Open_Subfile(entry.Handle, *entry.MegaFileData, index);
    }
    return INVALID_SUBFILE_HANDLE;
}

int MegaFileManagerClass::Add_Open_Subfile(int megafileHandle, MegaFileClass &archive, int index)
{
    if (NextSubfileHandle == INT_MAX) return INVALID_SUBFILE_HANDLE;
    // One reader at a time is the usual case and shares the archive's file; sub-files that are read in turns get a file
    // of their own, so that none has to seek back for the other. Without one the saved position still serves.
    std::unique_ptr<FileClass> privateFile;
    if (Has_Open_Subfile(megafileHandle)) privateFile = archive.Create_Private_File(index);
    const int handle = NextSubfileHandle++;
    OpenSubFileList.emplace(handle, OpenSubFile{megafileHandle, index, 0, std::move(privateFile)});
    return handle;
}

bool MegaFileManagerClass::Has_Open_Subfile(int megafileHandle) const
{
    return std::any_of(OpenSubFileList.begin(), OpenSubFileList.end(),
                       [megafileHandle](const auto &open) { return open.second.MegaFileHandle == megafileHandle; });
}

MegaFileManagerClass::OpenSubFile *MegaFileManagerClass::Get_Open_Subfile(int handle, MegaFileClass *&archive)
{
    const auto found = OpenSubFileList.find(handle);
    if (found == OpenSubFileList.end()) return nullptr;
    archive = Get_Mega_File(found->second.MegaFileHandle);
    return archive ? &found->second : nullptr;
}

int64_t MegaFileManagerClass::Subfile_Read(int handle, void *buffer, int64_t size)
{
    const ManagerLock lock(Lock);
    MegaFileClass *archive = nullptr;
    OpenSubFile *open = Get_Open_Subfile(handle, archive);
    if (!open) return 0;
    if (open->PrivateFile) return archive->Subfile_Read(open->Index, buffer, size, open->PrivateFile.get());
    archive->Subfile_Seek(open->Index, open->Position, FILE_SEEK_BEGIN);
    const int64_t read = archive->Subfile_Read(open->Index, buffer, size);
    open->Position += read;
    return read;
}

int64_t MegaFileManagerClass::Subfile_Seek(int handle, int64_t offset, FileSeekOrigin origin)
{
    if (!MK_VERIFY(origin > FILE_SEEK_INVALID, "seek_from > MKPlatform::FILE_SEEK_INVALID") ||
        !MK_VERIFY(origin < FILE_SEEK_TOTAL, "seek_from < MKPlatform::FILE_SEEK_TOTAL"))
        return -1;
    const ManagerLock lock(Lock);
    MegaFileClass *archive = nullptr;
    OpenSubFile *open = Get_Open_Subfile(handle, archive);
    if (!open) return -1;
    if (open->PrivateFile) return archive->Subfile_Seek(open->Index, offset, origin, open->PrivateFile.get());
    archive->Subfile_Seek(open->Index, open->Position, FILE_SEEK_BEGIN);
    open->Position = archive->Subfile_Seek(open->Index, offset, origin);
    return open->Position;
}

int64_t MegaFileManagerClass::Subfile_Get_Size(int handle)
{
    const ManagerLock lock(Lock);
    MegaFileClass *archive = nullptr;
    const OpenSubFile *open = Get_Open_Subfile(handle, archive);
    return open ? archive->Subfile_Get_Size(open->Index) : -1;
}

bool MegaFileManagerClass::Subfile_Close(int handle)
{
    const ManagerLock lock(Lock);
    return OpenSubFileList.erase(handle) > 0;
}
