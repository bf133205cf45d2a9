// Opens any bytes as an archive, both ways, and reads all that it claims to hold. The first byte of the input chooses
// how many of the rest make up a companion header file, in steps of 16 bytes; 0 is none.

#include "MKLib/File/FileCache.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MegaFile/MegaFile.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

// Served from the file cache, so that a run costs no trip to a disk.
constexpr const char *ARCHIVE = "nowhere\\a.meg";
constexpr const char *COMPANION = "nowhere\\a.megh";

void Require(bool holds)
{
    if (!holds) std::abort();
}

void Read_Everything(MegaFileClass &archive, int64_t inputSize)
{
    uint8_t buffer[512];
    int64_t budget = 16 * inputSize; // sub-files may overlap, so their sum knows no bound
    for (int i = 0; i < archive.Get_Subfile_Count() && budget > 0; ++i) {
        const std::string name(archive.Subfile_Get_Name(i));
        if (!name.empty()) archive.Find_Subfile(name);
        const int64_t size = archive.Subfile_Get_Size(i);
        Require(size >= 0 && size <= inputSize);
        archive.Subfile_Seek(i, 0, MKPlatform::FILE_SEEK_BEGIN);
        int64_t total = 0;
        while (const int64_t read = archive.Subfile_Read(i, buffer, sizeof(buffer))) total += read;
        Require(total == size);
        if (const uint8_t *image = archive.Subfile_Get_Image(i)) {
            Require(image[0] + image[size - 1] >= 0);
            Require(archive.Subfile_Release_Image(image));
        }
        budget -= size;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) return 0;
    const size_t headerSize = std::min<size_t>(data[0] * 16u, size - 1);
    const uint8_t *archiveBytes = data + 1 + headerSize;
    FileCacheClass::Remove(COMPANION);
    if (headerSize > 0) FileCacheClass::Add(COMPANION, std::vector<uint8_t>(data + 1, archiveBytes));
    FileCacheClass::Add(ARCHIVE, std::vector<uint8_t>(archiveBytes, data + size));
    for (const auto openType : {MegaFileClass::MEGAFILE_OPEN_FROM_DISK, MegaFileClass::MEGAFILE_OPEN_AND_LOAD_IN_RAM}) {
        MegaFileClass archive;
        if (archive.Open(ARCHIVE, openType)) Read_Everything(archive, static_cast<int64_t>(size));
    }
    return 0;
}
