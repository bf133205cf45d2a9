#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace MKTest
{

using Bytes = std::vector<uint8_t>;

/// A fresh directory that goes away, with all that is in it, at the end.
class TempDirectory
{
public:
    TempDirectory();
    TempDirectory(const TempDirectory &) = delete;
    TempDirectory &operator=(const TempDirectory &) = delete;
    ~TempDirectory();

    const std::string &Get_Path() const { return Root; } ///< absolute system path, no separator at the end
    std::string operator/(std::string_view name) const { return Root + "/" + std::string(name); }

    /// Writes a file under the directory, with its parent directories, and gives its path.
    std::string Write(std::string_view name, std::string_view text) const;
    std::string Write(std::string_view name, const Bytes &bytes) const;
    /// Makes a sub-directory and gives its path.
    std::string Make_Directory(std::string_view name) const;

private:
    std::string Root;
};

/// Makes `path` the process's current directory for as long as it lives.
class CurrentDirectory
{
public:
    explicit CurrentDirectory(const std::string &path);
    CurrentDirectory(const CurrentDirectory &) = delete;
    CurrentDirectory &operator=(const CurrentDirectory &) = delete;
    ~CurrentDirectory();

private:
    std::string Before;
};

/// Whole files, by system paths. They throw std::runtime_error, so that a test can't pass on a file it didn't get.
Bytes Read_Whole_File(const std::string &path);
std::string Read_Text_File(const std::string &path);
void Write_Whole_File(const std::string &path, const void *data, size_t size);
void Write_Whole_File(const std::string &path, const Bytes &bytes);
void Write_Whole_File(const std::string &path, std::string_view text);

} // namespace MKTest
