#include "vro/InputFile.h"

#include "vro/OutputFile.h"

#include "MKLib/File/RAMFile.h"
#include "MKPlatform/Files.h"

#include <cerrno>
#include <filesystem>

namespace vro
{

namespace fs = std::filesystem;

std::unique_ptr<InputFile> InputFile::Open(const std::string &path, std::string &error)
{
    auto input = std::make_unique<InputFile>();
    std::error_code ignored;
    if (path == "-" || fs::is_fifo(path, ignored)) { // the engine's file object goes to and fro, which a pipe can't
        if (!Read_Input(path, input->Content, error)) return nullptr;
        input->File = std::make_unique<RAMFileClass>(input->Content.data(), static_cast<int64_t>(input->Content.size()));
        input->File->Open(path == "-" ? "standard input" : path, MKPlatform::FILE_OPEN_GENERIC_READ);
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
