#pragma once

#include "MKLib/File/File.h"
#include "MKLib/MegaFile/MegaFileHeader.h"

#include <memory>

/// One archive: many read-only sub-files in one large file, found by name through a sorted index.
/// docs/formats/archive.md has the layout. Sub-files are addressed by their position in the table. Each has one read
/// position of its own; a caller that wants another one passes a private file object from `Create_Private_File`, or
/// sets the position before each read. Not locked: MegaFileManagerClass does that.
class MegaFileClass
{
public:
    enum MegaFileAccess : int
    {
        MEGAFILE_OPEN_INVALID = -1,
        MEGAFILE_OPEN_FROM_DISK = 0,       ///< the archive stays open
        MEGAFILE_OPEN_AND_LOAD_IN_RAM = 1, ///< its data is read at once and its file closed
        MEGAFILE_OPEN_TOTAL = 2
    };

    MegaFileClass() = default;
    MegaFileClass(const MegaFileClass &) = delete;
    MegaFileClass &operator=(const MegaFileClass &) = delete;
    ~MegaFileClass();

    /// False with the reason in the log; the object is then closed.
    bool Open(std::string_view name, MegaFileAccess openType);
    /// Expects an open archive with no image handed out.
    void Close();
    bool Is_Open() const { return OpenType != MEGAFILE_OPEN_INVALID; }
    const MK::String &Get_Name() const { return MegaFileName; }
    int Get_Subfile_Count() const { return static_cast<int>(Header.SubFileHeaderData.size()); }

    /// Position in the table, or INVALID_SUBFILE_INDEX. An encrypted sub-file is refused here, with a log line.
    int Find_Subfile(std::string_view subfileName) const;
    std::string_view Subfile_Get_Name(int index) const;
    /// -1 when there is no such sub-file.
    int64_t Subfile_Get_Size(int index) const;
    /// Bytes read, fewer at the sub-file's end; 0 there and on failure.
    int64_t Subfile_Read(int index, void *buffer, int64_t size, FileClass *privateFile = nullptr);
    /// The new position, kept between 0 and the size; -1 on failure.
    int64_t Subfile_Seek(int index, int64_t offset, MKPlatform::FileSeekOrigin origin,
                         FileClass *privateFile = nullptr);
    int64_t Subfile_Tell(int index, FileClass *privateFile = nullptr);

    /// A file object of its own on a disk-based archive, positioned on the sub-file. Null when the archive is in memory
    /// or can't be opened again.
    std::unique_ptr<FileClass> Create_Private_File(int index) const;

    /// The whole sub-file in memory, until it is released: a part of a loaded archive, or a copy. Null on failure and
    /// for an empty sub-file.
    const uint8_t *Subfile_Get_Image(int index);
    bool Subfile_Release_Image(const uint8_t *image);

private:
    struct ActiveData
    {
        uint32_t Active_File_Offset = 0;
    };

    bool Load_Contents(MegaFileAccess openType);
    bool Check_Data_Offsets() const;
    bool Load_Resident_Image();
    bool Has_Subfile(int index) const;
    bool Move_To(int index, int64_t position, FileClass *privateFile);
    void Free_All();

    MegaFileAccess OpenType = MEGAFILE_OPEN_INVALID;
    MK::String MegaFileName;
    FileClass MegaFile;
    MegaFileHeaderClass Header;
    int64_t DataStart = 0; ///< where the data part begins in the archive's own file
    std::vector<ActiveData> SubFileActiveData;
    std::vector<uint8_t> ResidentSubFileImageData;
    std::vector<std::unique_ptr<uint8_t[]>> AllocatedMemoryPointers;
    std::vector<const uint8_t *> ReferencedMemoryPointers;
};
