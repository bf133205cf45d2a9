#include "MKLib/MegaFile/MegaFileHeader.h"

#include "MKLib/File/RAMFile.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include <zlib.h>

using MKDebug::LogLevel;

namespace
{

MKDebug::Logger MegaFileLog("MegaFileLog");

uint16_t Load_U16(const uint8_t *bytes)
{
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

uint32_t Load_U32(const uint8_t *bytes)
{
    return Load_U16(bytes) | static_cast<uint32_t>(Load_U16(bytes + 2)) << 16;
}

bool Read_U32(FileClass &file, uint32_t &value)
{
    uint8_t bytes[4];
    if (file.Read(bytes, sizeof(bytes)) != sizeof(bytes)) return false;
    value = Load_U32(bytes);
    return true;
}

int64_t Remaining(FileClass &file)
{
    return file.Get_Size() - file.Tell();
}

char Normalised(char c)
{
    if (c == '/') return '\\';
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

SubFileHeaderClass Load_Entry(const uint8_t *bytes)
{
    SubFileHeaderClass entry;
    entry.Flags = Load_U16(bytes);
    entry.NameCRC = Load_U32(bytes + 2);
    entry.Index_In_Megafile = Load_U32(bytes + 6);
    entry.File_Size = Load_U32(bytes + 10);
    entry.Data_Offset = Load_U32(bytes + 14);
    entry.NameIndex = Load_U16(bytes + 18);
    return entry;
}

} // namespace

uint32_t MegaFileHeaderClass::Name_CRC(std::string_view subfileName)
{
    uLong crc = 0;
    std::array<char, 256> piece;
    while (!subfileName.empty()) {
        const size_t count = std::min(subfileName.size(), piece.size());
        std::transform(subfileName.begin(), subfileName.begin() + static_cast<std::ptrdiff_t>(count), piece.begin(),
                       Normalised);
        crc = crc32(crc, reinterpret_cast<const Bytef *>(piece.data()), static_cast<uInt>(count));
        subfileName.remove_prefix(count);
    }
    return static_cast<uint32_t>(crc);
}

int MegaFileHeaderClass::Find(std::string_view subfileName) const
{
    const uint32_t crc = Name_CRC(subfileName);
    const auto found =
        std::lower_bound(SubFileHeaderData.begin(), SubFileHeaderData.end(), crc,
                         [](const SubFileHeaderClass &entry, uint32_t wanted) { return entry.NameCRC < wanted; });
    if (found == SubFileHeaderData.end() || found->NameCRC != crc) return INVALID_SUBFILE_INDEX;
    if (!MK_VERIFY(static_cast<int32_t>(found->Index_In_Megafile) >= INVALID_SUBFILE_INDEX,
                   "found_entry->Index_In_Megafile >= INVALID_SUBFILE_INDEX"))
        return INVALID_SUBFILE_INDEX;
    return static_cast<int>(found - SubFileHeaderData.begin());
}

std::string_view MegaFileHeaderClass::Get_Name(int index) const
{
    const uint32_t offset = NameOffsets[SubFileHeaderData[static_cast<size_t>(index)].NameIndex];
    const auto *length = reinterpret_cast<const uint8_t *>(Strings.data() + offset);
    return {Strings.data() + offset + 2, Load_U16(length)};
}

bool MegaFileHeaderClass::Read(FileClass &file, int64_t archiveSize)
{
    ArchiveName = file.Get_Name();
    uint32_t first = 0;
    const bool hasFirst = Read_U32(file, first);
    if (hasFirst && first == ENCRYPTED_MARKER) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - %s is encrypted, which is not supported\n",
               ArchiveName.c_str());
        return false;
    }
    if (!hasFirst || first != MARKER) {
        file.Seek(0, MKPlatform::FILE_SEEK_BEGIN);
        return Read_Counts_And_Tables(file, 0, archiveSize);
    }
    if (!Read_Prefix(file)) return false;

    std::vector<uint8_t> header(static_cast<size_t>(HeaderDataSize));
    file.Seek(0, MKPlatform::FILE_SEEK_BEGIN);
    if (file.Read(header.data(), HeaderDataSize) != HeaderDataSize) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - The header of %s could not be read\n",
               ArchiveName.c_str());
        return false;
    }
    RAMFileClass copy(header.data(), HeaderDataSize);
    copy.Open(MKPlatform::FILE_OPEN_GENERIC_READ);
    copy.Seek(PREFIX_SIZE, MKPlatform::FILE_SEEK_BEGIN);
    return Read_Counts_And_Tables(copy, HeaderDataSize, archiveSize);
}

