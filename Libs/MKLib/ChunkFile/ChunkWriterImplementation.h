#pragma once

#include "MKLib/ChunkFile/ByteOrder.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/ChunkFile/ChunkLayout.h"
#include "MKLib/ChunkFile/StreamBuffers.h"

#include <cstring>
#include <string>
#include <vector>

namespace ChunkFile
{

enum FinalizeType
{
    FINALIZE_NONE = 0,
    FINALIZE_FLUSH = 1,
    FINALIZE_FINISH = 2
};

/// State of a writer. Payload gathers in `DataStream`'s input buffer and goes on from there in blocks: to
/// `DeferedDataBuffer` while writing is deferred, else through zlib to the file.
struct ChunkFileWriterClass::Implementation
{
    Implementation(FileClass *file, uint32_t mode, uint32_t level, bool deferred);

    // ChunkFileWriter.cpp
    bool Initialize(uint32_t level);
    bool Start_Streams(int level);
    bool Write_File_Header();
    bool Write_Section_Header(bool withCRC);
    bool Open_Chunk(const char *name, uint32_t id);
    bool Close_Chunk();
    uint32_t Add_Chunk(uint32_t id);
    bool End_Section();
    bool Open_Micro_Chunk(const char *name, uint32_t id);
    bool Close_Micro_Chunk();
    bool Close();
    bool Close_Open_Chunks();
    bool Close_XML();
    bool Close_Binary();
    bool Close_Streams();
    bool Replay();

    // ChunkWriterStream.cpp
    bool Append_Data(const void *data, uint32_t size);
    bool Flush_To_File(DeflateBuffers &stream, const uint8_t *data, uint32_t size, FinalizeType finalize,
                       uint32_t &counter);
    bool Deflate_To_File(DeflateBuffers &stream, const uint8_t *data, uint32_t size, FinalizeType finalize,
                         uint32_t &counter);
    bool Write_Out_Buffer(DeflateBuffers &stream, uint32_t &counter);
    bool Write_To_File(const void *data, uint32_t size);
    bool Write_Stream_Bytes(const uint8_t *data, uint32_t size, uint32_t &counter);
    bool Flush_Data(FinalizeType finalize);
    bool Flush_Chunk_Table(FinalizeType finalize);
    bool Admit_Slowly(uint64_t size);

    // ChunkWriterValues.cpp
    bool Write_Value(uint8_t tag, const void *fixed, uint32_t fixedSize, const void *data = nullptr,
                     uint32_t dataSize = 0);
    bool Write_XML_Value(uint8_t tag, std::string_view text, uint64_t payloadSize);
    template <typename T, size_t COUNT>
    bool Write_Numbers(uint8_t tag, const T (&values)[COUNT]);
    template <typename T>
    bool Write_Number(uint8_t tag, T value);
    bool Write_Raw(const void *data, uint32_t size);
    void Indent();
    void Open_XML_Element(const char *element, const char *name, uint32_t id);
    void Close_XML_Element(const char *element);

    const char *File_Name() const { return File ? File->Get_Name().c_str() : ""; }
    bool Is_XML() const { return CompressionMode == COMPRESSION_XML; }
    bool Is_Zlib() const { return CompressionMode == COMPRESSION_ZLIB; }
    bool Is_Validated() const { return (Header.Mode & MODE_VALIDATED) != 0; }

    /// Whether `size` bytes may go where the writer stands.
    bool Admit_Payload(uint64_t size)
    {
        return (InMicroChunk && MicroSize + size <= MICRO_CHUNK_LIMIT) || Admit_Slowly(size);
    }

    /// Bytes that `Admit_Payload` let pass.
    bool Append_Payload(const void *data, uint32_t size)
    {
        if (InMicroChunk) {
            if (size > 0) std::memcpy(MicroData + MicroSize, data, size);
            MicroSize += size;
            return true;
        }
        InChunkBuffer[Stack[StackIndex - 1]].SizeWord += size;
        return Append_Data(data, size);
    }

    template <typename T>
    T Stored(T value) const
    {
        return Native ? value : Swap_Bytes(value);
    }

    FileClass *File;
    ChunkFileHeader Header;
    SectionHeader CurrentSectionHeader;
    int64_t HeaderStart = 0;
    int64_t SectionHeaderPosition = 0;
    bool Initialized = false;
    bool InMicroChunk = false;
    bool Native = true;
    bool IsSectioned = false; ///< a binary form with a chunk stream of its own
    bool DeferedWrite = false;
    bool HasFailed = false; ///< bytes did not reach the file
    uint32_t CompressionMode = COMPRESSION_NONE;

    RAMFileClass DeferedDataBuffer;
    std::unique_ptr<DeflateBuffers> DataStream;
    std::unique_ptr<DeflateBuffers> ChunkStream; ///< of a sectioned file
    uint32_t InDataCount = 0;                    ///< bytes in DataStream->In

    uint32_t StackIndex = 0;
    uint32_t Stack[MAX_CHUNK_DEPTH]; ///< indices into InChunkBuffer
    std::vector<ChunkHeader> InChunkBuffer;

    uint8_t MicroId = 0;
    uint32_t MicroSize = 0;
    uint8_t MicroData[MICRO_CHUNK_LIMIT];

    uint32_t XMLDepth = 0;
    std::string XMLText;
};

} // namespace ChunkFile
