#include "MKLib/ChunkFile/ChunkWriterImplementation.h"

#include "MKLib/ChunkFile/ChunkLog.h"
#include "MKLib/ChunkFile/ChunkXMLText.h"

/// The writer's typed values, and the lines of its XML form.
namespace ChunkFile
{

namespace
{

constexpr char LOWER_DIGITS[] = "0123456789abcdef";
constexpr char UPPER_DIGITS[] = "0123456789ABCDEF";

void Append_Number(std::string &out, float value)
{
    Append_Float(out, value);
}

template <typename T>
void Append_Number(std::string &out, T value)
{
    if constexpr (std::is_signed_v<T>)
        Append_Int(out, value);
    else
        Append_UInt(out, value);
}

} // namespace

void ChunkFileWriterClass::Implementation::Indent()
{
    XMLText.append(XMLDepth, '\t');
}

void ChunkFileWriterClass::Implementation::Open_XML_Element(const char *element, const char *name, uint32_t id)
{
    std::string number;
    Append_Int(number, static_cast<int32_t>(id));
    Indent();
    XMLText.append("<").append(element).append(" Name=\"");
    if (name)
        Append_Attribute(XMLText, name);
    else
        Append_UInt(XMLText, id);
    XMLText.append("\" Id=\"").append(number).append("\">\n");
    ++XMLDepth;
}

void ChunkFileWriterClass::Implementation::Close_XML_Element(const char *element)
{
    --XMLDepth;
    Indent();
    XMLText.append("</").append(element).append(">\n");
}

/// `payloadSize` is what the value takes, with its tag, in the stream that a reader makes of it.
bool ChunkFileWriterClass::Implementation::Write_XML_Value(uint8_t tag, std::string_view text, uint64_t payloadSize)
{
    if (!Admit_Payload(payloadSize)) return false;
    const auto size = static_cast<uint32_t>(payloadSize);
    (InMicroChunk ? MicroSize : InChunkBuffer[Stack[StackIndex - 1]].SizeWord) += size;
    Indent();
    const char *const name = Type_Name(tag);
    XMLText.append("<").append(name).append(">").append(text).append("</").append(name).append(">\n");
    return true;
}

/// A binary value: its tag in a validated file, a part of fixed size, and a part that follows it.
bool ChunkFileWriterClass::Implementation::Write_Value(uint8_t tag, const void *fixed, uint32_t fixedSize,
                                                       const void *data, uint32_t dataSize)
{
    const uint32_t tagSize = Is_Validated() ? 1 : 0;
    if (!Admit_Payload(uint64_t{tagSize} + fixedSize + dataSize)) return false;
    bool written = tagSize == 0 || Append_Payload(&tag, tagSize);
    written = Append_Payload(fixed, fixedSize) && written;
    return (dataSize == 0 || Append_Payload(data, dataSize)) && written;
}

template <typename T, size_t COUNT>
bool ChunkFileWriterClass::Implementation::Write_Numbers(uint8_t tag, const T (&values)[COUNT])
{
    if (Is_XML()) {
        std::string text;
        for (size_t i = 0; i < COUNT; ++i) {
            if (i > 0) text.push_back(' ');
            Append_Number(text, values[i]);
        }
        return Write_XML_Value(tag, text, 1 + sizeof(values));
    }
    if (Native) return Write_Value(tag, values, sizeof(values));
    T swapped[COUNT];
    std::copy(values, values + COUNT, swapped);
    Swap_All(swapped, COUNT);
    return Write_Value(tag, swapped, sizeof(swapped));
}

template <typename T>
bool ChunkFileWriterClass::Implementation::Write_Number(uint8_t tag, T value)
{
    const T values[] = {value};
    return Write_Numbers(tag, values);
}

bool ChunkFileWriterClass::Implementation::Write_Raw(const void *data, uint32_t size)
{
    if (Is_XML()) {
        std::string text;
        if (!Admit_Payload(5 + uint64_t{size})) return false;
        Append_Hex(text, static_cast<const uint8_t *>(data), size, UPPER_DIGITS);
        return Write_XML_Value(TYPE_RAW, text, 5 + uint64_t{size});
    }
    const uint32_t stored = Stored(size);
    return Write_Value(TYPE_RAW, &stored, Is_Validated() ? sizeof(stored) : 0, data, size);
}

bool ChunkFileWriterClass::Write_Int8(int8_t value)
{
    return Impl->Write_Number(TYPE_INT8, value);
}

bool ChunkFileWriterClass::Write_UInt8(uint8_t value)
{
    return Impl->Write_Number(TYPE_INT8, value);
}

bool ChunkFileWriterClass::Write_Int16(int16_t value)
{
    return Impl->Write_Number(TYPE_INT16, value);
}

bool ChunkFileWriterClass::Write_UInt16(uint16_t value)
{
    return Impl->Write_Number(TYPE_INT16, value);
}

bool ChunkFileWriterClass::Write_Int32(int32_t value)
{
    return Impl->Write_Number(TYPE_INT32, value);
}

bool ChunkFileWriterClass::Write_UInt32(uint32_t value)
{
    return Impl->Write_Number(TYPE_INT32, value);
}

bool ChunkFileWriterClass::Write_Int64(int64_t value)
{
    return Impl->Write_Number(TYPE_INT64, value);
}

bool ChunkFileWriterClass::Write_UInt64(uint64_t value)
{
    return Impl->Write_Number(TYPE_INT64, value);
}

bool ChunkFileWriterClass::Write_Float(float value)
{
    return Impl->Write_Number(TYPE_FLOAT, value);
}

bool ChunkFileWriterClass::Write_String(std::string_view value)
{
    if (value.size() > STRING_LIMIT) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - A string of %zu bytes is too long in %s\n",
               value.size(), Impl->File_Name());
        return false;
    }
    const auto size = static_cast<uint32_t>(value.size());
    if (Impl->Is_XML()) {
        std::string text;
        Append_Text(text, value);
        return Impl->Write_XML_Value(TYPE_STRING, text, 3 + uint64_t{size});
    }
    const uint16_t length = Impl->Stored(static_cast<uint16_t>(size));
    return Impl->Write_Value(TYPE_STRING, &length, sizeof(length), value.data(), size);
}

