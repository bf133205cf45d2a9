#include "BareFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdlib>

namespace
{

/// Where a chunk file's data stream starts.
constexpr size_t HEADER_BYTES = 36;

[[noreturn]] void Give_Up(const char *what)
{
    std::perror(what);
    std::exit(1);
}

size_t Inflate_Into(z_stream &stream, const unsigned char *data, size_t size, std::vector<unsigned char> &buffer)
{
    stream.next_in = const_cast<unsigned char *>(data);
    stream.avail_in = static_cast<uInt>(size);
    size_t total = 0;
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = buffer.data();
        stream.avail_out = static_cast<uInt>(buffer.size());
        result = inflate(&stream, Z_SYNC_FLUSH);
        total += buffer.size() - stream.avail_out;
    }
    if (result != Z_STREAM_END) Give_Up("inflate");
    return total;
}

} // namespace

namespace BareFiles
{

size_t Read_And_Inflate(const std::vector<std::string> &paths)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) Give_Up("inflateInit");
    std::vector<unsigned char> input(1 << 20);
    std::vector<unsigned char> output(32768);
    size_t total = 0;
    for (const std::string &path : paths) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) Give_Up(path.c_str());
        const ssize_t size = read(file, input.data(), input.size());
        if (size < static_cast<ssize_t>(HEADER_BYTES)) Give_Up(path.c_str());
        close(file);
        inflateReset(&stream);
        total += Inflate_Into(stream, input.data() + HEADER_BYTES, static_cast<size_t>(size) - HEADER_BYTES, output);
    }
    inflateEnd(&stream);
    return total;
}

std::vector<unsigned char> Inflate(const std::vector<unsigned char> &file)
{
    std::vector<unsigned char> output(1 << 22);
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) Give_Up("inflateInit");
    output.resize(Inflate_Into(stream, file.data() + HEADER_BYTES, file.size() - HEADER_BYTES, output));
    inflateEnd(&stream);
    return output;
}

std::vector<unsigned char> Read(const std::string &path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status{};
    if (file < 0 || fstat(file, &status) != 0) Give_Up(path.c_str());
    std::vector<unsigned char> bytes(static_cast<size_t>(status.st_size));
    if (read(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) Give_Up(path.c_str());
    close(file);
    return bytes;
}

} // namespace BareFiles
