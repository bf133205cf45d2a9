#pragma once

#include "MKLib/MKString.h"
#include "MKPlatform/Files.h"

#include <cstdint>
#include <string_view>
#include <vector>

class FileCacheEntryClass;

constexpr int INVALID_SUBFILE_HANDLE = -1;

/// The one file type of the engine. A name that is opened for reading may be a loose file on disk, a sub-file of an
/// archive (`TheMegaFileManager`) or an entry of the file cache; callers see the same operations. All opens and reads
/// of all file objects take one global lock; an object itself belongs to one thread at a time. The destructor closes.
/// Names are engine paths. Failures are told in the result, and their reason in the log.
class FileClass
{
public:
    FileClass() = default;
    explicit FileClass(std::string_view name) : FileName(name) {}
    FileClass(const FileClass &) = delete;
    FileClass &operator=(const FileClass &) = delete;
    virtual ~FileClass();

    /// `preferArchive` looks into the archives first; `megafileHandle` is one archive to try first, or -1.
    virtual bool Open(MKPlatform::FileAccess access, bool preferArchive = false, int megafileHandle = -1);
    virtual bool Open(std::string_view name, MKPlatform::FileAccess access, bool preferArchive = false,
                      int megafileHandle = -1);
    virtual void Close();
    /// Bytes read; 0 at the end, on failure and on a closed file.
    virtual int64_t Read(void *buffer, int64_t size);
    /// Bytes written, or -1 on failure.
    virtual int64_t Write(const void *buffer, int64_t size);
    /// The new position; -1 when the file isn't open.
    virtual int64_t Seek(int64_t offset, MKPlatform::FileSeekOrigin origin);
    virtual int64_t Tell();
    virtual int64_t Get_Size();
    virtual const MK::String &Get_Name() const { return FileName; }
    virtual bool Is_Open() const;

    /// Registers a file name (without directory) that is never looked for inside archives.
    static void Add_Disk_Only_File(std::string_view name);
    /// Alternative roots for `Data\` names of the disk-only set, in the order in which they are tried. Start-up only.
    static void Set_Data_Roots(std::vector<MK::String> roots);
    /// How many times the global file lock is held by the calling thread; for diagnostics.
    static int Get_Lock_Depth();

protected:
    MKPlatform::FileAccess OpenFileAccess = MKPlatform::FILE_OPEN_INVALID;
    MK::String FileName;

private:
    bool Can_Open(std::string_view name, MKPlatform::FileAccess access) const;
    bool Open_On_Disk(std::string_view name, MKPlatform::FileAccess access);
    bool Open_In_Data_Roots(std::string_view name, MKPlatform::FileAccess access);
    bool Open_In_Archive(std::string_view name, int megafileHandle);
    bool Open_Uncached(MKPlatform::FileAccess access, bool preferArchive, int megafileHandle);
    int64_t Read_Real_File(void *buffer, int64_t size);
    void Compare_With_Real_File(int64_t requested, int64_t cacheRead);
    int64_t Seek_Cached(int64_t offset, MKPlatform::FileSeekOrigin origin);

    MKPlatform::FileHandle OpenDiskFileHandle = MKPlatform::INVALID_FILE;
    bool IsInMegaFile = false;
    int OpenInMegaFileHandle = INVALID_SUBFILE_HANDLE;
    FileCacheEntryClass *CachedFile = nullptr; ///< counted
    int64_t CachePosition = 0;
};

/// CRC-32 (zlib's) of a whole file with `seed` as the starting value. 0 for an empty file and, with an assertion, for
/// one that can't be opened.
uint32_t Get_File_CRC(std::string_view name, uint32_t seed);