/// Behind the marker: the version and the header size, which counts the prefix.
bool MegaFileHeaderClass::Read_Prefix(FileClass &file)
{
    uint32_t version = 0, headerSize = 0;
    if (!Read_U32(file, version) || !Read_U32(file, headerSize)) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - %s ends inside of its prefix of %d bytes\n",
               ArchiveName.c_str(), static_cast<int>(PREFIX_SIZE));
        return false;
    }
    MK_LOG(MegaFileLog, LogLevel::Info, "%s header size = %d, version = %f\n", ArchiveName.c_str(),
           static_cast<int>(headerSize), static_cast<double>(std::bit_cast<float>(version)));
    if (headerSize < PREFIX_SIZE || headerSize > file.Get_Size()) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - %s has a header size of %u, but %lld bytes\n",
               ArchiveName.c_str(), headerSize, static_cast<long long>(file.Get_Size()));
        return false;
    }
    HeaderDataSize = headerSize;
    return true;
}

/// `givenSize` is the prefix's header size, which wins, or 0.
bool MegaFileHeaderClass::Read_Counts_And_Tables(FileClass &file, int64_t givenSize, int64_t archiveSize)
{
    uint32_t stringCount = 0, stringsSize = 0;
    if (!MK_VERIFY(Read_U32(file, TotalSubFiles), "bytes_read < sizeof( TotalSubFiles )") ||
        !MK_VERIFY(TotalSubFiles != 0, "TotalSubFiles == 0") ||
        !MK_VERIFY(Read_U32(file, stringCount), "bytes_read < sizeof( num_strings )") ||
        !MK_VERIFY(Read_U32(file, stringsSize), "bytes_read < sizeof( strings_size )"))
    {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - The counts of %s are missing or name no sub-file\n",
               ArchiveName.c_str());
        return false;
    }
    if (!Read_Names(file, stringCount, stringsSize) || !Read_Table(file)) return false;
    HeaderDataSize = givenSize > 0 ? givenSize : file.Tell();
    return Check_Entries(archiveSize);
}

bool MegaFileHeaderClass::Read_Names(FileClass &file, uint32_t count, uint32_t size)
{
    if (size > Remaining(file) || count > size / 2) {
        MK_LOG(MegaFileLog, LogLevel::Error,
               "MegaFileClass::Open - %s claims %u names in %u bytes, but %lld bytes remain\n", ArchiveName.c_str(),
               count, size, static_cast<long long>(Remaining(file)));
        return false;
    }
    Strings.resize(size);
    bool complete = size == 0 || file.Read(Strings.data(), size) == size;
    NameOffsets.reserve(count);
    uint32_t offset = 0;
    for (uint32_t i = 0; i < count && complete; ++i) {
        NameOffsets.push_back(offset);
        complete = MK_VERIFY(size - offset >= 2, "bytes_read < sizeof( ssize )");
        if (!complete) break;
        const uint16_t length = Load_U16(reinterpret_cast<const uint8_t *>(Strings.data() + offset));
        offset += 2;
        complete = MK_VERIFY(size - offset >= length, "bytes_read < ssize");
        offset += complete ? length : 0;
    }
    if (!complete)
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - The %u names of %s don't fit into their %u bytes\n",
               count, ArchiveName.c_str(), size);
    return complete;
}

bool MegaFileHeaderClass::Read_Table(FileClass &file)
{
    const int64_t size = TotalSubFiles * ENTRY_SIZE;
    if (size > Remaining(file)) {
        MK_LOG(MegaFileLog, LogLevel::Error,
               "MegaFileClass::Open - %s claims %u sub-files, whose table takes %lld bytes, but %lld bytes remain\n",
               ArchiveName.c_str(), TotalSubFiles, static_cast<long long>(size),
               static_cast<long long>(Remaining(file)));
        return false;
    }
    std::vector<uint8_t> table(static_cast<size_t>(size));
    if (file.Read(table.data(), size) != size) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - The table of %s could not be read\n",
               ArchiveName.c_str());
        return false;
    }
    SubFileHeaderData.reserve(TotalSubFiles);
    for (int64_t at = 0; at < size; at += ENTRY_SIZE) SubFileHeaderData.push_back(Load_Entry(table.data() + at));
    return MK_VERIFY(!SubFileHeaderData.empty(), "SubFileHeaderData != NULL");
}

bool MegaFileHeaderClass::Check_Entries(int64_t archiveSize) const
{
    uint32_t previous = 0;
    for (uint32_t i = 0; i < TotalSubFiles; ++i) {
        const SubFileHeaderClass &entry = SubFileHeaderData[i];
        if (entry.NameCRC < previous) {
            MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - The table of %s is not sorted at entry %u\n",
                   ArchiveName.c_str(), i);
            return false;
        }
        previous = entry.NameCRC;
        if (entry.NameIndex >= NameOffsets.size()) {
            MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - Entry %u of %s has the name %u of %zu\n", i,
                   ArchiveName.c_str(), entry.NameIndex, NameOffsets.size());
            return false;
        }
        if (static_cast<int64_t>(entry.Data_Offset) + entry.File_Size > archiveSize) {
            MK_LOG(MegaFileLog, LogLevel::Error,
                   "MegaFileClass::Open - Entry %u of %s is %u bytes at %u, but the archive has %lld bytes\n", i,
                   ArchiveName.c_str(), entry.File_Size, entry.Data_Offset, static_cast<long long>(archiveSize));
            return false;
        }
    }
    return true;
}
