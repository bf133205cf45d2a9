#include "MKLib/MKMath/Vectors.h"

#include <bit>
#include <cstdint>

bool Is_Valid(float value)
{
    constexpr uint32_t EXPONENT = 0x7f800000u;
    return (std::bit_cast<uint32_t>(value) & EXPONENT) != EXPONENT;
}

bool Is_Valid(const Vector2 &value)
{
    return Is_Valid(value.x) && Is_Valid(value.y);
}

bool Is_Valid(const Vector3 &value)
{
    return Is_Valid(value.x) && Is_Valid(value.y) && Is_Valid(value.z);
}

bool Is_Valid(const Vector4 &value)
{
    return Is_Valid(value.x) && Is_Valid(value.y) && Is_Valid(value.z) && Is_Valid(value.w);
}

bool Is_Valid(const RGBAClass &value)
{
    return Is_Valid(value.R) && Is_Valid(value.G) && Is_Valid(value.B) && Is_Valid(value.A);
}
