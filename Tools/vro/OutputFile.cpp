#include "vro/OutputFile.h"

#include "MKPlatform/Files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace vro
{

namespace
{

namespace fs = std::filesystem;

bool Fail(std::string &error, int number)
{
    error = std::strerror(number);
    return false;
}

bool Write_All(int handle, std::string_view content, std::string &error)
{
    while (!content.empty()) {
        const ssize_t written = ::write(handle, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return Fail(error, errno);
        content.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

bool Read_All(int handle, std::string &content, std::string &error)
{
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(handle, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Fail(error, errno);
        if (count == 0) return true;
        content.append(buffer, static_cast<size_t>(count));
    }
}

/// The file that a write to `path` would reach: a link is followed, so that it stays a link, also one to a file that
/// isn't there yet. False for a link that leads nowhere.
bool Follow_Links(fs::path &path)
{
    constexpr int MOST_LINKS = 40;
    std::error_code ignored;
    for (int count = 0; fs::is_symlink(path, ignored); ++count) {
        if (count == MOST_LINKS) return false;
        path = path.parent_path() / fs::read_symlink(path, ignored);
    }
    return true;
}

bool Replace_File(const fs::path &target, std::string_view content, std::string &error)
{
    // The name doesn't grow with the target's, which may be as long as a name can be.
    std::string temporary = (target.parent_path() / ".vro.XXXXXX").string();
    const int handle = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (handle < 0) return Fail(error, errno);

    struct stat status{};
    const bool exists = ::stat(target.c_str(), &status) == 0;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(handle, exists ? status.st_mode & 07777 : 0666 & ~mask);

    bool written = Write_All(handle, content, error);
    if (::close(handle) != 0 && written) written = Fail(error, errno);
    if (written && ::rename(temporary.c_str(), target.c_str()) != 0) written = Fail(error, errno);
    if (!written) ::unlink(temporary.c_str());
    return written;
}

} // namespace

bool Write_Output(const std::string &path, std::string_view content, std::string &error)
{
    if (path == "-") {
        std::fflush(stdout);
        return Write_All(STDOUT_FILENO, content, error);
    }
    fs::path target = path;
    if (!Follow_Links(target)) return Fail(error, ELOOP);
    std::error_code ignored;
    if (fs::is_directory(target, ignored)) return Fail(error, EISDIR);
    if (MKPlatform::File_Is_Read_Only(target.string())) {
        error = "the file is read-only";
        return false;
    }
    if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) {
        // A device or a pipe has no content that a failure could spoil.
        const int handle = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
        if (handle < 0) return Fail(error, errno);
        const bool written = Write_All(handle, content, error);
        return ::close(handle) == 0 ? written : Fail(error, errno);
    }
    return Replace_File(target, content, error);
}

bool Read_Input(const std::string &path, std::string &content, std::string &error)
{
    content.clear();
    if (path == "-") return Read_All(STDIN_FILENO, content, error);
    const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return Fail(error, errno);
    const bool read = Read_All(handle, content, error);
    ::close(handle);
    return read;
}

} // namespace vro
