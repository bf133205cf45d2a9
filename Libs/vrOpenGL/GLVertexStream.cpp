#include "vrOpenGL/GLVertexStream.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace
{

constexpr GLuint64 FENCE_NANOSECONDS = 1'000'000'000;
constexpr int MAX_QUADS = MAX_PRIM_VERTICES / 4;

/// Where shaders find what vertices hold: the locations that the prelude of effects declares.
enum LocationType : GLuint
{
    LOCATION_POSITION,
    LOCATION_NORMAL,
    LOCATION_UV,
    LOCATION_TANGENT,
    LOCATION_BINORMAL,
    LOCATION_COLOR
};

struct AttributeRow
{
    GLuint Location;
    GLint Count;
    GLenum Type;
    size_t Offset;
};

constexpr AttributeRow PRIM_ATTRIBUTES[] = {
    {LOCATION_POSITION, 3, GL_FLOAT, offsetof(vrPrimVertex, Position)},
    {LOCATION_UV, 2, GL_FLOAT, offsetof(vrPrimVertex, UV)},
    {LOCATION_COLOR, 4, GL_UNSIGNED_BYTE, offsetof(vrPrimVertex, Color)},
};
constexpr AttributeRow LIT_ATTRIBUTES[] = {
    {LOCATION_POSITION, 3, GL_FLOAT, offsetof(vrLitVertex, Position)},
    {LOCATION_NORMAL, 3, GL_FLOAT, offsetof(vrLitVertex, Normal)},
    {LOCATION_UV, 2, GL_FLOAT, offsetof(vrLitVertex, UV)},
    {LOCATION_COLOR, 4, GL_UNSIGNED_BYTE, offsetof(vrLitVertex, Color)},
};
constexpr AttributeRow LIT_BUMP_ATTRIBUTES[] = {
    {LOCATION_POSITION, 3, GL_FLOAT, offsetof(vrLitBumpVertex, Position)},
    {LOCATION_NORMAL, 3, GL_FLOAT, offsetof(vrLitBumpVertex, Normal)},
    {LOCATION_UV, 2, GL_FLOAT, offsetof(vrLitBumpVertex, UV)},
    {LOCATION_TANGENT, 3, GL_FLOAT, offsetof(vrLitBumpVertex, Tangent)},
    {LOCATION_BINORMAL, 3, GL_FLOAT, offsetof(vrLitBumpVertex, Binormal)},
    {LOCATION_COLOR, 4, GL_UNSIGNED_BYTE, offsetof(vrLitBumpVertex, Color)},
};

std::vector<AttributeRow> Get_Attributes(vrPrimVertexType type)
{
    switch (type) {
    case VR_PRIM_VERTEX: return {std::begin(PRIM_ATTRIBUTES), std::end(PRIM_ATTRIBUTES)};
    case VR_LIT_VERTEX: return {std::begin(LIT_ATTRIBUTES), std::end(LIT_ATTRIBUTES)};
    default: return {std::begin(LIT_BUMP_ATTRIBUTES), std::end(LIT_BUMP_ATTRIBUTES)};
    }
}

std::vector<uint16_t> Make_Quad_Indices()
{
    std::vector<uint16_t> indices;
    indices.reserve(MAX_QUADS * 6);
    for (int quad = 0; quad < MAX_QUADS; ++quad)
        for (const int corner : {0, 1, 2, 0, 2, 3}) indices.push_back(static_cast<uint16_t>(quad * 4 + corner));
    return indices;
}

} // namespace

GLVertexStream::GLVertexStream(std::shared_ptr<GLDevice> device) : Device(std::move(device))
{
    Indices.reserve(MAX_PRIM_INDICES);
}

void GLVertexStream::Start()
{
    Ring = GLObject(Device->Life, GLObjectKind::Buffer);
    QuadIndices = GLObject(Device->Life, GLObjectKind::Buffer);
    FreeIndices = GLObject(Device->Life, GLObjectKind::Buffer);
    // A vertex array remembers the index buffer that is bound while it is: none is, here.
    Device->State.Bind_Vertex_Array(0);
    Device->State.Bind_Array_Buffer(Ring.Get());
    glBufferData(GL_ARRAY_BUFFER, SEGMENTS * SEGMENT_BYTES, nullptr, GL_STREAM_DRAW);
    for (int layout = 0; layout < LAYOUTS; ++layout) {
        const auto type = static_cast<vrPrimVertexType>(layout);
        const auto at = static_cast<size_t>(layout);
        QuadArrays[at] = GLObject(Device->Life, GLObjectKind::VertexArray);
        IndexedArrays[at] = GLObject(Device->Life, GLObjectKind::VertexArray);
        Make_Vertex_Array(type, QuadArrays[at], QuadIndices.Get());
        Make_Vertex_Array(type, IndexedArrays[at], FreeIndices.Get());
    }
    // The last array's buffer is that of free indices.
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, MAX_PRIM_INDICES * sizeof(uint16_t), nullptr, GL_STREAM_DRAW);
    const std::vector<uint16_t> quads = Make_Quad_Indices();
    Device->State.Bind_Vertex_Array(QuadArrays[0].Get());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(quads.size() * sizeof(uint16_t)), quads.data(),
                 GL_STATIC_DRAW);
    Segment = 0;
    Used = 0;
}

void GLVertexStream::Stop()
{
    for (void *&fence : Fences) {
        if (fence && Device->Is_Alive()) glDeleteSync(static_cast<GLsync>(fence));
        fence = nullptr;
    }
    Ring = GLObject();
    QuadIndices = GLObject();
    FreeIndices = GLObject();
    for (GLObject &array : QuadArrays) array = GLObject();
    for (GLObject &array : IndexedArrays) array = GLObject();
    IsOpen = false;
}

