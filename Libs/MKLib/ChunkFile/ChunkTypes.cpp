#include "MKLib/ChunkFile/ChunkTypes.h"

namespace ChunkFile
{

namespace
{

struct TypeRow
{
    uint8_t tag;
    const char *name;
};

constexpr TypeRow TypeRows[] = {
    {TYPE_INT8, "Int8"},
    {TYPE_INT16, "Int16"},
    {TYPE_INT32, "Int32"},
    {TYPE_INT64, "Int64"},
    {TYPE_FLOAT, "Float"},
    {TYPE_STRING, "String"},
    {TYPE_WSTRING, "Wstring"},
    {TYPE_BOOL, "Bool"},
    {TYPE_VECTOR2, "Vector2"},
    {TYPE_VECTOR3, "Vector3"},
    {TYPE_VECTOR4, "Vector4"},
    {TYPE_QUATERNION, "Quaternion"},
    {TYPE_RGBA, "RGBA"},
    {TYPE_BIT_STREAM, "BitStream"},
    {TYPE_POINTER, "Pointer"},
    {TYPE_MATRIX3D, "Matrix3d"},
    {TYPE_VECTOR2I, "Vector2i"},
    {TYPE_VECTOR4I, "Vector4i"},
    {TYPE_MICROCHUNK, "Microchunk"},
    {TYPE_FLAGS, "Flags"},
    {TYPE_RAW, "Raw"},
    {TYPE_FACING, "Facing"},
    {TYPE_TIME, "Time"},
    {TYPE_VECTOR3I, "Vector3i"},
};

} // namespace

const char *Type_Name(uint8_t tag)
{
    for (const TypeRow &row : TypeRows)
        if (row.tag == tag) return row.name;
    return "Unknown";
}

uint8_t Type_Of_Name(std::string_view name)
{
    for (const TypeRow &row : TypeRows)
        if (name == row.name) return row.tag;
    return 0;
}

} // namespace ChunkFile
