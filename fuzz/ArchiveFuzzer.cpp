// Opens any bytes as an archive, both ways, and reads all that it claims to hold. The first byte of the input chooses
// how many of the rest make up a companion header file, in steps of 16 bytes; 0 is none.

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MegaFile/MegaFile.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdlib.h>
#include <string>
#include <unistd.h>

namespace
{

std::string Make_Directory()
{
    char pattern[] = "/dev/shm/archive-fuzzer-XXXXXX";
    if (const char *directory = mkdtemp(pattern)) return directory;
    char fallback[] = "/tmp/archive-fuzzer-XXXXXX";
    if (const char *directory = mkdtemp(fallback)) return directory;
    std::abort();
}

const std::string &Archive_Path()
{
    static const std::string path = Make_Directory() + "/a.meg";
    return path;
}

void Remove_Files()
{
    const std::string &path = Archive_Path();
    unlink(path.c_str());
    unlink((path + "h").c_str());
    rmdir(path.substr(0, path.rfind('/')).c_str());
}

void Write_File(const std::string &path, const uint8_t *data, size_t size)
{
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (!file || std::fwrite(data, 1, size, file) != size) std::abort();
    std::fclose(file);
}

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
    std::atexit(Remove_Files);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) return 0;
    const size_t headerSize = std::min<size_t>(data[0] * 16u, size - 1);
    const std::string &path = Archive_Path();
    const std::string companion = path + "h";
    if (headerSize > 0)
        Write_File(companion, data + 1, headerSize);
    else
        unlink(companion.c_str());
    Write_File(path, data + 1 + headerSize, size - 1 - headerSize);
    for (const auto openType : {MegaFileClass::MEGAFILE_OPEN_FROM_DISK, MegaFileClass::MEGAFILE_OPEN_AND_LOAD_IN_RAM}) {
        MegaFileClass archive;
        if (archive.Open(path, openType)) Read_Everything(archive, static_cast<int64_t>(size));
    }
    return 0;
}