void GLVertexStream::Set_Constant_Attributes()
{
    glVertexAttrib3f(LOCATION_NORMAL, 0.0f, 0.0f, 1.0f);
    glVertexAttrib3f(LOCATION_TANGENT, 1.0f, 0.0f, 0.0f);
    glVertexAttrib3f(LOCATION_BINORMAL, 0.0f, 1.0f, 0.0f);
    glVertexAttrib4f(LOCATION_COLOR, 1.0f, 1.0f, 1.0f, 1.0f);
}

void GLVertexStream::Make_Vertex_Array(vrPrimVertexType type, const GLObject &array, unsigned indices) const
{
    Device->State.Bind_Vertex_Array(array.Get());
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices);
    for (const AttributeRow &row : Get_Attributes(type)) {
        glEnableVertexAttribArray(row.Location);
        glVertexAttribPointer(row.Location, row.Count, row.Type, row.Type == GL_UNSIGNED_BYTE, Get_Vertex_Size(type),
                              reinterpret_cast<const void *>(row.Offset));
    }
}

void GLVertexStream::Next_Segment()
{
    Fences[Segment] = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    Segment = (Segment + 1) % SEGMENTS;
    Used = 0;
    if (!Fences[Segment]) return;
    const auto fence = static_cast<GLsync>(Fences[Segment]);
    glClientWaitSync(fence, GL_SYNC_FLUSH_COMMANDS_BIT, FENCE_NANOSECONDS);
    glDeleteSync(fence);
    Fences[Segment] = nullptr;
}

void *GLVertexStream::Map(vrPrimVertexType type, int vertexCount)
{
    const auto size = static_cast<size_t>(Get_Vertex_Size(type));
    // Always at least one, so that a draw of none has room to point to.
    const size_t bytes = static_cast<size_t>(std::max(1, vertexCount)) * size;
    const auto first = [&] { return (Segment * SEGMENT_BYTES + Used + size - 1) / size; };
    if (first() * size + bytes > (Segment + 1) * SEGMENT_BYTES) Next_Segment();
    FirstVertex = static_cast<int>(first());
    const size_t offset = first() * size;
    Device->State.Bind_Array_Buffer(Ring.Get());
    void *memory = glMapBufferRange(GL_ARRAY_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(bytes),
                                    GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_RANGE_BIT | GL_MAP_UNSYNCHRONIZED_BIT);
    if (memory) Used = offset + bytes - Segment * SEGMENT_BYTES;
    return memory;
}

void *GLVertexStream::Begin(vrPrimVertexType type, vrPrimitiveKind kind, int vertexCount)
{
    if (IsOpen) Abandon();
    if (!Ring) return nullptr;
    Type = type;
    Kind = kind;
    VertexCount = std::clamp(vertexCount, 0, MAX_PRIM_VERTICES);
    Indices.clear();
    void *memory = Map(type, VertexCount);
    IsOpen = memory != nullptr;
    return memory;
}

void *GLVertexStream::Begin_Indexed(vrPrimVertexType type, vrPrimitiveKind kind, int vertexCount, int indexCount,
                                    uint16_t **indices)
{
    void *memory = Begin(type, kind, vertexCount);
    if (!memory) return nullptr;
    // Indices go through plain memory, since they are checked: a device may read anywhere for a wrong one.
    Indices.assign(static_cast<size_t>(std::clamp(indexCount, 0, MAX_PRIM_INDICES)), 0);
    *indices = Indices.data();
    return memory;
}

bool GLVertexStream::Upload_Indices()
{
    const auto largest = *std::max_element(Indices.begin(), Indices.end());
    if (!MK_VERIFY(largest < VertexCount, "index < vcount")) return false;
    Bind_Array(true);
    const auto bytes = static_cast<GLsizeiptr>(Indices.size() * sizeof(uint16_t));
    // The driver keeps what earlier draws still read.
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, MAX_PRIM_INDICES * sizeof(uint16_t), nullptr, GL_STREAM_DRAW);
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, bytes, Indices.data());
    return true;
}

void GLVertexStream::Bind_Array(bool indexed)
{
    Device->State.Bind_Vertex_Array((indexed ? IndexedArrays : QuadArrays)[static_cast<size_t>(Type)].Get());
}

void GLVertexStream::End()
{
    if (!IsOpen) return;
    Abandon();
    const GLenum mode = Kind == VR_PRIMITIVE_LINES ? GL_LINES : GL_TRIANGLES;
    if (!Indices.empty()) {
        if (!Upload_Indices()) return;
        glDrawElementsBaseVertex(mode, static_cast<GLsizei>(Indices.size()), GL_UNSIGNED_SHORT, nullptr, FirstVertex);
    } else if (Kind == VR_PRIMITIVE_QUADS) {
        if (VertexCount < 4) return;
        Bind_Array(false);
        glDrawElementsBaseVertex(mode, VertexCount / 4 * 6, GL_UNSIGNED_SHORT, nullptr, FirstVertex);
    } else {
        if (VertexCount == 0) return;
        Bind_Array(false);
        glDrawArrays(mode, FirstVertex, VertexCount);
    }
    vrGraphicsStats::Draws.fetch_add(1, std::memory_order_relaxed);
    vrGraphicsStats::Vertices.fetch_add(VertexCount, std::memory_order_relaxed);
}

void GLVertexStream::Abandon()
{
    if (!IsOpen) return;
    IsOpen = false;
    Device->State.Bind_Array_Buffer(Ring.Get());
    glUnmapBuffer(GL_ARRAY_BUFFER);
}
