#include "MKLib/ChunkFile/ChunkWriterImplementation.h"

#include "MKLib/ChunkFile/ChunkLog.h"

#include <algorithm>
#include <limits>

/// The writer's way to the file: payload, blocks, streams.
namespace ChunkFile
{

namespace
{

constexpr uint32_t LEAF_LIMIT = 0x7fffffff;

constexpr int ZlibFlushes[] = {Z_NO_FLUSH, Z_FULL_FLUSH, Z_FINISH}; // by FinalizeType

} // namespace

/// The reason is logged when they may not.
bool ChunkFileWriterClass::Implementation::Admit_Slowly(uint64_t size)
{
    if (!MK_VERIFY(Initialized, "Initialized")) return false;
    if (InMicroChunk) {
        MK_ASSERT(false, "CurrentMicroChunk.Get_Size() + size > 255");
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter::Write_Bytes - Microchunk %i is too long in %s\n",
               MicroId, File_Name());
        return false;
    }
    if (StackIndex == 0) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - A value stands outside of every chunk in %s\n",
               File_Name());
        return false;
    }
    const ChunkHeader &top = InChunkBuffer[Stack[StackIndex - 1]];
    if (top.Contains_Chunks()) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - A value stands beside sub-chunks in chunk %u of %s\n",
               top.Id, File_Name());
        return false;
    }
    if (top.Get_Size() + size > LEAF_LIMIT) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Chunk %u is too long in %s\n", top.Id, File_Name());
        return false;
    }
    return true;
}

bool ChunkFileWriterClass::Implementation::Append_Data(const void *data, uint32_t size)
{
    const auto *bytes = static_cast<const uint8_t *>(data);
    while (size > 0) {
        const uint32_t piece = std::min(size, COMPRESSION_BUFFER_SIZE - InDataCount);
        std::memcpy(DataStream->In + InDataCount, bytes, piece);
        InDataCount += piece;
        bytes += piece;
        size -= piece;
        if (InDataCount == COMPRESSION_BUFFER_SIZE && !Flush_Data(FINALIZE_NONE)) {
            MK_ASSERT(false, "Flush_To_File(DataStream, InDataBuffer, COMPRESSION_BUFFER_SIZE, FINALIZE_NONE, "
                             "&CurrentSectionHeader.DataSize)");
            MK_LOG(ChunkFileTextLog, LogLevel::Error, "Compression error in %s\n", File_Name());
            return false;
        }
    }
    return !HasFailed;
}

bool ChunkFileWriterClass::Implementation::Flush_Data(FinalizeType finalize)
{
    const uint32_t size = InDataCount;
    InDataCount = 0;
    return Flush_To_File(*DataStream, DataStream->In, size, finalize, CurrentSectionHeader.DataSize);
}

/// The table's headers go to the chunk stream, and the table is empty then.
bool ChunkFileWriterClass::Implementation::Flush_Chunk_Table(FinalizeType finalize)
{
    constexpr size_t PIECE = COMPRESSION_BUFFER_SIZE / sizeof(ChunkHeader);
    if (!Native)
        for (ChunkHeader &header : InChunkBuffer) header = {Swap_Bytes(header.Id), Swap_Bytes(header.SizeWord)};
    bool flushed = true;
    size_t start = 0;
    do {
        const size_t count = std::min(PIECE, InChunkBuffer.size() - start);
        const bool isLast = start + count == InChunkBuffer.size();
        flushed = Flush_To_File(*ChunkStream, reinterpret_cast<const uint8_t *>(InChunkBuffer.data() + start),
                                static_cast<uint32_t>(count * sizeof(ChunkHeader)), isLast ? finalize : FINALIZE_NONE,
                                CurrentSectionHeader.ChunkSize) &&
                  flushed;
        start += count;
    } while (start < InChunkBuffer.size());
    InChunkBuffer.clear();
    return flushed;
}

bool ChunkFileWriterClass::Implementation::Write_To_File(const void *data, uint32_t size)
{
    if (HasFailed) return false;
    const int64_t written = size > 0 ? File->Write(data, size) : 0;
    if (written == size) return true;
    MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Could not write to %s: %lld of %u bytes went out\n",
           File_Name(), static_cast<long long>(std::max<int64_t>(written, 0)), size);
    HasFailed = true;
    return false;
}

/// Bytes of a stream, which the section's sizes and CRC tell of.
bool ChunkFileWriterClass::Implementation::Write_Stream_Bytes(const uint8_t *data, uint32_t size, uint32_t &counter)
{
    if (size > std::numeric_limits<uint32_t>::max() - counter) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - A stream of %s passes 4 GiB\n", File_Name());
        HasFailed = true;
    }
    if (!Write_To_File(data, size)) return false;
    // crc32 of a null pointer would start over
    if (size > 0) CurrentSectionHeader.CRC = static_cast<uint32_t>(crc32(CurrentSectionHeader.CRC, data, size));
    counter += size;
    return true;
}

bool ChunkFileWriterClass::Implementation::Flush_To_File(DeflateBuffers &stream, const uint8_t *data, uint32_t size,
                                                         FinalizeType finalize, uint32_t &counter)
{
    if (!File->Is_Open()) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - %s was closed before its writer\n", File_Name());
        HasFailed = true;
        return false;
    }
    if (DeferedWrite) {
        if (size == 0 || DeferedDataBuffer.Write(data, size) == size) return true;
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Out of memory for the data of %s\n", File_Name());
        HasFailed = true;
        return false;
    }
    if (Is_Zlib()) return Deflate_To_File(stream, data, size, finalize, counter);
    return Write_Stream_Bytes(data, size, counter);
}

bool ChunkFileWriterClass::Implementation::Deflate_To_File(DeflateBuffers &stream, const uint8_t *data, uint32_t size,
                                                           FinalizeType finalize, uint32_t &counter)
{
    z_stream &zlib = stream.Stream;
    zlib.next_in = const_cast<uint8_t *>(data);
    zlib.avail_in = size;
    for (;;) {
        const int result = deflate(&zlib, ZlibFlushes[finalize]);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
            MK_ASSERT(false, "ret != Z_OK && ret != Z_STREAM_END && ret != Z_BUF_ERROR");
            MK_LOG(ChunkFileLog, LogLevel::Error, "Compression error in %s, error code %d\n", File_Name(), result);
            HasFailed = true;
            return false;
        }
        const bool hasRoom = zlib.avail_out > 0;
        if (!hasRoom && !Write_Out_Buffer(stream, counter)) return false;
        const bool isDone = finalize == FINALIZE_FINISH ? result == Z_STREAM_END : zlib.avail_in == 0 && hasRoom;
        if (isDone) break;
    }
    return finalize == FINALIZE_NONE || Write_Out_Buffer(stream, counter);
}

bool ChunkFileWriterClass::Implementation::Write_Out_Buffer(DeflateBuffers &stream, uint32_t &counter)
{
    const uint32_t size = COMPRESSION_BUFFER_SIZE - stream.Stream.avail_out;
    stream.Stream.next_out = stream.Out;
    stream.Stream.avail_out = COMPRESSION_BUFFER_SIZE;
    return Write_Stream_Bytes(stream.Out, size, counter);
}

} // namespace ChunkFile
