#pragma once

/// Forward declarations of the parameter kinds; Parameters/*.h define them.

#include "MKLib/MKMath/Vectors.h"

#include <cstdint>

/// The kind of a parameter. The values of the file format's dumps and of `vro`'s JSON names; never renumber.
enum class ParameterType : int
{
    Boolean = 0,
    RGBA = 1,
    Vector3 = 2,
    Integer = 3,
    Float = 4,
    String = 5,
    KeyedBoolean = 6, ///< 6, 8 and 9 are names with no class behind them
    KeyedRGBA = 7,
    KeyedVector3 = 8,
    KeyedInteger = 9,
    KeyedFloat = 10,
    TextureName = 11,
    ShaderName = 12,
    UV = 13,
    KeyedUV = 14,
    Shape = 15,
    Enumeration = 16,
    UVList = 17,
    Mask = 19
};

class ParameterClass;
class ParameterListClass;
template <typename T, ParameterType Type>
class SimpleParameterClass;
template <typename T, ParameterType Type>
class RangedParameterClass;
template <typename T, ParameterType Type>
class KeyedParameterClass;
class KeyedFloatParameterClass;
class StringParameterClass;
class TextureNameParameterClass;
class ShaderNameParameterClass;
class EnumParameterClass;
class UVListParameterClass;
class ShapeParameterClass;

using BoolParameter = SimpleParameterClass<bool, ParameterType::Boolean>;
using RGBAParameter = SimpleParameterClass<RGBAClass, ParameterType::RGBA>;
using Vector3Parameter = SimpleParameterClass<Vector3, ParameterType::Vector3>;
using IntParameter = SimpleParameterClass<int32_t, ParameterType::Integer>;
using RangedIntParameter = RangedParameterClass<int32_t, ParameterType::Integer>;
using FloatParameter = SimpleParameterClass<float, ParameterType::Float>;
using RangedFloatParameter = RangedParameterClass<float, ParameterType::Float>;
using UVParameter = SimpleParameterClass<Vector4, ParameterType::UV>; ///< u, v, du, dv
using MaskParameter = SimpleParameterClass<uint32_t, ParameterType::Mask>;
using KeyedRGBAParameter = KeyedParameterClass<RGBAClass, ParameterType::KeyedRGBA>;
using KeyedUVParameter = KeyedParameterClass<Vector4, ParameterType::KeyedUV>;
