#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "vrGraphics/drivercommon/vrColor.h"

#include <cstdint>

/// The three layouts that a driver's streams of vertices have: little-endian, without gaps.
enum vrPrimVertexType : int
{
    VR_PRIM_VERTEX,
    VR_LIT_VERTEX,
    VR_LIT_BUMP_VERTEX
};

/// Lines and plain quads; particles don't use it.
struct vrPrimVertex
{
    Vector3 Position;
    Vector2 UV;
    vrColor Color;
};

struct vrLitVertex
{
    Vector3 Position;
    Vector3 Normal;
    Vector2 UV;
    vrColor Color;
};

struct vrLitBumpVertex
{
    Vector3 Position;
    Vector3 Normal;
    Vector2 UV;
    Vector3 Tangent;
    Vector3 Binormal;
    vrColor Color;
};

static_assert(sizeof(vrPrimVertex) == 24 && sizeof(vrLitVertex) == 36 && sizeof(vrLitBumpVertex) == 60);

constexpr int Get_Vertex_Size(vrPrimVertexType type)
{
    return type == VR_PRIM_VERTEX ? 24 : type == VR_LIT_VERTEX ? 36 : 60;
}

/// How a stream of vertices becomes triangles or lines.
enum vrPrimitiveKind : int
{
    VR_PRIMITIVE_TRIANGLES = 2,
    VR_PRIMITIVE_LINES = 3, ///< two vertices each
    VR_PRIMITIVE_QUADS = 4  ///< four vertices each: the triangles 0 1 2 and 0 2 3, through a shared index buffer
};

/// A draw holds strictly fewer.
constexpr int MAX_PRIM_VERTICES = 65535;
constexpr int MAX_PRIM_INDICES = 65535;
