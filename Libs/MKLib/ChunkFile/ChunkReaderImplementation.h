#pragma once

#include "MKLib/ChunkFile/ByteOrder.h"
#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/StreamBuffers.h"

#include <algorithm>
#include <cstring>
#include <vector>

class XMLDatabase;

namespace ChunkFile
{

/// One of the file's streams. What is decoded and not yet taken stands at `Window`.
struct InputStream
{
    std::unique_ptr<InflateBuffers> Buffers;
    const uint8_t *Window = nullptr;
    uint32_t Available = 0;   ///< bytes at Window
    int64_t FilePosition = 0; ///< of the next bytes to read from the file
    uint32_t Remaining = 0;   ///< bytes of the stream that are not read from the file yet
    uint64_t Compressed = 0;  ///< bytes that zlib was given so far
    uint64_t Inflated = 0;    ///< bytes that zlib made of them
    bool HasEnded = false;    ///< zlib's stream told its end

    void Advance(uint32_t size)
    {
        Window += size;
        Available -= size;
    }
};

/// A stream that grows beyond both limits is a bomb: whoever keeps what it reads would need memory without bound. Real
/// files shrink to a tenth; the most repetitive ones to a fortieth.
constexpr uint64_t BOMB_BYTES = 64u << 20;
constexpr uint64_t BOMB_RATIO = 64;

/// State of a reader. A leaf is read in its scope: the open microchunk, or the whole of the leaf. Once the file turns
/// out to be inconsistent, `Fail` empties every scope and stream, so that each later operation ends at once.
struct ChunkFileReaderClass::Implementation
{
    explicit Implementation(FileClass *file) : File(file) {}

    // ChunkFileReader.cpp
    bool Initialize();
    bool Read_Header();
    bool Read_Binary_Header(uint32_t size);
    bool Set_Up_Streams(uint32_t size);
    bool Start_Inflate(InputStream &stream, const char *name, const char *assertText);
    bool Read_Chunk_Header(ChunkHeader &header);
    bool Open_Next_Chunk();
    bool Close_Top_Chunk();
    void Report_Inconsistent();
    bool Close_Read_Chunk();
    void Skip_Leaves_In_Window();
    bool Skip_Tree(uint32_t depth);

    // ChunkReaderStream.cpp
    uint32_t Read_File(int64_t position, void *buffer, uint32_t size);
    bool Refill(InputStream &stream);
    bool Refill_Plain(InputStream &stream);
    bool Refill_Input(InputStream &stream);
    bool Inflate(InputStream &stream);
    bool Take(InputStream &stream, void *buffer, uint32_t size, uint32_t &taken);
    void Drain(InputStream &stream);
    bool Next_Section();
    bool Sections_Are_Apart(const SectionHeader &section) const;
    void Fail();
    void Report_End();

    // ChunkReaderXML.cpp
    bool Read_XML_Header(uint32_t size);
    bool Read_User_Data(XMLDatabase &database);
    bool Report_XML_Error(const char *assertText);

    // ChunkReaderValues.cpp
    bool Check_Type(uint8_t tag);
    bool Read_Payload_Slowly(void *buffer, uint32_t size, uint32_t &read);
    bool Read_Fixed_Slowly(uint8_t tag, void *buffer, uint32_t size);
    bool Read_String_Length(uint32_t &length, char (&head)[2], uint32_t &headSize);
    template <typename Text>
    bool Read_Text(Text &value);
    bool Read_Growing(std::vector<uint8_t> &bytes, uint32_t size);

    // ChunkCopy.cpp
    bool Copy_Tree(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);
    bool Copy_Typed_Leaf(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);
    bool Copy_Next(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);
    bool Copy_Raw(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);
    bool Copy_Untyped_Leaf(ChunkFileWriterClass &writer);

    const char *File_Name() const { return File ? File->Get_Name().c_str() : ""; }
    bool Is_Native() const { return (Header.Mode & MODE_SWAPPED) == 0; }
    bool Is_Sectioned() const { return (Header.Mode & MODE_SECTIONED) != 0; }
    bool Is_Validated() const { return (Header.Mode & MODE_VALIDATED) != 0; }

    uint32_t Scope_Left() const { return InMicroChunk ? MicroLeft : LeafLeft; }

    void Consume(uint32_t size)
    {
        LeafLeft -= size;
        if (InMicroChunk) MicroLeft -= size;
    }

    /// Payload bytes of the scope; a null `buffer` skips. All of them or a failure.
    bool Read_Payload(void *buffer, uint32_t size)
    {
        if (size > Scope_Left()) return false;
        if (size > DataStream.Available) {
            uint32_t read = 0;
            return Read_Payload_Slowly(buffer, size, read);
        }
        if (buffer && size > 0) std::memcpy(buffer, DataStream.Window, size);
        DataStream.Advance(size);
        Consume(size);
        return true;
    }

    /// A value of fixed size, with its tag in a validated file, in one step when it stands whole in the window.
    bool Read_Fixed(uint8_t tag, void *buffer, uint32_t size)
    {
        const uint32_t tagSize = ChecksTypes ? 1 : 0;
        const uint32_t total = size + tagSize;
        if (total > DataStream.Available || total > Scope_Left() || (ChecksTypes && *DataStream.Window != tag))
            return Read_Fixed_Slowly(tag, buffer, size);
        std::memcpy(buffer, DataStream.Window + tagSize, size);
        DataStream.Advance(total);
        Consume(total);
        return true;
    }

    template <typename T, size_t COUNT>
    bool Read_Numbers(uint8_t tag, T (&values)[COUNT])
    {
        T read[COUNT];
        if (!Read_Fixed(tag, read, sizeof(read))) return false;
        if (!Native) Swap_All(read, COUNT);
        std::copy(read, read + COUNT, values);
        return true;
    }

    template <typename T>
    bool Read_Number(uint8_t tag, T &value)
    {
        T read[1];
        if (!Read_Numbers(tag, read)) return false;
        value = read[0];
        return true;
    }

    FileClass *File;
    ChunkFileHeader Header;
    bool Initialized = false;
    bool InMicroChunk = false;
    bool Native = true;
    bool ChecksTypes = false; ///< validated, and not in a raw copy
    bool IsXML = false;
    bool Damaged = false;
    bool HasFailed = false;
    bool ToldInconsistent = false;
    uint32_t CompressionMode = COMPRESSION_NONE;

    InputStream DataStream;
    InputStream ChunkStream; ///< of a sectioned file
    int64_t HeaderStart = 0;
    int64_t SectionEnd = 0;             ///< where the next section's header stands
    int64_t KnownFilePosition = -1;     ///< spares a seek where the file stands right already
    std::vector<uint8_t> XMLDataBuffer; ///< the stream that an XML file stands for

    uint32_t StackIndex = 0;
    ChunkHeader Stack[MAX_CHUNK_DEPTH];
    uint32_t ClosedCounts[MAX_CHUNK_DEPTH]; ///< sub-chunks closed, of each chunk on the stack
    uint32_t LeafLeft = 0;                  ///< of the top chunk, when it is a leaf
    uint32_t MicroLeft = 0;
    uint8_t MicroId = 0;
    uint8_t MicroLength = 0;
};

} // namespace ChunkFile
