#include "vrGraphics/plugins/visualizers/QuadBlock.h"

#include "MKLib/MKMath/Simd.h"
#include "vrGraphics/plugins/visualizers/WordRows.h"

#include <algorithm>
#include <type_traits>

namespace
{

constexpr int SIZE = vrMKPQuadBlock::SIZE;

/// What the words of a quad's vertices come from.
template <typename Vertex>
class WordSources
{
public:
    static constexpr bool IS_BUMP = std::is_same_v<Vertex, vrLitBumpVertex>;
    static constexpr int WORDS = IS_BUMP ? LIT_BUMP_QUAD_WORDS : LIT_QUAD_WORDS;
    static_assert(WORDS * sizeof(float) == 4 * sizeof(Vertex));

    explicit WordSources(const vrMKPQuadBlock &quads)
    {
        for (int corner = 0; corner < 4; ++corner) {
            Put(quads.X[corner], quads.Y[corner], quads.Z[corner]);
            Put(quads.VertexNormal[corner][0], quads.VertexNormal[corner][1], quads.VertexNormal[corner][2]);
            Put(quads.VertexU[corner], quads.VertexV[corner]);
            if constexpr (IS_BUMP) {
                Put(quads.Tangent[0], quads.Tangent[1], quads.Tangent[2]);
                Put(quads.Binormal[0], quads.Binormal[1], quads.Binormal[2]);
            }
            Put(reinterpret_cast<const float *>(quads.VertexColor[corner])); // only ever copied
        }
    }
    void Write(Vertex *vertices, int count) const { Write_Word_Rows(vertices, Words, WORDS, count); }

private:
    template <typename... Planes>
    void Put(const Planes *...planes)
    {
        ((Words[Count++] = planes), ...);
    }

    int Count = 0;
    const float *Words[WORDS];
};

void Fill(vrMKPQuadBlock::Plane (&planes)[3], const Vector3 &value)
{
    for (int axis = 0; axis < 3; ++axis) std::fill_n(planes[axis], SIZE, value[axis]);
}

MK_SIMD void Scale_And_Add(float *__restrict values, int count, float scale, float add)
{
    for (int at = 0; at < count; ++at) values[at] = values[at] * scale + add;
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

vrMKPConstVectors vrMKPParticleRun::Fetch(const vrMKPConstVectors &channel, Particle::Planes &room) const
{
    if (First >= 0) return channel + First;
    const vrMKPConstVectors from = channel;
    for (int at = 0; at < Count; ++at) room.Put(at, from[static_cast<int>(Entries[at].Index)]);
    return room;
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
    WordSources<vrLitVertex>(*this).Write(vertices, Count);
}

void vrMKPQuadBlock::Write(vrLitBumpVertex *vertices) const
{
    WordSources<vrLitBumpVertex>(*this).Write(vertices, Count);
}
