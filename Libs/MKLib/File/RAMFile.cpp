#include "MKLib/File/RAMFile.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Memory.h"

#include <algorithm>
#include <cstring>

using MKDebug::LogLevel;
using namespace MKPlatform;

namespace
{
MKDebug::Logger FileLog("File");
constexpr int64_t GROWTH_STEP = 262143;
} // namespace

// Only read from: a borrowed block refuses to be opened for writing.
RAMFileClass::RAMFileClass(const void *block, int64_t size)
    : FileBuffer(static_cast<uint8_t *>(const_cast<void *>(block))), FileBufferSize(size), FileSize(size),
      OwnsBuffer(false)
{
}

RAMFileClass::~RAMFileClass()
{
    if (OwnsBuffer) _MK_free(FileBuffer);
}

bool RAMFileClass::Open(FileAccess access, bool, int)
{
    if (!MK_VERIFY(access > FILE_OPEN_INVALID, "open_access > MKPlatform::FILE_OPEN_INVALID") ||
        !MK_VERIFY(access < FILE_OPEN_TOTAL, "open_access < MKPlatform::FILE_OPEN_TOTAL") ||
        !MK_VERIFY(!IsOpen, "IsOpen == false"))
        return false;
    const bool reads = access == FILE_OPEN_GENERIC_READ || access == FILE_OPEN_EXCLUSIVE_READ;
    if (!reads && !OwnsBuffer) {
        MK_LOG(FileLog, LogLevel::Error, "RAMFileClass::Open - A borrowed block can't be written\n");
        return false;
    }
    if (!reads && access != FILE_OPEN_WRITE_APPEND) FileSize = 0;
    FilePointer = access == FILE_OPEN_WRITE_APPEND ? FileSize : 0;
    OpenFileAccess = access;
    IsOpen = true;
    return true;
}

bool RAMFileClass::Open(std::string_view name, FileAccess access, bool preferArchive, int megafileHandle)
{
    if (!Open(access, preferArchive, megafileHandle)) return false;
    FileName = name;
    return true;
}

void RAMFileClass::Close()
{
    IsOpen = false;
    OpenFileAccess = FILE_OPEN_INVALID;
}

int64_t RAMFileClass::Read(void *buffer, int64_t size)
{
    const bool reads = OpenFileAccess == FILE_OPEN_GENERIC_READ || OpenFileAccess == FILE_OPEN_EXCLUSIVE_READ;
    if (!MK_VERIFY(buffer != nullptr, "buffer != NULL") ||
        !MK_VERIFY(IsOpen && reads, "OpenFileAccess == MKPlatform::FILE_OPEN_GENERIC_READ"))
        return 0;
    const int64_t count = std::min(size, FileSize - FilePointer);
    if (count <= 0) return 0;
    std::memcpy(buffer, FileBuffer + FilePointer, static_cast<size_t>(count));
    FilePointer += count;
    MK_ASSERT(FilePointer <= FileSize, "FilePointer <= FileSize");
    MK_ASSERT(FilePointer <= FileBufferSize, "FilePointer <= FileBufferSize");
    return count;
}

int64_t RAMFileClass::Write(const void *buffer, int64_t size)
{
    const bool writes = OpenFileAccess == FILE_OPEN_GENERIC_WRITE || OpenFileAccess == FILE_OPEN_WRITE_APPEND ||
                        OpenFileAccess == FILE_OPEN_EXCLUSIVE_WRITE;
    if (!MK_VERIFY(buffer != nullptr, "buffer != NULL") ||
        !MK_VERIFY(IsOpen && writes, "OpenFileAccess == MKPlatform::FILE_OPEN_GENERIC_WRITE || OpenFileAccess == "
                                     "MKPlatform::FILE_OPEN_WRITE_APPEND") ||
        size < 0)
        return -1;
    if (size == 0) return 0;
    const int64_t missing = FilePointer + size - FileBufferSize;
    if (missing > 0 && !Grow_File_Buffer(missing)) return -1;
    std::memcpy(FileBuffer + FilePointer, buffer, static_cast<size_t>(size));
    FilePointer += size;
    FileSize = std::max(FileSize, FilePointer);
    MK_ASSERT(FilePointer <= FileSize, "FilePointer <= FileSize");
    MK_ASSERT(FilePointer <= FileBufferSize, "FilePointer <= FileBufferSize");
    return size;
}

bool RAMFileClass::Grow_File_Buffer(int64_t needed)
{
    const int64_t capacity = FileBufferSize + needed / GROWTH_STEP * GROWTH_STEP + GROWTH_STEP;
    MK_LOG(FileLog, LogLevel::Trace, "Growing file buffer to %d bytes\n", static_cast<int>(capacity));
    void *grown = _MK_realloc(FileBuffer, static_cast<size_t>(capacity));
    if (!MK_VERIFY(grown != nullptr, "FileBuffer != NULL")) return false;
    FileBuffer = static_cast<uint8_t *>(grown);
    FileBufferSize = capacity;
    return true;
}

int64_t RAMFileClass::Seek(int64_t offset, FileSeekOrigin origin)
{
    if (!IsOpen || origin <= FILE_SEEK_INVALID || origin >= FILE_SEEK_TOTAL) return -1;
    const int64_t base = origin == FILE_SEEK_BEGIN ? 0 : origin == FILE_SEEK_CURRENT ? FilePointer : FileSize;
    FilePointer = base + std::clamp(offset, -base, FileSize - base);
    return FilePointer;
}

int64_t RAMFileClass::Tell()
{
    return IsOpen ? FilePointer : -1;
}

int64_t RAMFileClass::Get_Size()
{
    return IsOpen ? FileSize : -1;
}
