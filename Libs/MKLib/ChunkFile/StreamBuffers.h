#pragma once

#include "MKLib/ChunkFile/ChunkTypes.h"

#include <memory>
#include <zlib.h>

/// The working memory of readers and writers: fixed buffers with a zlib state, kept for the next user of the same
/// thread. A scan makes thousands of readers, and a fresh set costs more than reading a small file does.
namespace ChunkFile
{

struct InflateBuffers
{
    InflateBuffers() {}
    InflateBuffers(const InflateBuffers &) = delete;
    InflateBuffers &operator=(const InflateBuffers &) = delete;
    ~InflateBuffers();

    /// Readies the state for a new stream. Z_OK, or zlib's error.
    int Start_Stream();

    z_stream Stream;
    bool IsReady = false;
    uint8_t In[COMPRESSION_BUFFER_SIZE]; ///< not cleared, as Out isn't
    uint8_t Out[COMPRESSION_BUFFER_SIZE];
};

struct DeflateBuffers
{
    DeflateBuffers() {}
    DeflateBuffers(const DeflateBuffers &) = delete;
    DeflateBuffers &operator=(const DeflateBuffers &) = delete;
    ~DeflateBuffers();

    /// Readies the state for a new stream at `level`. Z_OK, or zlib's error.
    int Start_Stream(int level);
    /// Ends the stream, finished or not, and keeps the state for the next one. Z_OK, or zlib's error: the state is then
    /// gone.
    int End_Stream();

    z_stream Stream;
    bool IsReady = false;
    int Level = 0;
    uint8_t In[COMPRESSION_BUFFER_SIZE]; ///< not cleared, as Out isn't
    uint8_t Out[COMPRESSION_BUFFER_SIZE];
};

/// A used set of this thread, or a new one. Never null.
std::unique_ptr<InflateBuffers> Take_Inflate_Buffers();
std::unique_ptr<DeflateBuffers> Take_Deflate_Buffers();
/// Keeps a few sets for this thread and frees the others. Null is fine.
void Give_Back(std::unique_ptr<InflateBuffers> buffers);
void Give_Back(std::unique_ptr<DeflateBuffers> buffers);

} // namespace ChunkFile
