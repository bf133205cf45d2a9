#include "MKLib/MegaFile/MegaFile.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <algorithm>
#include <cstring>
#include <new>

using MKDebug::LogLevel;
using namespace MKPlatform;

namespace
{
MKDebug::Logger MegaFileLog("MegaFileLog");
}

MegaFileClass::~MegaFileClass()
{
    if (Is_Open()) Close();
}

bool MegaFileClass::Open(std::string_view name, MegaFileAccess openType)
{
    if (!MK_VERIFY(!name.empty(), "MegaFileName.empty() == false") ||
        !MK_VERIFY(openType > MEGAFILE_OPEN_INVALID, "open_type > MEGAFILE_OPEN_INVALID") ||
        !MK_VERIFY(openType < MEGAFILE_OPEN_TOTAL, "open_type < MEGAFILE_OPEN_TOTAL") ||
        !MK_VERIFY(!Is_Open(), "Is_Open() == false"))
        return false;
    if (!MegaFile.Open(name, FILE_OPEN_GENERIC_READ)) return false;
    if (!Load_Contents(openType)) {
        Free_All();
        return false;
    }
    SubFileActiveData.assign(Header.SubFileHeaderData.size(), {});
    OpenType = openType;
    MegaFileName = name;
    return true;
}

bool MegaFileClass::Load_Contents(MegaFileAccess openType)
{
    FileClass companion(MegaFile.Get_Name() + "h");
    const bool hasCompanion = companion.Open(FILE_OPEN_GENERIC_READ);
    if (!Header.Read(hasCompanion ? companion : MegaFile, MegaFile.Get_Size())) return false;
    // With its header elsewhere the archive is nothing but data.
    DataStart = hasCompanion ? 0 : Header.HeaderDataSize;
    if (!Check_Data_Offsets() || MegaFile.Seek(DataStart, FILE_SEEK_BEGIN) != DataStart) return false;
    if (openType == MEGAFILE_OPEN_FROM_DISK) return true;
    if (!Load_Resident_Image()) return false;
    MegaFile.Close();
    return true;
}

bool MegaFileClass::Check_Data_Offsets() const
{
    for (const SubFileHeaderClass &entry : Header.SubFileHeaderData)
        if (entry.Data_Offset < DataStart && entry.File_Size > 0) {
            MK_LOG(MegaFileLog, LogLevel::Error,
                   "MegaFileClass::Open - A sub-file of %s lies at %u, inside of the header of %lld bytes\n",
                   MegaFile.Get_Name().c_str(), entry.Data_Offset, static_cast<long long>(DataStart));
            return false;
        }
    return true;
}

bool MegaFileClass::Load_Resident_Image()
{
    const int64_t combinedSize = MegaFile.Get_Size() - DataStart;
    try {
        ResidentSubFileImageData.resize(static_cast<size_t>(combinedSize));
    } catch (const std::bad_alloc &) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass::Open - No memory for the %lld bytes of %s\n",
               static_cast<long long>(combinedSize), MegaFile.Get_Name().c_str());
        return false;
    }
    const int64_t read = combinedSize > 0 ? MegaFile.Read(ResidentSubFileImageData.data(), combinedSize) : 0;
    return MK_VERIFY(read == combinedSize, "bytes_read == combined_file_image_size") &&
           MK_VERIFY(MegaFile.Tell() == MegaFile.Get_Size(),
                     "MegaFile.Seek( 0, MKPlatform::FILE_SEEK_CURRENT ) == MegaFile.Get_Size()");
}

void MegaFileClass::Close()
{
    if (!Is_Open()) return;
    MK_ASSERT(Header.TotalSubFiles > 0, "TotalSubFiles > 0");
    MK_ASSERT(Header.HeaderDataSize > 0, "HeaderDataSize > 0");
    MK_ASSERT(ReferencedMemoryPointers.empty(), "ReferencedMemoryPointers.Get_Size() == 0");
    MK_ASSERT(AllocatedMemoryPointers.empty(), "AllocatedMemoryPointers.Get_Size() == 0");
    Free_All();
}

void MegaFileClass::Free_All()
{
    MegaFile.Close();
    Header = MegaFileHeaderClass();
    DataStart = 0;
    SubFileActiveData = {};
    ResidentSubFileImageData = {};
    AllocatedMemoryPointers.clear();
    ReferencedMemoryPointers.clear();
    MegaFileName.clear();
    OpenType = MEGAFILE_OPEN_INVALID;
}

int MegaFileClass::Find_Subfile(std::string_view subfileName) const
{
    if (!MK_VERIFY(!subfileName.empty(), "subfile_name.empty() == false") ||
        !MK_VERIFY(Is_Open(), "MegaFileName.empty() == false"))
        return INVALID_SUBFILE_INDEX;
    const int index = Header.Find(subfileName);
    if (index == INVALID_SUBFILE_INDEX) return index;
    if (Header.SubFileHeaderData[static_cast<size_t>(index)].Flags & SubFileHeaderClass::FLAG_ENCRYPTED) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileClass - %.*s in %s is encrypted, which is not supported\n",
               static_cast<int>(subfileName.size()), subfileName.data(), MegaFileName.c_str());
        return INVALID_SUBFILE_INDEX;
    }
    return index;
}

std::string_view MegaFileClass::Subfile_Get_Name(int index) const
{
    return Has_Subfile(index) ? Header.Get_Name(index) : std::string_view();
}

