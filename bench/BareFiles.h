#pragma once

#include <string>
#include <vector>

/// The limit of a load: what zlib and the system alone take for the same files.
namespace BareFiles
{

/// Opens, reads and inflates each file, with one inflate state and buffers that last over all of them. Returns the bytes
/// that came out, so that the work is real.
size_t Read_And_Inflate(const std::vector<std::string> &paths);

/// The data stream of a zlib chunk file's bytes, inflated.
std::vector<unsigned char> Inflate(const std::vector<unsigned char> &file);

std::vector<unsigned char> Read(const std::string &path);

} // namespace BareFiles
