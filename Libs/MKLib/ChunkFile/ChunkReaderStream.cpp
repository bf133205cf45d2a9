#include "MKLib/ChunkFile/ChunkReaderImplementation.h"

#include "MKLib/ChunkFile/ChunkLog.h"

/// The reader's way to the bytes: sections, streams, windows.
namespace ChunkFile
{

void ChunkFileReaderClass::Implementation::Fail()
{
    Damaged = true;
    HasFailed = true;
    LeafLeft = 0;
    MicroLeft = 0;
    for (InputStream *stream : {&DataStream, &ChunkStream}) {
        stream->Available = 0;
        stream->Remaining = 0;
        stream->HasEnded = true;
        if (stream->Buffers) stream->Buffers->Stream.avail_in = 0;
    }
}

void ChunkFileReaderClass::Implementation::Report_End()
{
    if (!HasFailed)
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - %s ends before its data does\n", File_Name());
    Fail();
}

/// Bytes read, which may be fewer than asked for; 0 at the end and on failure.
uint32_t ChunkFileReaderClass::Implementation::Read_File(int64_t position, void *buffer, uint32_t size)
{
    if (KnownFilePosition != position && File->Seek(position, MKPlatform::FILE_SEEK_BEGIN) != position) {
        KnownFilePosition = -1;
        return 0;
    }
    const int64_t read = File->Read(buffer, size);
    if (read <= 0 || read > size) {
        KnownFilePosition = -1;
        return 0;
    }
    KnownFilePosition = position + read;
    return static_cast<uint32_t>(read);
}

/// The stream's next bytes from the file, into `Buffers->In`.
bool ChunkFileReaderClass::Implementation::Refill_Input(InputStream &stream)
{
    const uint32_t wanted = std::min(COMPRESSION_BUFFER_SIZE, stream.Remaining);
    const uint32_t read = Read_File(stream.FilePosition, stream.Buffers->In, wanted);
    if (read == 0) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - %s is too short: %u bytes of a stream are missing\n",
               File_Name(), stream.Remaining);
        Damaged = true;
        stream.Remaining = 0;
        return false;
    }
    stream.FilePosition += read;
    stream.Remaining -= read;
    stream.Buffers->Stream.next_in = stream.Buffers->In;
    stream.Buffers->Stream.avail_in = read;
    stream.Compressed += read;
    return true;
}

bool ChunkFileReaderClass::Implementation::Refill_Plain(InputStream &stream)
{
    if (stream.Remaining == 0 || !Refill_Input(stream)) return false;
    stream.Window = stream.Buffers->In;
    stream.Available = stream.Buffers->Stream.avail_in;
    return true;
}

/// Decodes until the window is full or holds something and the input is used up.
bool ChunkFileReaderClass::Implementation::Inflate(InputStream &stream)
{
    z_stream &zlib = stream.Buffers->Stream;
    zlib.next_out = stream.Buffers->Out;
    zlib.avail_out = COMPRESSION_BUFFER_SIZE;
    // Output may be pending with no input left, so each round decodes before it looks for more.
    for (;;) {
        const int result = inflate(&zlib, Z_SYNC_FLUSH);
        if (result == Z_STREAM_END) {
            stream.HasEnded = true;
            break;
        }
        if (result != Z_OK && result != Z_BUF_ERROR) {
            MK_ASSERT(false, "ret == Z_STREAM_ERROR || ret == Z_DATA_ERROR");
            MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader::Decompress - Stream error %s in %s\n",
                   zlib.msg ? zlib.msg : zError(result), File_Name());
            Fail();
            return false;
        }
        if (zlib.avail_out == 0) break;
        if (zlib.avail_in == 0 && (zlib.avail_out < COMPRESSION_BUFFER_SIZE || stream.Remaining == 0)) break;
        if (zlib.avail_in == 0 && !Refill_Input(stream)) break;
    }
    stream.Window = stream.Buffers->Out;
    stream.Available = COMPRESSION_BUFFER_SIZE - zlib.avail_out;
    stream.Inflated += stream.Available;
    if (stream.Inflated > BOMB_BYTES && stream.Inflated / BOMB_RATIO > stream.Compressed) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - %s inflates to over %u MiB from %u KiB: refused\n",
               File_Name(), static_cast<unsigned>(stream.Inflated >> 20),
               static_cast<unsigned>(stream.Compressed >> 10));
        Fail();
        return false;
    }
    return stream.Available > 0;
}

/// Puts the next bytes into the empty window. False at the stream's end.
bool ChunkFileReaderClass::Implementation::Refill(InputStream &stream)
{
    if (IsXML || HasFailed || !stream.Buffers) return false;
    if (CompressionMode != COMPRESSION_ZLIB) return Refill_Plain(stream);
    if (!stream.HasEnded && Inflate(stream)) return true;
    if (stream.HasEnded && !HasFailed && StackIndex > 0)
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader::Decompress - Requested data past the end in %s\n",
               File_Name());
    return false;
}

/// All of `size` bytes; `taken` tells how many there were.
bool ChunkFileReaderClass::Implementation::Take(InputStream &stream, void *buffer, uint32_t size, uint32_t &taken)
{
    auto *out = static_cast<uint8_t *>(buffer);
    taken = 0;
    while (taken < size) {
        if (stream.Available == 0 && !Refill(stream)) return false;
        const uint32_t piece = std::min(size - taken, stream.Available);
        if (out) std::memcpy(out + taken, stream.Window, piece);
        stream.Advance(piece);
        taken += piece;
    }
    return true;
}

/// Passes over what a section left of a stream: zlib has to see all of it to go on in the next section.
void ChunkFileReaderClass::Implementation::Drain(InputStream &stream)
{
    stream.Available = 0;
    if (CompressionMode == COMPRESSION_ZLIB)
        while (!stream.HasEnded && (stream.Buffers->Stream.avail_in > 0 || stream.Remaining > 0) && Refill(stream))
            stream.Available = 0;
}

/// Streams that overlap would let a small file be read over and over.
bool ChunkFileReaderClass::Implementation::Sections_Are_Apart(const SectionHeader &section) const
{
    return uint64_t{section.DataOffset} + section.DataSize <= section.ChunkOffset || section.ChunkSize == 0;
}

bool ChunkFileReaderClass::Implementation::Next_Section()
{
    Drain(DataStream);
    Drain(ChunkStream);
    if (HasFailed) return false;
    uint32_t words[5];
    static_assert(sizeof(words) == sizeof(SectionHeader));
    uint32_t filled = 0;
    while (filled < sizeof(words)) {
        const uint32_t read =
            Read_File(SectionEnd + filled, reinterpret_cast<char *>(words) + filled, sizeof(words) - filled);
        if (read == 0) {
            Report_End();
            return false;
        }
        filled += read;
    }
    if (!Native) Swap_All(words, 5);
    const SectionHeader section{words[0], words[1], words[2], words[3], words[4]};
    if (!Sections_Are_Apart(section)) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - A section's streams overlap in %s\n", File_Name());
        Fail();
        return false;
    }
    const int64_t base = SectionEnd + static_cast<int64_t>(sizeof(words));
    DataStream.FilePosition = base + section.DataOffset;
    DataStream.Remaining = section.DataSize;
    ChunkStream.FilePosition = base + section.ChunkOffset;
    ChunkStream.Remaining = section.ChunkSize;
    SectionEnd = ChunkStream.FilePosition + section.ChunkSize;
    return true;
}

} // namespace ChunkFile
