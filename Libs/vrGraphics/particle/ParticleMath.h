#pragma once

/// The arithmetic that plugins share. Everything here is branch-free and inlined, so that a loop over it vectorises.
/// Values that a file holds may be anything: conversions to integers are defined for all floats.

#include "MKLib/MKMath/Simd.h"
#include "vrGraphics/drivercommon/vrColor.h"
#include "vrGraphics/particle/VectorPlanes.h"

#include <bit>
#include <cmath>
#include <cstdint>

struct Mat3DClass;

namespace Particle
{

constexpr float UNIT_ID = 1.5259022e-05f; ///< 1 / 65535: turns a 16-bit random value into 0..1
constexpr float TWO_PI = 6.2831855f;

/// 0 for what is no number. On bits, whose order is that of the floats where these aren't negative: of two choices in a
/// row the compiler would make jumps, and of these more comparisons than there were.
MK_INLINE float Clamp_01(float value)
{
    constexpr auto ONE = std::bit_cast<int32_t>(1.0f);
    const uint32_t isPositive = value > 0.0f ? ~0u : 0u;
    const auto raised = static_cast<int32_t>(std::bit_cast<uint32_t>(value) & isPositive);
    return std::bit_cast<float>(raised < ONE ? raised : ONE);
}

constexpr float TRUNCATION_LIMIT = 2147479552.0f;

/// Toward zero. Beyond the integers, and for what is no number, one of the two ends, whose low 12 bits are 0, so that
/// they come out as 0 in what a rotation or a byte of a colour keeps.
MK_INLINE int32_t Truncate(float value)
{
    const float raised = value > -TRUNCATION_LIMIT ? value : -TRUNCATION_LIMIT;
    return static_cast<int32_t>(raised < TRUNCATION_LIMIT ? raised : TRUNCATION_LIMIT);
}

/// The low 12 bits of `Truncate`, by fewer steps; those above aren't the same.
MK_INLINE uint32_t Truncate_Low_Bits(float value)
{
    const float kept = std::fabs(value) <= TRUNCATION_LIMIT ? value : 0.0f;
    return static_cast<uint32_t>(static_cast<int32_t>(kept));
}

/// Scaled to unit length; a zero vector stays.
MK_INLINE Vector3 Unit(const Vector3 &vector)
{
    const float length = std::sqrt(vector.x * vector.x + vector.y * vector.y + vector.z * vector.z);
    const float scale = length > 0.0f ? 1.0f / length : 1.0f;
    return {vector.x * scale, vector.y * scale, vector.z * scale};
}

/// (3 - 2u) u^2
MK_INLINE float Smooth_Step(float u)
{
    return (3.0f - 2.0f * u) * u * u;
}

// Randomness by ID. `id` has the 16 random bits.
MK_INLINE float Unit_ID(uint32_t id)
{
    return static_cast<float>(static_cast<int32_t>(id & 0xffff)) * UNIT_ID;
}
/// A value in [-variation, variation], in this form to the last bit; 0 for a variation of 0.
MK_INLINE float Signed_Factor(uint32_t bits, float variation)
{
    return variation == 0.0f
               ? 0.0f
               : static_cast<float>(static_cast<int32_t>(bits & 0xffff)) * UNIT_ID * (variation - (-variation)) +
                     (-variation);
}
// The bits that vary width and height apart from each other.
MK_INLINE uint32_t Width_Bits(uint32_t id)
{
    return id & 0xff00;
}
MK_INLINE uint32_t Height_Bits(uint32_t id)
{
    return (id & 0xff) << 8;
}

/// 4096 steps a turn.
MK_INLINE uint32_t Encode_Rotation(float turns)
{
    return Truncate_Low_Bits(turns * 4096.0f) & 0xfff;
}

// Packed colours.
MK_INLINE uint32_t Color_Byte(float channel)
{
    return Truncate_Low_Bits(channel * 255.0f) & 0xff;
}
MK_INLINE vrColor Pack(const RGBAClass &color)
{
    return Pack_Color(Color_Byte(color.R), Color_Byte(color.G), Color_Byte(color.B), Color_Byte(color.A));
}
/// A weight in 0..1 as the 16.16 fraction that `Lerp_Color` takes.
MK_INLINE int32_t Fixed_Weight(float weight)
{
    return static_cast<int32_t>(weight * 65536.0f);
}
/// By channel: (a * 65536 + (b - a) * fraction) >> 16, for a fraction of 0 to 65536.
MK_INLINE vrColor Lerp_Color(vrColor a, vrColor b, int32_t fraction)
{
    vrColor result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto from = static_cast<int32_t>((a >> shift) & 0xff);
        const auto to = static_cast<int32_t>((b >> shift) & 0xff);
        result |= static_cast<uint32_t>((from * 65536 + (to - from) * fraction) >> 16) << shift;
    }
    return result;
}
/// By channel: a * b / 255, truncated.
MK_INLINE vrColor Multiply_Color(vrColor a, vrColor b)
{
    vrColor result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        // x / 255 for x up to 65025: 0x8081 / 2^23 is exact over all of them.
        const uint32_t product = ((a >> shift) & 0xff) * ((b >> shift) & 0xff);
        result |= ((product * 0x8081u) >> 23) << shift;
    }
    return result;
}

/// Adds to `count` floats.
void Add_Float(float *values, int count, float add);
/// to = from * factor, of `count` floats; the two may be the same array.
void Multiply(float *to, const float *from, int count, float factor);

// Loops over vectors.
void Copy(const vrMKPVectors &to, const vrMKPConstVectors &from, int count);
/// The same vector to `count` of them.
void Fill(const vrMKPVectors &to, const Vector3 &vector, int count);
/// Adds one vector to `count` vectors. False when a sum is infinite or no number.
bool Add_Vector(const vrMKPVectors &vectors, int count, const Vector3 &add);
/// to = from + velocity * step, where `to` is another run. False when a result is infinite or no number.
bool Integrate(const vrMKPVectors &to, const vrMKPConstVectors &from, const vrMKPConstVectors &velocity, int count,
               float step);
/// Whether a component of the vectors is infinite or no number.
bool Has_Invalid(const vrMKPConstVectors &vectors, int count);
/// to = the transform of from; the two may be the same run.
void Transform_Points(const vrMKPVectors &to, const vrMKPConstVectors &from, int count, const Mat3DClass &transform);

} // namespace Particle
