#include "MKLib/File/File.h"

#include "MKLib/File/DiskOnlyFiles.h"
#include "MKLib/File/FileCache.h"
#include "MKLib/File/FileLock.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MegaFile/MegaFileManager.h"

#include <algorithm>
#include <memory>

#include <zlib.h>

using MKDebug::LogLevel;
using namespace MKPlatform;

namespace
{

MKDebug::Logger FileLog("File");
MKDebug::Logger FileSizeLog("FileSize");

bool Is_Reading(FileAccess access)
{
    return access == FILE_OPEN_GENERIC_READ || access == FILE_OPEN_EXCLUSIVE_READ;
}

bool Is_Writing(FileAccess access)
{
    return access == FILE_OPEN_GENERIC_WRITE || access == FILE_OPEN_WRITE_APPEND || access == FILE_OPEN_EXCLUSIVE_WRITE;
}

void Log_Failed_Open(const MK::String &name, FileAccess access, int error)
{
    if (Is_Reading(access)) {
        // Looking for a file in one place after another is no fault, so this is only for who wants to follow it.
        MK_LOG(FileLog, LogLevel::Debug,
               "FileClass::Open - Failed to open file for read. File: %s , error code %d - %s\n", name.c_str(), error,
               Error_Text(error).c_str());
        return;
    }
    MK_LOG(FileLog, LogLevel::Error,
           "FileClass::Open -  Failed to open file for write. File: %s , error code %d - %s\n", name.c_str(), error,
           Error_Text(error).c_str());
    MK_LOG(FileLog, LogLevel::Error, "    Current directory - %s\n", Get_Current_Directory().c_str());
}

} // namespace

FileClass::~FileClass()
{
    FileClass::Close();
}

bool FileClass::Open(FileAccess access, bool preferArchive, int megafileHandle)
{
    return Open(FileName, access, preferArchive, megafileHandle);
}

bool FileClass::Open(std::string_view name, FileAccess access, bool preferArchive, int megafileHandle)
{
    if (!Can_Open(name, access)) return false;
    if (access == FILE_OPEN_GENERIC_READ) {
        const SmartPtr<FileCacheEntryClass> cached = FileCacheClass::Find(name);
        CachedFile = cached.Get();
        if (CachedFile) CachedFile->Add_Ref(); // given back by Close
    }
    const FileLockClass lock;
    if (FileName != name) FileName = name;
    bool opened = CachedFile != nullptr;
    if (!CachedFile || FileCacheClass::Is_Verifying()) opened |= Open_Uncached(access, preferArchive, megafileHandle);
    if (!opened) return false;
    OpenFileAccess = access;
    if (FileSizeLog.Is_Enabled(LogLevel::Trace))
        FileSizeLog.Write(LogLevel::Trace, "FileClass::Open - Name: %s Size: %lld", FileName.c_str(),
                          static_cast<long long>(Get_Size()));
    return true;
}

bool FileClass::Can_Open(std::string_view name, FileAccess access) const
{
    return MK_VERIFY(!name.empty(), "FileName.empty() == false") &&
           MK_VERIFY(access > FILE_OPEN_INVALID, "open_access > MKPlatform::FILE_OPEN_INVALID") &&
           MK_VERIFY(access < FILE_OPEN_TOTAL, "open_access < MKPlatform::FILE_OPEN_TOTAL") &&
           MK_VERIFY(
               OpenDiskFileHandle == INVALID_FILE && OpenInMegaFileHandle == INVALID_SUBFILE_HANDLE,
               "OpenDiskFileHandle == MKPlatform::INVALID_FILE && OpenInMegaFileHandle == INVALID_SUBFILE_HANDLE") &&
           MK_VERIFY(OpenFileAccess == FILE_OPEN_INVALID, "OpenFileAccess == MKPlatform::FILE_OPEN_INVALID");
}

bool FileClass::Open_Uncached(FileAccess access, bool preferArchive, int megafileHandle)
{
    const bool reading = Is_Reading(access);
    const bool diskOnly = DiskOnlyFiles::Contains(FileName);
    if (!preferArchive && reading && diskOnly && Open_In_Data_Roots(FileName, access)) return true;
    if ((!preferArchive || !reading || diskOnly) && Open_On_Disk(FileName, access)) return true;
    return access == FILE_OPEN_GENERIC_READ && !diskOnly &&
           Open_In_Archive(FileName, preferArchive ? megafileHandle : INVALID_MEGAFILE_HANDLE);
}

