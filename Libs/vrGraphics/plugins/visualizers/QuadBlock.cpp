#include "vrGraphics/plugins/visualizers/QuadBlock.h"

#include "MKLib/MKMath/Simd.h"

#include <algorithm>

namespace
{

constexpr int SIZE = vrMKPQuadBlock::SIZE;

/// Four floats, at any address where they are read or written.
using Floats = float __attribute__((vector_size(16)));
using LooseFloats = float __attribute__((vector_size(16), aligned(4), may_alias));

MK_INLINE Floats Load(const float *from)
{
    return *reinterpret_cast<const LooseFloats *>(from);
}

MK_INLINE void Store(void *to, const Floats &floats)
{
    *static_cast<LooseFloats *>(to) = floats;
}

/// Four quads' worth of four planes, turned into four floats for each quad.
struct Rows
{
    Floats Row[4];
};

MK_INLINE Rows Transpose(const float *a, const float *b, const float *c, const float *d)
{
    const Floats low1 = __builtin_shufflevector(Load(a), Load(b), 0, 4, 1, 5);
    const Floats high1 = __builtin_shufflevector(Load(a), Load(b), 2, 6, 3, 7);
    const Floats low2 = __builtin_shufflevector(Load(c), Load(d), 0, 4, 1, 5);
    const Floats high2 = __builtin_shufflevector(Load(c), Load(d), 2, 6, 3, 7);
    return {{__builtin_shufflevector(low1, low2, 0, 1, 4, 5), __builtin_shufflevector(low1, low2, 2, 3, 6, 7),
             __builtin_shufflevector(high1, high2, 0, 1, 4, 5), __builtin_shufflevector(high1, high2, 2, 3, 6, 7)}};
}

/// The arrays that the vertices of one corner take their values from. Copied out of the block: what is written might
/// change the block's own, as far as the compiler knows.
struct Sources
{
    MK_INLINE Sources(const vrMKPQuadBlock &quads, int corner)
        : X(quads.X[corner]), Y(quads.Y[corner]), Z(quads.Z[corner]), NormalX(quads.VertexNormal[corner][0]),
          NormalY(quads.VertexNormal[corner][1]), NormalZ(quads.VertexNormal[corner][2]), U(quads.VertexU[corner]),
          V(quads.VertexV[corner]), Color(quads.VertexColor[corner])
    {
    }

    const float *X, *Y, *Z, *NormalX, *NormalY, *NormalZ, *U, *V;
    const vrColor *Color;
};

// The vertices of one corner of four quads each, `groups` times.
MK_SIMD void Write_Lit(vrLitVertex *__restrict vertices, const vrMKPQuadBlock &__restrict quads, int corner, int groups)
{
    const Sources from(quads, corner);
    for (int at = 0; at < 4 * groups; at += 4) {
        const Rows first = Transpose(from.X + at, from.Y + at, from.Z + at, from.NormalX + at);
        const Rows second = Transpose(from.NormalY + at, from.NormalZ + at, from.U + at, from.V + at);
        for (int quad = 0; quad < 4; ++quad) {
            vrLitVertex &vertex = vertices[4 * (at + quad)];
            Store(&vertex.Position.x, first.Row[quad]);
            Store(&vertex.Normal.y, second.Row[quad]);
            vertex.Color = from.Color[at + quad];
        }
    }
}

MK_SIMD void Write_Lit_Bump(vrLitBumpVertex *__restrict vertices, const vrMKPQuadBlock &__restrict quads, int corner,
                            int groups)
{
    const Sources from(quads, corner);
    const auto *const tangent = quads.Tangent;
    const auto *const binormal = quads.Binormal;
    for (int at = 0; at < 4 * groups; at += 4) {
        const Rows first = Transpose(from.X + at, from.Y + at, from.Z + at, from.NormalX + at);
        const Rows second = Transpose(from.NormalY + at, from.NormalZ + at, from.U + at, from.V + at);
        const Rows third = Transpose(tangent[0] + at, tangent[1] + at, tangent[2] + at, binormal[0] + at);
        for (int quad = 0; quad < 4; ++quad) {
            vrLitBumpVertex &vertex = vertices[4 * (at + quad)];
            Store(&vertex.Position.x, first.Row[quad]);
            Store(&vertex.Normal.y, second.Row[quad]);
            Store(&vertex.Tangent.x, third.Row[quad]);
            vertex.Binormal.y = binormal[1][at + quad];
            vertex.Binormal.z = binormal[2][at + quad];
            vertex.Color = from.Color[at + quad];
        }
    }
}

// One vertex, for the quads that are left over.
void Write_Vertex(vrLitVertex &vertex, const vrMKPQuadBlock &quads, int quad, int corner)
{
    const float *const *normal = quads.VertexNormal[corner];
    vertex.Position = {quads.X[corner][quad], quads.Y[corner][quad], quads.Z[corner][quad]};
    vertex.Normal = {normal[0][quad], normal[1][quad], normal[2][quad]};
    vertex.UV = {quads.VertexU[corner][quad], quads.VertexV[corner][quad]};
    vertex.Color = quads.VertexColor[corner][quad];
}

void Write_Vertex(vrLitBumpVertex &vertex, const vrMKPQuadBlock &quads, int quad, int corner)
{
    const float *const *normal = quads.VertexNormal[corner];
    vertex.Position = {quads.X[corner][quad], quads.Y[corner][quad], quads.Z[corner][quad]};
    vertex.Normal = {normal[0][quad], normal[1][quad], normal[2][quad]};
    vertex.UV = {quads.VertexU[corner][quad], quads.VertexV[corner][quad]};
    vertex.Tangent = {quads.Tangent[0][quad], quads.Tangent[1][quad], quads.Tangent[2][quad]};
    vertex.Binormal = {quads.Binormal[0][quad], quads.Binormal[1][quad], quads.Binormal[2][quad]};
    vertex.Color = quads.VertexColor[corner][quad];
}

template <typename Vertex>
void Write_Rest(Vertex *vertices, const vrMKPQuadBlock &quads, int first)
{
    for (int quad = first; quad < quads.Count; ++quad)
        for (int corner = 0; corner < 4; ++corner) Write_Vertex(vertices[4 * quad + corner], quads, quad, corner);
}

void Fill(vrMKPQuadBlock::Plane (&planes)[3], const Vector3 &value)
{
    for (int axis = 0; axis < 3; ++axis) std::fill_n(planes[axis], SIZE, value[axis]);
}

MK_SIMD void Scale_And_Add(float *__restrict values, int count, float scale, float add)
{
    for (int at = 0; at < count; ++at) values[at] = values[at] * scale + add;
}

MK_SIMD void Take_Apart(const float *__restrict from, int count, float *__restrict x, float *__restrict y,
                        float *__restrict z)
{
    for (int at = 0; at < count; ++at) {
        x[at] = from[3 * at];
        y[at] = from[3 * at + 1];
        z[at] = from[3 * at + 2];
    }
}

MK_SIMD void Take_Apart(const float *__restrict from, int count, float *__restrict x, float *__restrict y)
{
    for (int at = 0; at < count; ++at) {
        x[at] = from[2 * at];
        y[at] = from[2 * at + 1];
    }
}

} // namespace

