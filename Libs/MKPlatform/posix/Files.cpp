#include "MKPlatform/Files.h"

#include "MKPlatform/posix/SystemPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace MKPlatform
{

namespace
{

constexpr mode_t ANY_WRITE_BIT = S_IWUSR | S_IWGRP | S_IWOTH;

bool Writes(FileAccess access)
{
    return access == FILE_OPEN_GENERIC_WRITE || access == FILE_OPEN_WRITE_APPEND || access == FILE_OPEN_EXCLUSIVE_WRITE;
}

bool Empties(FileAccess access)
{
    return access == FILE_OPEN_GENERIC_WRITE || access == FILE_OPEN_EXCLUSIVE_WRITE;
}

bool Is_Exclusive(FileAccess access)
{
    return access == FILE_OPEN_EXCLUSIVE_READ || access == FILE_OPEN_EXCLUSIVE_WRITE;
}

int Open_Descriptor(const char *path, int flags)
{
    int descriptor;
    do {
        // Without O_NONBLOCK the open of a pipe would wait for its other end.
        descriptor = open(path, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

int Open_For_Reading(std::string_view enginePath)
{
    const std::string path = With_System_Separators(enginePath);
    const int descriptor = Open_Descriptor(path.c_str(), O_RDONLY);
    if (descriptor >= 0 || (errno != ENOENT && errno != ENOTDIR)) return descriptor;
    const std::string found = To_System_Path(enginePath);
    if (found == path) {
        errno = ENOENT;
        return INVALID_FILE;
    }
    return Open_Descriptor(found.c_str(), O_RDONLY);
}

int Open_For_Writing(std::string_view enginePath)
{
    const std::string path = To_System_Path(enginePath);
    struct stat status;
    // A super-user's open would go through, and the attribute has to hold for everyone.
    if (stat(path.c_str(), &status) == 0 && (status.st_mode & ANY_WRITE_BIT) == 0) {
        errno = EACCES;
        return INVALID_FILE;
    }
    return Open_Descriptor(path.c_str(), O_WRONLY | O_CREAT);
}

/// 0, or the error that makes the descriptor useless as an engine file, which seeks and has a size.
int Check_Kind(int descriptor)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0) return errno;
    if (S_ISREG(status.st_mode)) return 0;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (!S_ISCHR(status.st_mode) && !S_ISBLK(status.st_mode)) return ESPIPE;
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    return 0;
}

/// The sharing between opens: an exclusive one stands alone, and a file has one writer beside any number of readers.
/// A file system without locks shares everything.
int Check_Sharing(int descriptor, FileAccess access)
{
    if (flock(descriptor, (Is_Exclusive(access) ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return EBUSY;
    if (!Writes(access)) return 0;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    if (fcntl(descriptor, F_OFD_SETLK, &lock) != 0 && (errno == EAGAIN || errno == EACCES)) return EBUSY;
    return 0;
}

int Prepare(int descriptor, FileAccess access)
{
    if (const int error = Check_Kind(descriptor)) return error;
    if (const int error = Check_Sharing(descriptor, access)) return error;
    // Only now, so that a refused open leaves the bytes alone. A device can't be emptied and needn't.
    if (Empties(access) && ftruncate(descriptor, 0) != 0 && errno != EINVAL) return errno;
    if (access == FILE_OPEN_WRITE_APPEND && lseek(descriptor, 0, SEEK_END) < 0) return errno;
    return 0;
}

template <typename Move>
int64_t Move_All(int64_t size, Move move)
{
    int64_t moved = 0;
    while (moved < size) {
        const ssize_t count = move(moved, static_cast<size_t>(size - moved));
        if (count > 0) {
            moved += count;
        } else if (count == 0) {
            break;
        } else if (errno != EINTR) {
            return moved > 0 ? moved : -1;
        }
    }
    return moved;
}

} // namespace

FileHandle File_Open(std::string_view enginePath, FileAccess access, int *error)
{
    int failure = 0;
    int descriptor = INVALID_FILE;
    if (access <= FILE_OPEN_INVALID || access >= FILE_OPEN_TOTAL || enginePath.find('\0') != enginePath.npos) {
        failure = EINVAL;
    } else {
        descriptor = Writes(access) ? Open_For_Writing(enginePath) : Open_For_Reading(enginePath);
        failure = descriptor < 0 ? errno : Prepare(descriptor, access);
    }
    if (failure != 0 && descriptor >= 0) {
        close(descriptor);
        descriptor = INVALID_FILE;
    }
    if (error) *error = failure;
    return descriptor;
}

bool File_Close(FileHandle handle, int *error)
{
    const bool closed = close(handle) == 0 || errno == EINTR; // after EINTR the handle is gone all the same
    if (error) *error = closed ? 0 : errno;
    return closed;
}

int64_t File_Read(FileHandle handle, void *buffer, int64_t size)
{
    return Move_All(size,
                    [&](int64_t done, size_t left) { return read(handle, static_cast<char *>(buffer) + done, left); });
}

int64_t File_Write(FileHandle handle, const void *buffer, int64_t size, int *error)
{
    const int64_t written = Move_All(
        size, [&](int64_t done, size_t left) { return write(handle, static_cast<const char *>(buffer) + done, left); });
    if (error) *error = written == size ? 0 : errno;
    return written;
}

int64_t File_Seek(FileHandle handle, int64_t offset, FileSeekOrigin origin)
{
    switch (origin) {
    case FILE_SEEK_BEGIN: return lseek(handle, offset, SEEK_SET);
    case FILE_SEEK_CURRENT: return lseek(handle, offset, SEEK_CUR);
    case FILE_SEEK_END: return lseek(handle, offset, SEEK_END);
    default: errno = EINVAL; return -1;
    }
}

int64_t File_Size(FileHandle handle)
{
    struct stat status;
    return fstat(handle, &status) == 0 ? status.st_size : -1;
}

std::string Error_Text(int error)
{
    return std::system_category().message(error);
}

bool File_Exists(std::string_view enginePath)
{
    struct stat status;
    return enginePath.find('\0') == enginePath.npos && stat(To_System_Path(enginePath).c_str(), &status) == 0 &&
           !S_ISDIR(status.st_mode);
}

bool Directory_Exists(std::string_view enginePath)
{
    struct stat status;
    return enginePath.find('\0') == enginePath.npos && stat(To_System_Path(enginePath).c_str(), &status) == 0 &&
           S_ISDIR(status.st_mode);
}

bool File_Is_Read_Only(std::string_view enginePath)
{
    if (enginePath.find('\0') != enginePath.npos) return false;
    const std::string path = To_System_Path(enginePath);
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return false;
    return (status.st_mode & ANY_WRITE_BIT) == 0 || faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0;
}

} // namespace MKPlatform
