#include "MKLib/ChunkFile/ChunkReaderImplementation.h"

#include "MKLib/ChunkFile/ChunkLog.h"

/// The reader's typed values.
namespace ChunkFile
{

namespace
{

constexpr uint32_t GROWTH_STEP = 65536;

} // namespace

bool ChunkFileReaderClass::Implementation::Read_Payload_Slowly(void *buffer, uint32_t size, uint32_t &read)
{
    read = 0;
    if (size > Scope_Left()) return false;
    const bool isWhole = Take(DataStream, buffer, size, read);
    if (isWhole)
        Consume(size);
    else
        Report_End();
    return isWhole;
}

bool ChunkFileReaderClass::Implementation::Check_Type(uint8_t tag)
{
    if (!ChecksTypes) return true;
    uint8_t found = 0;
    return Read_Payload(&found, 1) && MK_VERIFY(found == tag, "type != val");
}

bool ChunkFileReaderClass::Implementation::Read_Fixed_Slowly(uint8_t tag, void *buffer, uint32_t size)
{
    return Check_Type(tag) && Read_Payload(buffer, size);
}

/// Strings of old files have no length in front. Two bytes that can't be a length are the string's first two, `head`.
bool ChunkFileReaderClass::Implementation::Read_String_Length(uint32_t &length, char (&head)[2], uint32_t &headSize)
{
    headSize = 0;
    if (HasFailed) return false;
    if (InMicroChunk && MicroLeft < 2) {
        length = 0;
        return true;
    }
    if (LeafLeft < 2) {
        length = LeafLeft;
        return true;
    }
    if (!Read_Payload(head, 2)) return false;
    uint16_t prefix = 0;
    std::memcpy(&prefix, head, sizeof(prefix));
    length = Native ? prefix : Swap_Bytes(prefix);
    if (length > Stack[StackIndex - 1].Get_Size()) {
        headSize = 2;
        length = Scope_Left();
    }
    return true;
}

template <typename Text>
bool ChunkFileReaderClass::Implementation::Read_Text(Text &value)
{
    char head[2];
    uint32_t headSize = 0;
    uint32_t length = 0;
    if (StackIndex == 0 || Stack[StackIndex - 1].Contains_Chunks()) return false;
    if (!Check_Type(TYPE_STRING) || !Read_String_Length(length, head, headSize)) return false;
    if (length > Scope_Left()) return false;
    Text text(head, headSize); // 64 KiB at most, since a length has 16 bits
    text.resize(headSize + length);
    if (!Read_Payload(text.data() + headSize, length)) return false;
    value = std::move(text);
    return true;
}

/// Grows with what is there, so that a length that lies allocates little.
bool ChunkFileReaderClass::Implementation::Read_Growing(std::vector<uint8_t> &bytes, uint32_t size)
{
    bytes.clear();
    if (size > Scope_Left()) return false;
    while (bytes.size() < size) {
        const size_t start = bytes.size();
        const size_t step = std::min<size_t>(size - start, std::max<size_t>(GROWTH_STEP, start));
        bytes.resize(start + step);
        if (!Read_Payload(bytes.data() + start, static_cast<uint32_t>(step))) return false;
    }
    return true;
}

bool ChunkFileReaderClass::Read_Int8(int8_t &value)
{
    return Impl->Read_Number(TYPE_INT8, value);
}

bool ChunkFileReaderClass::Read_UInt8(uint8_t &value)
{
    return Impl->Read_Number(TYPE_INT8, value);
}

bool ChunkFileReaderClass::Read_Int16(int16_t &value)
{
    return Impl->Read_Number(TYPE_INT16, value);
}

bool ChunkFileReaderClass::Read_UInt16(uint16_t &value)
{
    return Impl->Read_Number(TYPE_INT16, value);
}

bool ChunkFileReaderClass::Read_Int32(int32_t &value)
{
    return Impl->Read_Number(TYPE_INT32, value);
}

bool ChunkFileReaderClass::Read_UInt32(uint32_t &value)
{
    return Impl->Read_Number(TYPE_INT32, value);
}

bool ChunkFileReaderClass::Read_Int64(int64_t &value)
{
    return Impl->Read_Number(TYPE_INT64, value);
}

bool ChunkFileReaderClass::Read_UInt64(uint64_t &value)
{
    return Impl->Read_Number(TYPE_INT64, value);
}

bool ChunkFileReaderClass::Read_Float(float &value)
{
    return Impl->Read_Number(TYPE_FLOAT, value);
}

bool ChunkFileReaderClass::Read_String(MK::String &value)
{
    return Impl->Read_Text(value);
}

bool ChunkFileReaderClass::Read_String(NameTableRef &value)
{
    MK::String text;
    if (!Impl->Read_Text(text)) return false;
    value = NameTableRef(text);
    return true;
}

bool ChunkFileReaderClass::Read_String(char *buffer, uint32_t size)
{
    MK::String text;
    if (!MK_VERIFY(buffer, "buffer") || size == 0 || !Impl->Read_Text(text)) return false;
    MK_ASSERT(text.size() < size, "len < buf_size");
    const size_t kept = std::min<size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), kept);
    buffer[kept] = '\0';
    return true;
}