bool FileClass::Open_On_Disk(std::string_view name, FileAccess access)
{
    int error = 0;
    OpenDiskFileHandle = File_Open(name, access, &error);
    if (OpenDiskFileHandle != INVALID_FILE) return true;
    Log_Failed_Open(FileName, access, error);
    return false;
}

bool FileClass::Open_In_Data_Roots(std::string_view name, FileAccess access)
{
    for (const MK::String &candidate : DiskOnlyFiles::Data_Root_Names(name)) {
        if (!Open_On_Disk(candidate, access)) continue;
        FileName = candidate;
        return true;
    }
    return false;
}

bool FileClass::Open_In_Archive(std::string_view name, int megafileHandle)
{
    if (!TheMegaFileManager) return false;
    OpenInMegaFileHandle = TheMegaFileManager->Subfile_Open(name, megafileHandle);
    IsInMegaFile = OpenInMegaFileHandle != INVALID_SUBFILE_HANDLE;
    return IsInMegaFile;
}

void FileClass::Close()
{
    int error = 0;
    if (OpenDiskFileHandle != INVALID_FILE && !File_Close(OpenDiskFileHandle, &error))
        MK_LOG(FileLog, LogLevel::Error, "FileClass::Close - Not all of %s reached the disk: %s\n", FileName.c_str(),
               Error_Text(error).c_str());
    if (IsInMegaFile && TheMegaFileManager) TheMegaFileManager->Subfile_Close(OpenInMegaFileHandle);
    if (CachedFile) CachedFile->Release_Ref();
    OpenDiskFileHandle = INVALID_FILE;
    OpenInMegaFileHandle = INVALID_SUBFILE_HANDLE;
    IsInMegaFile = false;
    CachedFile = nullptr;
    CachePosition = 0;
    OpenFileAccess = FILE_OPEN_INVALID;
}

int64_t FileClass::Read(void *buffer, int64_t size)
{
    const bool hasHandle = CachedFile || OpenDiskFileHandle != INVALID_FILE || IsInMegaFile;
    if (!MK_VERIFY(buffer != nullptr, "buffer != NULL") ||
        !MK_VERIFY(Is_Reading(OpenFileAccess), "OpenFileAccess == MKPlatform::FILE_OPEN_GENERIC_READ") ||
        !MK_VERIFY(hasHandle, "OpenDiskFileHandle != MKPlatform::INVALID_FILE || "
                              "OpenInMegaFileHandle != INVALID_SUBFILE_HANDLE") ||
        size <= 0)
        return 0;
    if (!CachedFile) return Read_Real_File(buffer, size);
    const int64_t read = CachedFile->Read(CachePosition, buffer, size);
    Compare_With_Real_File(size, read);
    CachePosition += read;
    return read;
}

int64_t FileClass::Read_Real_File(void *buffer, int64_t size)
{
    const FileLockClass lock;
    const int64_t read = IsInMegaFile && TheMegaFileManager
                             ? TheMegaFileManager->Subfile_Read(OpenInMegaFileHandle, buffer, size)
                             : File_Read(OpenDiskFileHandle, buffer, size);
    if (read >= 0) return read;
    MK_LOG(FileLog, LogLevel::Error, "FileClass::Read - Could not read from %s\n", FileName.c_str());
    return 0;
}

void FileClass::Compare_With_Real_File(int64_t requested, int64_t cacheRead)
{
    if (OpenDiskFileHandle == INVALID_FILE && !IsInMegaFile) return;
    std::vector<uint8_t> scratch(static_cast<size_t>(requested));
    const int64_t fileRead = Read_Real_File(scratch.data(), requested);
    if (fileRead == cacheRead) return;
    MK_LOG(FileLog, LogLevel::Warning,
           cacheRead < requested
               ? "PARTIAL READ - FileCache->Read Requested %d bytes, cache read %d, file read %d\n"
               : "Warning! FileCache->Read mismatch! Requested %d bytes, cache read %d, file read %d\n",
           static_cast<int>(requested), static_cast<int>(cacheRead), static_cast<int>(fileRead));
}