vrMKPParticleRun::vrMKPParticleRun(const vrMKPSortEntry *entries, int count, bool isSorted)
    : Entries(entries), Count(count)
{
    const auto first = static_cast<int>(entries[0].Index);
    const auto last = static_cast<int>(entries[count - 1].Index);
    First = !isSorted && last - first == count - 1 ? first : -1;
}

void vrMKPParticleRun::Fetch(const Vector3 *channel, float *x, float *y, float *z) const
{
    if (First >= 0) {
        Take_Apart(&channel[First].x, Count, x, y, z);
        return;
    }
    for (int at = 0; at < Count; ++at) {
        const Vector3 &value = channel[Entries[at].Index];
        x[at] = value.x;
        y[at] = value.y;
        z[at] = value.z;
    }
}

void vrMKPParticleRun::Fetch(const Vector2 *channel, float *x, float *y) const
{
    if (First >= 0) {
        Take_Apart(&channel[First].x, Count, x, y);
        return;
    }
    for (int at = 0; at < Count; ++at) {
        const Vector2 &value = channel[Entries[at].Index];
        x[at] = value.x;
        y[at] = value.y;
    }
}

vrMKPQuadBlock::vrMKPQuadBlock(int turn)
{
    constexpr int RIGHT[4] = {0, 0, 1, 1};
    constexpr int BOTTOM[4] = {0, 1, 1, 0};
    for (int vertex = 0; vertex < 4; ++vertex) {
        const int corner = (vertex + turn) & 3;
        VertexU[vertex] = U[RIGHT[corner]];
        VertexV[vertex] = V[BOTTOM[corner]];
        VertexColor[vertex] = Color;
        for (int axis = 0; axis < 3; ++axis) VertexNormal[vertex][axis] = Normal[axis];
    }
}

void vrMKPQuadBlock::Set_Normals(const Vector3 &normal)
{
    Fill(Normal, normal);
}

void vrMKPQuadBlock::Set_Tangents(const Vector3 &tangent)
{
    Fill(Tangent, tangent);
}

void vrMKPQuadBlock::Set_Binormals(const Vector3 &binormal)
{
    Fill(Binormal, binormal);
}

void vrMKPQuadBlock::Map_Corners(float scale, const Vector3 &offset)
{
    for (int corner = 0; corner < 4; ++corner) {
        Scale_And_Add(X[corner], Count, scale, offset.x);
        Scale_And_Add(Y[corner], Count, scale, offset.y);
        Scale_And_Add(Z[corner], Count, scale, offset.z);
    }
}

void vrMKPQuadBlock::Write(vrLitVertex *vertices) const
{
    for (int corner = 0; corner < 4; ++corner) Write_Lit(vertices + corner, *this, corner, Count / 4);
    Write_Rest(vertices, *this, Count / 4 * 4);
}

void vrMKPQuadBlock::Write(vrLitBumpVertex *vertices) const
{
    for (int corner = 0; corner < 4; ++corner) Write_Lit_Bump(vertices + corner, *this, corner, Count / 4);
    Write_Rest(vertices, *this, Count / 4 * 4);
}
