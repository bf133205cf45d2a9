#pragma once

/// The way of vertices to the device: a ring of mapped memory that callers write into, drawn from where it lies.
///
/// The ring has segments, each with a fence that says when the device is through with it. A draw never straddles two,
/// so it starts at a vertex number of its layout, and one vertex array a layout serves all draws. Quads go through one
/// index buffer that is made once. Nothing is copied here, and nothing allocated after the start.

#include "vrGraphics/drivercommon/vrVertices.h"
#include "vrOpenGL/GLDevice.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class GLVertexStream
{
public:
    explicit GLVertexStream(std::shared_ptr<GLDevice> device);

    /// Makes the buffers in the device's context.
    void Start();
    void Stop();
    /// What layouts without normals and colours feed to shaders, which is the context's own state.
    static void Set_Constant_Attributes();

    /// Room for vertices, to be written and not read; null when the device gives none. What is more than a draw may
    /// hold is not drawn.
    void *Begin(vrPrimVertexType type, vrPrimitiveKind kind, int vertexCount);
    /// The same with room for indices, which may be read too.
    void *Begin_Indexed(vrPrimVertexType type, vrPrimitiveKind kind, int vertexCount, int indexCount,
                        uint16_t **indices);
    bool Is_Open() const { return IsOpen; }
    /// Draws with what is set in the device. Indices beyond the vertices assert, and nothing is drawn.
    void End();
    /// Ends without a draw.
    void Abandon();

private:
    static constexpr int LAYOUTS = 3;
    static constexpr int SEGMENTS = 4;
    static constexpr size_t SEGMENT_BYTES = 0x400000; ///< more than the largest draw: 65535 vertices of 60 bytes

    void *Map(vrPrimVertexType type, int vertexCount);
    void Next_Segment();
    void Make_Vertex_Array(vrPrimVertexType type, const GLObject &array, unsigned indices) const;
    bool Upload_Indices();
    void Bind_Array(bool indexed);

    std::shared_ptr<GLDevice> Device;
    GLObject Ring;
    GLObject QuadIndices;
    GLObject FreeIndices;
    std::array<GLObject, LAYOUTS> QuadArrays;
    std::array<GLObject, LAYOUTS> IndexedArrays;
    std::array<void *, SEGMENTS> Fences{}; ///< OpenGL's; null for a segment that the device isn't reading
    size_t Segment = 0;
    size_t Used = 0; ///< bytes of the segment

    bool IsOpen = false;
    vrPrimVertexType Type = VR_LIT_VERTEX;
    vrPrimitiveKind Kind = VR_PRIMITIVE_QUADS;
    int VertexCount = 0;
    int FirstVertex = 0;
    std::vector<uint16_t> Indices; ///< of the open draw; empty for one without
};