bool MegaFileClass::Has_Subfile(int index) const
{
    return MK_VERIFY(index >= 0, "subfile_index >= 0") &&
           MK_VERIFY(index < Get_Subfile_Count(), "subfile_index < (int) TotalSubFiles");
}

int64_t MegaFileClass::Subfile_Get_Size(int index) const
{
    if (!Has_Subfile(index)) return -1;
    return Header.SubFileHeaderData[static_cast<size_t>(index)].File_Size;
}

int64_t MegaFileClass::Subfile_Tell(int index, FileClass *privateFile)
{
    if (!Has_Subfile(index)) return -1;
    if (!privateFile) return SubFileActiveData[static_cast<size_t>(index)].Active_File_Offset;
    const int64_t start = Header.SubFileHeaderData[static_cast<size_t>(index)].Data_Offset;
    const int64_t position = privateFile->Tell();
    if (MK_VERIFY(position >= start, "cur_pos < SubFileHeaderData[ subfile_index ].Data_Offset"))
        return position - start;
    privateFile->Seek(start, FILE_SEEK_BEGIN);
    return 0;
}

int64_t MegaFileClass::Subfile_Read(int index, void *buffer, int64_t size, FileClass *privateFile)
{
    const int64_t position = Subfile_Tell(index, privateFile);
    if (position < 0) return 0;
    const SubFileHeaderClass &entry = Header.SubFileHeaderData[static_cast<size_t>(index)];
    const int64_t count = std::min(size, entry.File_Size - position);
    if (count <= 0) return 0;

    int64_t read = count;
    if (OpenType == MEGAFILE_OPEN_AND_LOAD_IN_RAM) {
        std::memcpy(buffer, ResidentSubFileImageData.data() + (entry.Data_Offset + position - DataStart),
                    static_cast<size_t>(count));
    } else if (privateFile) {
        return privateFile->Read(buffer, count); // its position is the sub-file's
    } else {
        if (!Move_To(index, position, nullptr)) return 0;
        read = MegaFile.Read(buffer, count);
    }
    SubFileActiveData[static_cast<size_t>(index)].Active_File_Offset = static_cast<uint32_t>(position + read);
    return read;
}

int64_t MegaFileClass::Subfile_Seek(int index, int64_t offset, FileSeekOrigin origin, FileClass *privateFile)
{
    const int64_t current = Subfile_Tell(index, privateFile);
    if (current < 0 || origin <= FILE_SEEK_INVALID || origin >= FILE_SEEK_TOTAL) return -1;
    const int64_t size = Header.SubFileHeaderData[static_cast<size_t>(index)].File_Size;
    const int64_t base = origin == FILE_SEEK_BEGIN ? 0 : origin == FILE_SEEK_CURRENT ? current : size;
    const int64_t position = base + std::clamp(offset, -base, size - base);
    if (!privateFile)
        SubFileActiveData[static_cast<size_t>(index)].Active_File_Offset = static_cast<uint32_t>(position);
    else if (!Move_To(index, position, privateFile))
        return -1;
    return position;
}

bool MegaFileClass::Move_To(int index, int64_t position, FileClass *privateFile)
{
    FileClass &file = privateFile ? *privateFile : MegaFile;
    const int64_t target = Header.SubFileHeaderData[static_cast<size_t>(index)].Data_Offset + position;
    return MK_VERIFY(file.Seek(target, FILE_SEEK_BEGIN) == target,
                     "file_object->Seek(seek_pos, MKPlatform::FILE_SEEK_BEGIN) == seek_pos");
}

std::unique_ptr<FileClass> MegaFileClass::Create_Private_File(int index) const
{
    if (!Has_Subfile(index) || OpenType != MEGAFILE_OPEN_FROM_DISK) return nullptr;
    auto file = std::make_unique<FileClass>(MegaFile.Get_Name());
    if (!MK_VERIFY(file->Open(FILE_OPEN_GENERIC_READ), "file_object->Open() == false")) return nullptr;
    const int64_t start = Header.SubFileHeaderData[static_cast<size_t>(index)].Data_Offset;
    if (!MK_VERIFY(file->Seek(start, FILE_SEEK_BEGIN) == start, "data_offset == seek_offset")) return nullptr;
    return file;
}

const uint8_t *MegaFileClass::Subfile_Get_Image(int index)
{
    const int64_t size = Subfile_Get_Size(index);
    if (size <= 0) return nullptr;
    const SubFileHeaderClass &entry = Header.SubFileHeaderData[static_cast<size_t>(index)];
    if (OpenType == MEGAFILE_OPEN_AND_LOAD_IN_RAM) {
        ReferencedMemoryPointers.push_back(ResidentSubFileImageData.data() + (entry.Data_Offset - DataStart));
        return ReferencedMemoryPointers.back();
    }
    std::unique_ptr<uint8_t[]> copy(new (std::nothrow) uint8_t[static_cast<size_t>(size)]);
    if (!copy || !Move_To(index, 0, nullptr) || MegaFile.Read(copy.get(), size) != size) return nullptr;
    AllocatedMemoryPointers.push_back(std::move(copy));
    return AllocatedMemoryPointers.back().get();
}

bool MegaFileClass::Subfile_Release_Image(const uint8_t *image)
{
    const auto referenced = std::find(ReferencedMemoryPointers.begin(), ReferencedMemoryPointers.end(), image);
    if (referenced != ReferencedMemoryPointers.end()) {
        ReferencedMemoryPointers.erase(referenced);
        return true;
    }
    return std::erase_if(AllocatedMemoryPointers, [image](const auto &copy) { return copy.get() == image; }) > 0;
}
