#include "common/TempFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>

namespace MKTest
{

namespace fs = std::filesystem;

TempDirectory::TempDirectory()
{
    std::string pattern = (fs::temp_directory_path() / "mktest-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory: " + pattern);
    Root = pattern;
}

TempDirectory::~TempDirectory()
{
    std::error_code error;
    fs::remove_all(Root, error);
}

std::string TempDirectory::Write(std::string_view name, std::string_view text) const
{
    const std::string path = *this / name;
    fs::create_directories(fs::path(path).parent_path());
    Write_Whole_File(path, text);
    return path;
}

std::string TempDirectory::Write(std::string_view name, const Bytes &bytes) const
{
    return Write(name, std::string_view(reinterpret_cast<const char *>(bytes.data()), bytes.size()));
}

std::string TempDirectory::Make_Directory(std::string_view name) const
{
    const std::string path = *this / name;
    fs::create_directories(path);
    return path;
}

CurrentDirectory::CurrentDirectory(const std::string &path) : Before(fs::current_path().string())
{
    fs::current_path(path);
}

CurrentDirectory::~CurrentDirectory()
{
    std::error_code error;
    fs::current_path(Before, error);
}

std::string Read_Text_File(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("can't read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Bytes Read_Whole_File(const std::string &path)
{
    const std::string text = Read_Text_File(path);
    return {text.begin(), text.end()};
}

void Write_Whole_File(const std::string &path, const void *data, size_t size)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(static_cast<const char *>(data), static_cast<std::streamsize>(size));
    file.close();
    if (!file) throw std::runtime_error("can't write " + path);
}

void Write_Whole_File(const std::string &path, const Bytes &bytes)
{
    Write_Whole_File(path, bytes.data(), bytes.size());
}

void Write_Whole_File(const std::string &path, std::string_view text)
{
    Write_Whole_File(path, text.data(), text.size());
}

} // namespace MKTest