bool ChunkFileWriterClass::Write_Wstring(std::u16string_view value)
{
    if (value.size() > STRING_LIMIT) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - A wide string of %zu units is too long in %s\n",
               value.size(), Impl->File_Name());
        return false;
    }
    const uint32_t size = static_cast<uint32_t>(value.size()) * uint32_t{sizeof(char16_t)};
    if (Impl->Is_XML()) {
        std::string text;
        Append_Wide_Text(text, value);
        return Impl->Write_XML_Value(TYPE_WSTRING, text, 3 + uint64_t{size});
    }
    const uint16_t length = Impl->Stored(static_cast<uint16_t>(value.size()));
    if (Impl->Native) return Impl->Write_Value(TYPE_WSTRING, &length, sizeof(length), value.data(), size);
    std::u16string swapped(value);
    Swap_All(swapped.data(), swapped.size());
    return Impl->Write_Value(TYPE_WSTRING, &length, sizeof(length), swapped.data(), size);
}

bool ChunkFileWriterClass::Write_Bool(bool value)
{
    if (Impl->Is_XML()) return Impl->Write_XML_Value(TYPE_BOOL, value ? "true" : "false", 2);
    const uint8_t byte = value ? 1 : 0;
    return Impl->Write_Value(TYPE_BOOL, &byte, sizeof(byte));
}

bool ChunkFileWriterClass::Write_Vector2(const Vector2 &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR2, {value.x, value.y});
}

bool ChunkFileWriterClass::Write_Vector3(const Vector3 &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR3, {value.x, value.y, value.z});
}

bool ChunkFileWriterClass::Write_Vector4(const Vector4 &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR4, {value.x, value.y, value.z, value.w});
}

