#include "MKLib/ChunkFile/StreamBuffers.h"

#include <cstring>
#include <utility>

namespace ChunkFile
{

namespace
{

/// Its user may outlive it: objects with static storage end after the thread's own.
template <typename Buffers>
class Pool
{
public:
    ~Pool() { IsGone = true; }

    static std::unique_ptr<Buffers> Take()
    {
        if (!IsGone) {
            for (std::unique_ptr<Buffers> &kept : ThisThread.Kept)
                if (kept) return std::move(kept);
        }
        return std::unique_ptr<Buffers>(new Buffers);
    }

    static void Give(std::unique_ptr<Buffers> buffers)
    {
        if (IsGone) return;
        for (std::unique_ptr<Buffers> &kept : ThisThread.Kept) {
            if (kept) continue;
            kept = std::move(buffers);
            return;
        }
    }

private:
    static constexpr int KEPT_COUNT = 2; // a sectioned file uses two at once

    std::unique_ptr<Buffers> Kept[KEPT_COUNT];

    static thread_local bool IsGone;
    static thread_local Pool ThisThread;
};

template <typename Buffers>
thread_local bool Pool<Buffers>::IsGone = false;
template <typename Buffers>
thread_local Pool<Buffers> Pool<Buffers>::ThisThread;

} // namespace

InflateBuffers::~InflateBuffers()
{
    if (IsReady) inflateEnd(&Stream);
}

int InflateBuffers::Start_Stream()
{
    if (IsReady && inflateReset(&Stream) == Z_OK) {
        Stream.next_in = nullptr;
        Stream.avail_in = 0;
        return Z_OK;
    }
    if (IsReady) inflateEnd(&Stream);
    std::memset(&Stream, 0, sizeof(Stream));
    const int result = inflateInit(&Stream);
    IsReady = result == Z_OK;
    return result;
}

DeflateBuffers::~DeflateBuffers()
{
    if (IsReady) deflateEnd(&Stream);
}

int DeflateBuffers::Start_Stream(int level)
{
    if (IsReady && Level == level && deflateReset(&Stream) == Z_OK) {
        Stream.next_in = nullptr;
        Stream.avail_in = 0;
    } else {
        if (IsReady) deflateEnd(&Stream);
        std::memset(&Stream, 0, sizeof(Stream));
        const int result = deflateInit(&Stream, level);
        IsReady = result == Z_OK;
        Level = level;
        if (!IsReady) return result;
    }
    Stream.next_out = Out;
    Stream.avail_out = COMPRESSION_BUFFER_SIZE;
    return Z_OK;
}

int DeflateBuffers::End_Stream()
{
    if (!IsReady) return Z_OK;
    // A state that is reset is as good as a freed one, and the next stream needs no memory.
    if (deflateReset(&Stream) == Z_OK) return Z_OK;
    IsReady = false;
    return deflateEnd(&Stream);
}

std::unique_ptr<InflateBuffers> Take_Inflate_Buffers()
{
    return Pool<InflateBuffers>::Take();
}

std::unique_ptr<DeflateBuffers> Take_Deflate_Buffers()
{
    return Pool<DeflateBuffers>::Take();
}

void Give_Back(std::unique_ptr<InflateBuffers> buffers)
{
    if (buffers) Pool<InflateBuffers>::Give(std::move(buffers));
}

void Give_Back(std::unique_ptr<DeflateBuffers> buffers)
{
    if (buffers) Pool<DeflateBuffers>::Give(std::move(buffers));
}

} // namespace ChunkFile