int64_t FileClass::Write(const void *buffer, int64_t size)
{
    if (CachedFile) return -1;
    if (!MK_VERIFY(buffer != nullptr, "buffer != NULL") ||
        !MK_VERIFY(OpenInMegaFileHandle == INVALID_SUBFILE_HANDLE, "OpenInMegaFileHandle == INVALID_SUBFILE_HANDLE") ||
        !MK_VERIFY(OpenDiskFileHandle != INVALID_FILE, "OpenDiskFileHandle != MKPlatform::INVALID_FILE") ||
        !MK_VERIFY(Is_Writing(OpenFileAccess),
                   "OpenFileAccess == MKPlatform::FILE_OPEN_GENERIC_WRITE || OpenFileAccess "
                   "== MKPlatform::FILE_OPEN_WRITE_APPEND") ||
        size < 0)
        return -1;
    int error = 0;
    const int64_t written = File_Write(OpenDiskFileHandle, buffer, size, &error);
    if (written != size)
        MK_LOG(FileLog, LogLevel::Error, "FileClass::Write - Only %lld of %lld bytes could be written to %s: %s\n",
               static_cast<long long>(std::max<int64_t>(written, 0)), static_cast<long long>(size), FileName.c_str(),
               Error_Text(error).c_str());
    return written;
}

int64_t FileClass::Seek(int64_t offset, FileSeekOrigin origin)
{
    if (CachedFile) return Seek_Cached(offset, origin);
    if (OpenDiskFileHandle != INVALID_FILE) return File_Seek(OpenDiskFileHandle, offset, origin);
    if (IsInMegaFile && TheMegaFileManager)
        return TheMegaFileManager->Subfile_Seek(OpenInMegaFileHandle, offset, origin);
    return -1;
}

int64_t FileClass::Seek_Cached(int64_t offset, FileSeekOrigin origin)
{
    const int64_t size = CachedFile->Get_Size();
    const int64_t base = origin == FILE_SEEK_BEGIN ? 0 : origin == FILE_SEEK_CURRENT ? CachePosition : size;
    CachePosition = base + std::clamp(offset, -base, size - base);
    if (OpenDiskFileHandle != INVALID_FILE) File_Seek(OpenDiskFileHandle, CachePosition, FILE_SEEK_BEGIN);
    if (IsInMegaFile && TheMegaFileManager)
        TheMegaFileManager->Subfile_Seek(OpenInMegaFileHandle, CachePosition, FILE_SEEK_BEGIN);
    return CachePosition;
}

int64_t FileClass::Tell()
{
    return Seek(0, FILE_SEEK_CURRENT);
}

int64_t FileClass::Get_Size()
{
    if (CachedFile) return CachedFile->Get_Size();
    if (OpenDiskFileHandle != INVALID_FILE) return File_Size(OpenDiskFileHandle);
    if (IsInMegaFile && TheMegaFileManager) return TheMegaFileManager->Subfile_Get_Size(OpenInMegaFileHandle);
    return -1;
}

bool FileClass::Is_Open() const
{
    return CachedFile || OpenDiskFileHandle != INVALID_FILE || IsInMegaFile;
}

void FileClass::Add_Disk_Only_File(std::string_view name)
{
    DiskOnlyFiles::Add(name);
}

void FileClass::Set_Data_Roots(std::vector<MK::String> roots)
{
    DiskOnlyFiles::Set_Data_Roots(std::move(roots));
}

int FileClass::Get_Lock_Depth()
{
    return FileLockClass::Get_Depth();
}

uint32_t Get_File_CRC(std::string_view name, uint32_t seed)
{
    FileClass file(name);
    if (!MK_VERIFY(file.Open(FILE_OPEN_GENERIC_READ), "file.Open() == false")) return 0;
    const int64_t size = file.Get_Size();
    if (size <= 0) return 0;

    // In one piece for the usual file, and a piece at a time for one that memory might not hold.
    constexpr int64_t LARGEST_PIECE = 16 << 20;
    const int64_t piece = std::min(size, LARGEST_PIECE);
    const auto buffer = std::make_unique_for_overwrite<Bytef[]>(static_cast<size_t>(piece));
    uLong crc = seed;
    int64_t done = 0;
    while (done < size) {
        const int64_t read = file.Read(buffer.get(), std::min(piece, size - done));
        if (read <= 0) break;
        crc = crc32(crc, buffer.get(), static_cast<uInt>(read));
        done += read;
    }
    if (done < size) {
        MK_LOG(FileLog, LogLevel::Error, "Get_File_CRC - Only %lld of %lld bytes could be read from %s\n",
               static_cast<long long>(done), static_cast<long long>(size), file.Get_Name().c_str());
        return 0;
    }
    MK_LOG(FileLog, LogLevel::Info, "CRC: %08X - %s\n", static_cast<unsigned>(crc), file.Get_Name().c_str());
    return static_cast<uint32_t>(crc);
}
