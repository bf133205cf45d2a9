#pragma once

/// The typed reads and writes of the chunk file, by the type of the value. For the sources of this room.

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"

#include <cstdint>

namespace ParameterValues
{

/// Entries of a list to make room for before any is read. A chunk's size is what the file says of it, and a damaged one
/// may say anything.
constexpr uint32_t MAX_UNREAD_ENTRIES = 256;

inline bool Read(ChunkFileReaderClass &reader, bool &value)
{
    return reader.Read_Bool(value);
}
inline bool Read(ChunkFileReaderClass &reader, int32_t &value)
{
    return reader.Read_Int32(value);
}
inline bool Read(ChunkFileReaderClass &reader, uint32_t &value)
{
    return reader.Read_UInt32(value);
}
inline bool Read(ChunkFileReaderClass &reader, float &value)
{
    return reader.Read_Float(value);
}
inline bool Read(ChunkFileReaderClass &reader, Vector3 &value)
{
    return reader.Read_Vector3(value);
}
inline bool Read(ChunkFileReaderClass &reader, Vector4 &value)
{
    return reader.Read_Vector4(value);
}
inline bool Read(ChunkFileReaderClass &reader, RGBAClass &value)
{
    return reader.Read_RGBA(value);
}

inline bool Write(ChunkFileWriterClass &writer, bool value)
{
    return writer.Write_Bool(value);
}
inline bool Write(ChunkFileWriterClass &writer, int32_t value)
{
    return writer.Write_Int32(value);
}
inline bool Write(ChunkFileWriterClass &writer, uint32_t value)
{
    return writer.Write_UInt32(value);
}
inline bool Write(ChunkFileWriterClass &writer, float value)
{
    return writer.Write_Float(value);
}
inline bool Write(ChunkFileWriterClass &writer, const Vector3 &value)
{
    return writer.Write_Vector3(value);
}
inline bool Write(ChunkFileWriterClass &writer, const Vector4 &value)
{
    return writer.Write_Vector4(value);
}
inline bool Write(ChunkFileWriterClass &writer, const RGBAClass &value)
{
    return writer.Write_RGBA(value);
}

/// Whether the current chunk can be walked for sub-chunks: it holds some, or it is empty. A leaf with a payload can't.
inline bool Is_Walkable(const ChunkFileReaderClass &reader)
{
    return reader.Contains_Chunks() || reader.Cur_Chunk_Length() == 0;
}

} // namespace ParameterValues
