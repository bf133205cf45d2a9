#pragma once

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrRenderState.h"
#include "vrGraphics/drivercommon/vrVertices.h"

#include <cstring>
#include <vector>

/// One draw as the null driver was given it.
struct vrNullDrawRecord
{
    vrPrimVertexType Type = VR_PRIM_VERTEX;
    vrPrimitiveKind Kind = VR_PRIMITIVE_TRIANGLES;
    int VertexCount = 0;
    std::vector<uint8_t> Vertices;
    std::vector<uint16_t> Indices;
    vrRenderPhaseEnum Phase = vrRenderPhaseEnum::Terrain; ///< of the context whose phases run, or the first
    vrRenderModeType Mode = VR_RENDER_MODE_NORMAL;
    vrRenderStateBlock State;
    Mat3DClass World;

    /// The vertices as they were written; empty for a draw of another type.
    template <typename Vertex>
    std::vector<Vertex> Get_Vertices() const
    {
        std::vector<Vertex> vertices;
        if (sizeof(Vertex) != static_cast<size_t>(Get_Vertex_Size(Type))) return vertices;
        vertices.resize(static_cast<size_t>(VertexCount));
        if (!vertices.empty()) std::memcpy(static_cast<void *>(vertices.data()), Vertices.data(), Vertices.size());
        return vertices;
    }
};