bool ChunkFileReaderClass::Read_Wstring(std::u16string &value)
{
    uint16_t length = 0;
    if (!Impl->Read_Number(TYPE_WSTRING, length)) return false;
    const uint32_t size = length * uint32_t{sizeof(char16_t)};
    if (size > Impl->Scope_Left()) return false;
    std::u16string text(length, u'\0');
    if (!Impl->Read_Payload(text.data(), size)) return false;
    if (!Impl->Native) Swap_All(text.data(), text.size());
    value = std::move(text);
    return true;
}

bool ChunkFileReaderClass::Read_Bool(bool &value)
{
    uint8_t read = 0;
    if (!Impl->Read_Number(TYPE_BOOL, read)) return false;
    value = read != 0;
    return true;
}

bool ChunkFileReaderClass::Read_Vector2(Vector2 &value)
{
    float read[2];
    if (!Impl->Read_Numbers(TYPE_VECTOR2, read)) return false;
    value = {read[0], read[1]};
    return true;
}

bool ChunkFileReaderClass::Read_Vector3(Vector3 &value)
{
    float read[3];
    if (!Impl->Read_Numbers(TYPE_VECTOR3, read)) return false;
    value = {read[0], read[1], read[2]};
    return true;
}

bool ChunkFileReaderClass::Read_Vector4(Vector4 &value)
{
    float read[4];
    if (!Impl->Read_Numbers(TYPE_VECTOR4, read)) return false;
    value = {read[0], read[1], read[2], read[3]};
    return true;
}

bool ChunkFileReaderClass::Read_Quaternion(QuaternionClass &value)
{
    float read[4];
    if (!Impl->Read_Numbers(TYPE_QUATERNION, read)) return false;
    value.x = read[0];
    value.y = read[1];
    value.z = read[2];
    value.w = read[3];
    return true;
}

bool ChunkFileReaderClass::Read_RGBA(RGBAClass &value)
{
    float read[4];
    if (!Impl->Read_Numbers(TYPE_RGBA, read)) return false;
    value = {read[0], read[1], read[2], read[3]};
    return true;
}

bool ChunkFileReaderClass::Read_Bit_Stream(std::vector<uint8_t> &bits, uint32_t &bitCount, uint32_t &secondWord)
{
    // The XML form keeps the number of bytes only.
    uint32_t words[2] = {0, 0};
    if (Impl->IsXML ? !Impl->Read_Number(TYPE_BIT_STREAM, words[0]) : !Impl->Read_Numbers(TYPE_BIT_STREAM, words))
        return false;
    const uint64_t size = Impl->IsXML ? words[0] : (uint64_t{words[0]} + 7) / 8;
    std::vector<uint8_t> read;
    if (size > Impl->Scope_Left() || !Impl->Read_Growing(read, static_cast<uint32_t>(size))) return false;
    bits = std::move(read);
    bitCount = Impl->IsXML ? words[0] * 8 : words[0];
    secondWord = words[1];
    return true;
}

