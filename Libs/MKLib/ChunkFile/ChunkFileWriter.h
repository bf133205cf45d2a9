#pragma once

#include "MKLib/ChunkFile/ChunkTypes.h"
#include "MKLib/File/RAMFile.h"
#include "MKLib/MKMath/Mat3D.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ChunkFile
{

/// Writes a chunk file through any file object. Unless sectioned, the tree stays in memory until `Close`: until then only
/// the header has reached the file. Each operation returns whether every write of it went well. One thread at a time.
class ChunkFileWriterClass
{
public:
    /// `mode` holds ModeType bits, below 256; `level` is zlib's compression level; `deferred` is forced on unless
    /// sectioned. Opens `file` for writing when it isn't open; the file stays the caller's and must outlive the writer.
    ChunkFileWriterClass(FileClass *file, uint32_t mode, uint32_t level, bool deferred);
    ChunkFileWriterClass(const ChunkFileWriterClass &) = delete;
    ChunkFileWriterClass &operator=(const ChunkFileWriterClass &) = delete;
    ~ChunkFileWriterClass(); ///< closes

    bool Is_Initialized() const;
    bool Is_Validated() const;
    bool Is_Swapped() const;

    /// `name` is the XML form's Name attribute; without one the id's decimal text stands there.
    bool Open_Chunk(const char *name, uint32_t id);
    bool Open_Chunk(uint32_t id);
    bool Close_Chunk();
    bool Open_Micro_Chunk(const char *name, uint32_t id);
    bool Open_Micro_Chunk(uint32_t id);
    bool Close_Micro_Chunk();

    bool Write_Int8(int8_t value);
    bool Write_UInt8(uint8_t value);
    bool Write_Int16(int16_t value);
    bool Write_UInt16(uint16_t value);
    bool Write_Int32(int32_t value);
    bool Write_UInt32(uint32_t value);
    bool Write_Int64(int64_t value);
    bool Write_UInt64(uint64_t value);
    bool Write_Float(float value);
    bool Write_String(std::string_view value);
    bool Write_Wstring(std::u16string_view value);
    bool Write_Bool(bool value);
    bool Write_Vector2(const Vector2 &value);
    bool Write_Vector3(const Vector3 &value);
    bool Write_Vector4(const Vector4 &value);
    bool Write_Quaternion(const QuaternionClass &value); ///< x, y, z, w
    bool Write_RGBA(const RGBAClass &value);
    bool Write_Bit_Stream(const uint8_t *bits, uint32_t bitCount, uint32_t secondWord);
    bool Write_Pointer(uint32_t value);
    bool Write_Matrix3D(const Mat3DClass &value);
    bool Write_Vector2i(const Vector2i &value);
    bool Write_Vector3i(const Vector3i &value);
    bool Write_Vector4i(const Vector4i &value);
    bool Write_Flags(uint8_t value);
    bool Write_Facing(const Vector3 &value);
    bool Write_Time(uint64_t value);
    bool Write_Matrix3(const float value[9]);
    bool Write_Raw_Bytes(const void *data, uint32_t size);

    /// Payload bytes with no tag.
    bool Write_Bytes(const void *data, uint32_t size, uint32_t *written = nullptr);

    /// Words of the header; `index` is 0 or 1. Binary forms write them when the writer is made, the XML form at `Close`.
    void Set_User_Int32(uint32_t index, uint32_t value);

    /// Finishes the file. False when anything of it failed to reach the file.
    bool Close();

private:
    struct Implementation;
    std::unique_ptr<Implementation> Impl;
};

} // namespace ChunkFile

using ChunkFile::ChunkFileWriterClass;
