#pragma once

#include "MKLib/File/File.h"

/// A file in memory. It grows as it is written, in steps of about 256 KiB; `Close` keeps the bytes, so that what was
/// written can be opened again for reading. The position never passes the size.
class RAMFileClass final : public FileClass
{
public:
    RAMFileClass() = default;
    /// Reads from a block that stays the caller's and must outlive the object.
    RAMFileClass(const void *block, int64_t size);
    ~RAMFileClass() override;

    using FileClass::Open;
    bool Open(MKPlatform::FileAccess access, bool preferArchive = false, int megafileHandle = -1) override;
    bool Open(std::string_view name, MKPlatform::FileAccess access, bool preferArchive = false,
              int megafileHandle = -1) override;
    void Close() override;
    int64_t Read(void *buffer, int64_t size) override;
    int64_t Write(const void *buffer, int64_t size) override;
    int64_t Seek(int64_t offset, MKPlatform::FileSeekOrigin origin) override;
    int64_t Tell() override;
    int64_t Get_Size() override;
    bool Is_Open() const override { return IsOpen; }

    /// The bytes written so far; valid until the next write.
    const uint8_t *Get_Buffer() const { return FileBuffer; }

private:
    bool Grow_File_Buffer(int64_t needed);

    uint8_t *FileBuffer = nullptr;
    int64_t FileBufferSize = 0;
    int64_t FileSize = 0;
    int64_t FilePointer = 0;
    bool IsOpen = false;
    bool OwnsBuffer = true;
};