bool ChunkFileReaderClass::Read_Pointer(uint32_t &value)
{
    return Impl->Read_Number(TYPE_POINTER, value);
}

bool ChunkFileReaderClass::Read_Matrix3D(Mat3DClass &value)
{
    float read[12];
    if (!Impl->Read_Numbers(TYPE_MATRIX3D, read)) return false;
    for (int row = 0; row < 3; ++row)
        value.Row[row] = {read[row * 4], read[row * 4 + 1], read[row * 4 + 2], read[row * 4 + 3]};
    return true;
}

bool ChunkFileReaderClass::Read_Vector2i(Vector2i &value)
{
    int32_t read[2];
    if (!Impl->Read_Numbers(TYPE_VECTOR2I, read)) return false;
    value = {read[0], read[1]};
    return true;
}

bool ChunkFileReaderClass::Read_Vector3i(Vector3i &value)
{
    int32_t read[3];
    if (!Impl->Read_Numbers(TYPE_VECTOR3I, read)) return false;
    value = {read[0], read[1], read[2]};
    return true;
}

bool ChunkFileReaderClass::Read_Vector4i(Vector4i &value)
{
    int32_t read[4];
    if (!Impl->Read_Numbers(TYPE_VECTOR4I, read)) return false;
    value = {read[0], read[1], read[2], read[3]};
    return true;
}

bool ChunkFileReaderClass::Read_Flags(uint8_t &value)
{
    uint8_t read = 0;
    if (!Impl->Read_Number(TYPE_FLAGS, read)) return false;
    value = Impl->Native ? read : Reverse_Bits(read);
    return true;
}

bool ChunkFileReaderClass::Read_Facing(Vector3 &value)
{
    float read[3];
    if (!Impl->Read_Numbers(TYPE_FACING, read)) return false;
    value = {read[0], read[1], read[2]};
    return true;
}

bool ChunkFileReaderClass::Read_Time(uint64_t &value)
{
    return Impl->Read_Number(TYPE_TIME, value);
}

bool ChunkFileReaderClass::Read_Matrix3(float value[9])
{
    float read[9];
    if (!Impl->Read_Numbers(TYPE_MATRIX3, read)) return false;
    std::copy(read, read + 9, value);
    return true;
}

bool ChunkFileReaderClass::Read_Raw_Bytes(void *buffer, uint32_t size, int *read)
{
    if (read) *read = 0;
    if (!MK_VERIFY(buffer, "buffer")) return false;
    uint32_t stored = size;
    if (Impl->Is_Validated() && !Impl->Read_Number(TYPE_RAW, stored)) return false;
    if (!MK_VERIFY(size <= stored, "size > raw_size")) {
        MK_LOG(ChunkFileTextLog, LogLevel::Error,
               "Invalid Read_Raw_Bytes from %s, tried to read %d, only %d available\n", Impl->File_Name(),
               static_cast<int>(size), static_cast<int>(stored));
        return false;
    }
    if (!Impl->Read_Payload(buffer, size)) return false;
    if (read) *read = static_cast<int>(size);
    return stored == size || Impl->Read_Payload(nullptr, stored - size);
}

bool ChunkFileReaderClass::Read_Bytes(void *buffer, uint32_t size, uint32_t *read)
{
    uint32_t taken = 0;
    bool isWhole = false;
    if (size <= Impl->DataStream.Available) {
        isWhole = Impl->Read_Payload(buffer, size);
        taken = isWhole ? size : 0;
    } else {
        isWhole = Impl->Read_Payload_Slowly(buffer, size, taken);
    }
    if (read) *read = taken;
    return isWhole;
}

} // namespace ChunkFile
