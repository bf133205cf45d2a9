#pragma once

/// Vectors, quaternions and colours of the engine: glm's types under the engine's names, so that arithmetic is glm's.

#include <glm/ext/quaternion_float.hpp>
#include <glm/ext/vector_int2.hpp>
#include <glm/ext/vector_int3.hpp>
#include <glm/ext/vector_int4.hpp>
#include <glm/ext/vector_float2.hpp>
#include <glm/ext/vector_float3.hpp>
#include <glm/ext/vector_float4.hpp>

using Vector2 = glm::vec2;
using Vector3 = glm::vec3;
using Vector4 = glm::vec4;
using Vector2i = glm::ivec2;
using Vector3i = glm::ivec3;
using Vector4i = glm::ivec4;
using QuaternionClass = glm::quat;

/// Four floats, 0 to 1 in normal use and not clamped. The default is opaque white.
struct RGBAClass
{
    float R = 1.0f;
    float G = 1.0f;
    float B = 1.0f;
    float A = 1.0f;

    friend bool operator==(const RGBAClass &, const RGBAClass &) = default;
};

/// A colour from bytes, each divided by 255.
constexpr RGBAClass RGBA_From_Bytes(int red, int green, int blue, int alpha)
{
    return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f, static_cast<float>(blue) / 255.0f,
            static_cast<float>(alpha) / 255.0f};
}

/// from + fraction (to - from), by component; nothing is clamped.
constexpr RGBAClass Lerp(const RGBAClass &from, const RGBAClass &to, float fraction)
{
    return {from.R + fraction * (to.R - from.R), from.G + fraction * (to.G - from.G),
            from.B + fraction * (to.B - from.B), from.A + fraction * (to.A - from.A)};
}

/// True when no component is a NaN or an infinity.
bool Is_Valid(float value);
bool Is_Valid(const Vector2 &value);
bool Is_Valid(const Vector3 &value);
bool Is_Valid(const Vector4 &value);
bool Is_Valid(const RGBAClass &value);
