#include "MKLib/ChunkFile/ChunkFileWriter.h"

#include "MKLib/ChunkFile/ChunkLog.h"
#include "MKLib/ChunkFile/ChunkReaderImplementation.h"

namespace ChunkFile
{

namespace
{

using Reader = ChunkFileReaderClass;
using Writer = ChunkFileWriterClass;

template <typename Read, typename Written>
bool Pass(Writer &writer, Reader &reader, bool (Reader::*read)(Read &), bool (Writer::*write)(Written))
{
    Read value{};
    return (reader.*read)(value) && (writer.*write)(value);
}

bool Pass_String(Writer &writer, Reader &reader)
{
    MK::String text;
    return reader.Read_String(text) && writer.Write_String(text);
}

bool Pass_Bit_Stream(Writer &writer, Reader &reader)
{
    std::vector<uint8_t> bits;
    uint32_t bitCount = 0;
    uint32_t secondWord = 0;
    return reader.Read_Bit_Stream(bits, bitCount, secondWord) &&
           writer.Write_Bit_Stream(bits.data(), bitCount, secondWord);
}

bool Pass_Matrix3(Writer &writer, Reader &reader)
{
    float values[9];
    return reader.Read_Matrix3(values) && writer.Write_Matrix3(values);
}

/// One value, whose tag has been read.
bool Pass_Value(Writer &writer, Reader &reader, uint8_t tag)
{
    switch (tag) {
    case TYPE_INT8: return Pass(writer, reader, &Reader::Read_Int8, &Writer::Write_Int8);
    case TYPE_INT16: return Pass(writer, reader, &Reader::Read_Int16, &Writer::Write_Int16);
    case TYPE_INT32: return Pass(writer, reader, &Reader::Read_Int32, &Writer::Write_Int32);
    case TYPE_INT64: return Pass(writer, reader, &Reader::Read_Int64, &Writer::Write_Int64);
    case TYPE_FLOAT: return Pass(writer, reader, &Reader::Read_Float, &Writer::Write_Float);
    case TYPE_STRING: return Pass_String(writer, reader);
    case TYPE_WSTRING: return Pass(writer, reader, &Reader::Read_Wstring, &Writer::Write_Wstring);
    case TYPE_BOOL: return Pass(writer, reader, &Reader::Read_Bool, &Writer::Write_Bool);
    case TYPE_VECTOR2: return Pass(writer, reader, &Reader::Read_Vector2, &Writer::Write_Vector2);
    case TYPE_VECTOR3: return Pass(writer, reader, &Reader::Read_Vector3, &Writer::Write_Vector3);
    case TYPE_VECTOR4: return Pass(writer, reader, &Reader::Read_Vector4, &Writer::Write_Vector4);
    case TYPE_QUATERNION: return Pass(writer, reader, &Reader::Read_Quaternion, &Writer::Write_Quaternion);
    case TYPE_RGBA: return Pass(writer, reader, &Reader::Read_RGBA, &Writer::Write_RGBA);
    case TYPE_BIT_STREAM: return Pass_Bit_Stream(writer, reader);
    case TYPE_POINTER: return Pass(writer, reader, &Reader::Read_Pointer, &Writer::Write_Pointer);
    case TYPE_MATRIX3D: return Pass(writer, reader, &Reader::Read_Matrix3D, &Writer::Write_Matrix3D);
    case TYPE_VECTOR2I: return Pass(writer, reader, &Reader::Read_Vector2i, &Writer::Write_Vector2i);
    case TYPE_VECTOR3I: return Pass(writer, reader, &Reader::Read_Vector3i, &Writer::Write_Vector3i);
    case TYPE_VECTOR4I: return Pass(writer, reader, &Reader::Read_Vector4i, &Writer::Write_Vector4i);
    case TYPE_FLAGS: return Pass(writer, reader, &Reader::Read_Flags, &Writer::Write_Flags);
    case TYPE_FACING: return Pass(writer, reader, &Reader::Read_Facing, &Writer::Write_Facing);
    case TYPE_TIME: return Pass(writer, reader, &Reader::Read_Time, &Writer::Write_Time);
    case TYPE_MATRIX3: return Pass_Matrix3(writer, reader);
    default:
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFile - Copy met the unknown type %u in %s\n", tag,
               reader.Get_File_Name().c_str());
        return false;
    }
}

} // namespace

bool ChunkFileReaderClass::Implementation::Copy_Typed_Leaf(Writer &writer, Reader &reader)
{
    ChecksTypes = false; // the tags are read here
    bool copied = true;
    while (copied && LeafLeft > 0) copied = Copy_Next(writer, reader);
    if (InMicroChunk) {
        copied = reader.Close_Micro_Chunk() && copied;
        copied = writer.Close_Micro_Chunk() && copied;
    }
    ChecksTypes = true;
    return copied && !HasFailed;
}

bool ChunkFileReaderClass::Implementation::Copy_Next(Writer &writer, Reader &reader)
{
    if (InMicroChunk && MicroLeft == 0) {
        const bool closed = reader.Close_Micro_Chunk();
        return writer.Close_Micro_Chunk() && closed;
    }
    uint8_t tag = 0;
    if (!Read_Payload(&tag, 1)) return false;
    if (tag == TYPE_RAW) return Copy_Raw(writer, reader);
    if (tag != TYPE_MICROCHUNK) return Pass_Value(writer, reader, tag);
    if (!reader.Open_Micro_Chunk()) return false;
    if (writer.Open_Micro_Chunk(MicroId)) return true;
    reader.Close_Micro_Chunk();
    return false;
}

bool ChunkFileReaderClass::Implementation::Copy_Raw(Writer &writer, Reader &reader)
{
    uint32_t size = 0;
    std::vector<uint8_t> bytes;
    return reader.Read_UInt32(size) && Read_Growing(bytes, size) && writer.Write_Raw_Bytes(bytes.data(), size);
}

bool ChunkFileReaderClass::Implementation::Copy_Untyped_Leaf(Writer &writer)
{
    const uint32_t size = LeafLeft;
    std::vector<uint8_t> bytes;
    return size == 0 || (Read_Growing(bytes, size) && writer.Write_Raw_Bytes(bytes.data(), size));
}

bool ChunkFileReaderClass::Implementation::Copy_Tree(Writer &writer, Reader &reader)
{
    if (StackIndex > 0 && !reader.Contains_Chunks())
        return Is_Validated() ? Copy_Typed_Leaf(writer, reader) : Copy_Untyped_Leaf(writer);
    bool copied = true;
    while (reader.Open_Chunk()) {
        if (writer.Open_Chunk(reader.Cur_Chunk_ID())) {
            copied = Copy_Tree(writer, reader) && copied;
            copied = writer.Close_Chunk() && copied;
        } else {
            copied = false;
        }
        copied = reader.Close_Chunk() && copied;
    }
    return copied && !Damaged;
}

bool Copy(ChunkFileWriterClass &writer, ChunkFileReaderClass &reader)
{
    if (!MK_VERIFY(reader.Is_Validated() || !writer.Is_Validated(),
                   "!reader->Is_Validated() && writer->Is_Validated()"))
        return false;
    if (!reader.Is_Validated() && writer.Is_Swapped() == reader.Impl->Native)
        MK_LOG(ChunkFileLog, LogLevel::Warning, "ChunkFile - Copy keeps the byte order of the untyped values of %s\n",
               reader.Get_File_Name().c_str());
    return reader.Impl->Copy_Tree(writer, reader);
}

} // namespace ChunkFile
