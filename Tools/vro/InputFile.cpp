#include "vro/InputFile.h"

#include "vro/OutputFile.h"

#include "MKLib/File/RAMFile.h"
#include "MKPlatform/Files.h"

#include <cerrno>

namespace vro
{

std::unique_ptr<InputFile> InputFile::Open(const std::string &path, std::string &error)
{
    auto input = std::make_unique<InputFile>();
    if (path == "-") {
        if (!Read_Input(path, input->Content, error)) return nullptr;
        input->File = std::make_unique<RAMFileClass>(input->Content.data(), static_cast<int64_t>(input->Content.size()));
        input->File->Open("standard input", MKPlatform::FILE_OPEN_GENERIC_READ);
        return input;
    }
    if (MKPlatform::Directory_Exists(path)) {
        error = MKPlatform::Error_Text(EISDIR);
        return nullptr;
    }
    int number = 0;
    const MKPlatform::FileHandle probe = MKPlatform::File_Open(path, MKPlatform::FILE_OPEN_GENERIC_READ, &number);
    if (probe == MKPlatform::INVALID_FILE) {
        error = MKPlatform::Error_Text(number);
        return nullptr;
    }
    MKPlatform::File_Close(probe);
    input->File = std::make_unique<FileClass>(path);
    if (input->File->Open(MKPlatform::FILE_OPEN_GENERIC_READ)) return input;
    error = "the file can't be opened";
    return nullptr;
}

} // namespace vro
