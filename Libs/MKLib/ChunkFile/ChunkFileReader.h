#pragma once

#include "MKLib/ChunkFile/ChunkTypes.h"
#include "MKLib/File/File.h"
#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/NameTable.h"

#include <memory>
#include <string>

namespace ChunkFile
{

class ChunkFileWriterClass;

/// Walks a chunk file of any form, once, from front to back. A file that is no chunk file leaves the reader
/// un-initialised, and it then reads as an empty one: `Open_Chunk` returns false. A typed read that fails leaves `value`
/// as it was and returns false. Memory is bounded by fixed buffers and, for XML, by the text's size. One thread at a time.
class ChunkFileReaderClass
{
public:
    /// Opens `file` for reading when it isn't open; the file stays the caller's and must outlive the reader.
    explicit ChunkFileReaderClass(FileClass *file);
    ChunkFileReaderClass(const ChunkFileReaderClass &) = delete;
    ChunkFileReaderClass &operator=(const ChunkFileReaderClass &) = delete;
    ~ChunkFileReaderClass();

    bool Is_Initialized() const;
    bool Is_Validated() const;
    const ChunkFileHeader &Get_Header() const;
    const MK::String &Get_File_Name() const; ///< of the file object
    uint32_t Get_User_Int32(uint32_t index) const;
    /// True once the file turned out to be damaged: a chunk past its parent, a stream error, a short file.
    bool Is_Damaged() const;

    /// The next chunk of the current level; false at the level's end.
    bool Open_Chunk();
    /// Skips what is left of the chunk. False when the file is inconsistent.
    bool Close_Chunk();
    uint32_t Cur_Chunk_ID() const;
    uint32_t Cur_Chunk_Length() const; ///< a leaf's bytes, or the number of sub-chunks
    bool Contains_Chunks() const;
    int Cur_Chunk_Depth() const; ///< 0 outside of every chunk
    /// Bytes of the current leaf that are not read yet; 0 for a chunk with sub-chunks.
    uint32_t Cur_Chunk_Remaining() const;

    bool Open_Micro_Chunk();
    bool Close_Micro_Chunk();
    uint32_t Cur_Micro_Chunk_ID() const;
    uint32_t Cur_Micro_Chunk_Length() const;

    bool Read_Int8(int8_t &value);
    bool Read_UInt8(uint8_t &value);
    bool Read_Int16(int16_t &value);
    bool Read_UInt16(uint16_t &value);
    bool Read_Int32(int32_t &value);
    bool Read_UInt32(uint32_t &value);
    bool Read_Int64(int64_t &value);
    bool Read_UInt64(uint64_t &value);
    bool Read_Float(float &value);
    bool Read_String(MK::String &value);
    bool Read_String(NameTableRef &value);
    /// Fills `buffer` of `size` characters with at most `size` - 1 and a terminator; a longer text asserts.
    bool Read_String(char *buffer, uint32_t size);
    bool Read_Wstring(std::u16string &value);
    bool Read_Bool(bool &value);
    bool Read_Vector2(Vector2 &value);
    bool Read_Vector3(Vector3 &value);
    bool Read_Vector4(Vector4 &value);
    bool Read_Quaternion(QuaternionClass &value);
    bool Read_RGBA(RGBAClass &value);
    bool Read_Bit_Stream(std::vector<uint8_t> &bits, uint32_t &bitCount, uint32_t &secondWord);
    bool Read_Pointer(uint32_t &value);
    bool Read_Matrix3D(Mat3DClass &value);
    bool Read_Vector2i(Vector2i &value);
    bool Read_Vector3i(Vector3i &value);
    bool Read_Vector4i(Vector4i &value);
    bool Read_Flags(uint8_t &value);
    bool Read_Facing(Vector3 &value);
    bool Read_Time(uint64_t &value);
    bool Read_Matrix3(float value[9]);
    bool Read_Raw_Bytes(void *buffer, uint32_t size, int *read = nullptr);

    /// Payload bytes with no tag; a null `buffer` skips.
    bool Read_Bytes(void *buffer, uint32_t size, uint32_t *read = nullptr);

    bool Close();

private:
    friend bool Copy(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);

    struct Implementation;
    std::unique_ptr<Implementation> Impl;
};

/// Re-emits the content of the reader's current chunk into the writer's. A validated writer needs a validated reader.
bool Copy(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader);

} // namespace ChunkFile

using ChunkFile::ChunkFileReaderClass;