bool ChunkFileWriterClass::Write_Quaternion(const QuaternionClass &value)
{
    return Impl->Write_Numbers(TYPE_QUATERNION, {value.x, value.y, value.z, value.w});
}

bool ChunkFileWriterClass::Write_RGBA(const RGBAClass &value)
{
    return Impl->Write_Numbers(TYPE_RGBA, {value.R, value.G, value.B, value.A});
}

bool ChunkFileWriterClass::Write_Bit_Stream(const uint8_t *bits, uint32_t bitCount, uint32_t secondWord)
{
    const auto size = static_cast<uint32_t>((uint64_t{bitCount} + 7) / 8);
    if (Impl->Is_XML()) {
        std::string text;
        if (!Impl->Admit_Payload(5 + uint64_t{size})) return false;
        Append_Hex(text, bits, size, LOWER_DIGITS);
        return Impl->Write_XML_Value(TYPE_BIT_STREAM, text, 5 + uint64_t{size});
    }
    const uint32_t words[] = {Impl->Stored(bitCount), Impl->Stored(secondWord)};
    return Impl->Write_Value(TYPE_BIT_STREAM, words, sizeof(words), bits, size);
}

bool ChunkFileWriterClass::Write_Pointer(uint32_t value)
{
    if (!Impl->Is_XML()) return Impl->Write_Number(TYPE_POINTER, value);
    std::string text;
    const uint32_t reversed = Swap_Bytes(value);
    Append_Hex(text, reinterpret_cast<const uint8_t *>(&reversed), sizeof(reversed), UPPER_DIGITS);
    return Impl->Write_XML_Value(TYPE_POINTER, text, 1 + sizeof(value));
}

bool ChunkFileWriterClass::Write_Matrix3D(const Mat3DClass &value)
{
    float values[12];
    for (int i = 0; i < 12; ++i) values[i] = value.Row[i / 4][i % 4];
    return Impl->Write_Numbers(TYPE_MATRIX3D, values);
}

bool ChunkFileWriterClass::Write_Vector2i(const Vector2i &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR2I, {int32_t{value.x}, int32_t{value.y}});
}

bool ChunkFileWriterClass::Write_Vector3i(const Vector3i &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR3I, {int32_t{value.x}, int32_t{value.y}, int32_t{value.z}});
}

bool ChunkFileWriterClass::Write_Vector4i(const Vector4i &value)
{
    return Impl->Write_Numbers(TYPE_VECTOR4I, {int32_t{value.x}, int32_t{value.y}, int32_t{value.z}, int32_t{value.w}});
}

bool ChunkFileWriterClass::Write_Flags(uint8_t value)
{
    const bool isReversed = !Impl->Native && !Impl->Is_XML();
    return Impl->Write_Number(TYPE_FLAGS, isReversed ? Reverse_Bits(value) : value);
}

bool ChunkFileWriterClass::Write_Facing(const Vector3 &value)
{
    return Impl->Write_Numbers(TYPE_FACING, {value.x, value.y, value.z});
}

bool ChunkFileWriterClass::Write_Time(uint64_t value)
{
    return Impl->Write_Number(TYPE_TIME, value);
}

bool ChunkFileWriterClass::Write_Matrix3(const float value[9])
{
    float values[9];
    std::copy(value, value + 9, values);
    return Impl->Write_Numbers(TYPE_MATRIX3, values);
}

bool ChunkFileWriterClass::Write_Raw_Bytes(const void *data, uint32_t size)
{
    return Impl->Write_Raw(data, size);
}

bool ChunkFileWriterClass::Write_Bytes(const void *data, uint32_t size, uint32_t *written)
{
    // XML has no place for a value without a type, and what a caller writes must not get lost.
    const bool isWritten =
        Impl->Is_XML() ? Impl->Write_Raw(data, size) : Impl->Admit_Payload(size) && Impl->Append_Payload(data, size);
    if (written) *written = isWritten ? size : 0;
    return isWritten;
}

} // namespace ChunkFile
