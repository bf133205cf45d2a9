#pragma once

#include "MKLib/MKString.h"

#include <cstdint>
#include <string_view>
#include <vector>

class FileClass;

constexpr int INVALID_SUBFILE_INDEX = -1;

/// One entry of an archive's table; 20 bytes on disk, in this order.
struct SubFileHeaderClass
{
    static constexpr uint16_t FLAG_ENCRYPTED = 1;

    uint16_t Flags = 0;
    uint32_t NameCRC = 0; ///< zlib crc32 of the normalised name, seed 0
    uint32_t Index_In_Megafile = 0;
    uint32_t File_Size = 0;
    uint32_t Data_Offset = 0; ///< from the start of the archive
    uint16_t NameIndex = 0;   ///< into the archive's names
};

/// What an archive says about its sub-files: the table, sorted by name CRC, and the names. It is read whole and checked
/// against the size of the archive, so that what an entry says can be trusted afterwards.
class MegaFileHeaderClass
{
public:
    static constexpr uint32_t MARKER = 0xFFFFFFFF;
    static constexpr uint32_t ENCRYPTED_MARKER = 0x8FFFFFFF;
    static constexpr int64_t PREFIX_SIZE = 12;
    static constexpr int64_t ENTRY_SIZE = 20;

    /// Reads from the start of `file`, which is open and stays so: the archive itself, or its companion header file.
    /// False with the reason in the log. `archiveSize` bounds the sub-files.
    bool Read(FileClass &file, int64_t archiveSize);

    /// Position in the table of the entry with that name, or INVALID_SUBFILE_INDEX. The CRC alone decides.
    int Find(std::string_view subfileName) const;
    /// The name as it is stored; bytes of the file.
    std::string_view Get_Name(int index) const;

    /// The CRC by which a name is looked up: `/` counts as `\`, and a to z as A to Z.
    static uint32_t Name_CRC(std::string_view subfileName);

    uint32_t TotalSubFiles = 0;
    int64_t HeaderDataSize = 0; ///< bytes up to the data
    std::vector<SubFileHeaderClass> SubFileHeaderData;

private:
    bool Read_Prefix(FileClass &file);
    bool Read_Counts_And_Tables(FileClass &file, int64_t start, int64_t archiveSize);
    bool Read_Names(FileClass &file, uint32_t count, uint32_t size);
    bool Read_Table(FileClass &file);
    bool Check_Entries(int64_t archiveSize) const;

    MK::String ArchiveName; ///< for messages
    std::vector<char> Strings;
    std::vector<uint32_t> NameOffsets; ///< of each entry's u16 length, in Strings
};
