#pragma once

/// The way from particles to the vertices of quads, in blocks that stay in the first cache: `vrMKPParticleRun` fetches
/// channels, a kind works out the corners in planes of floats, and `vrMKPQuadBlock` writes the vertices.

#include "vrGraphics/drivercommon/vrVertices.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

/// A block of particles in the order of a draw.
class vrMKPParticleRun
{
public:
    static constexpr int SIZE = 128; ///< the most particles

    /// Expects 1 to `SIZE` entries. Those of a draw that isn't sorted stand in ring order, where a block is one run of
    /// slots unless the ring's end or a gap is in it.
    vrMKPParticleRun(const vrMKPSortEntry *entries, int count, bool isSorted);

    int Get_Count() const { return Count; }
    /// Calls `work(first, count)` for slots that follow each other.
    template <typename Work>
    void For_Slots(Work &&work) const
    {
        if (First >= 0)
            work(static_cast<size_t>(First), Count);
        else
            for (int at = 0; at < Count; ++at) work(static_cast<size_t>(Entries[at].Index), 1);
    }
    /// The values of a channel, taken apart into an array for each component.
    void Fetch(const Vector2 *channel, float *x, float *y) const;
    /// `room` with the values of a channel of one word each, or the place in the channel where they are.
    template <typename T>
    const T *Fetch(const T *channel, T *room) const
    {
        static_assert(sizeof(T) == sizeof(uint32_t));
        if (First >= 0) return channel + First;
        const vrMKPSortEntry *const entries = Entries;
        const int count = Count;
        for (int at = 0; at < count; ++at) room[at] = channel[entries[at].Index];
        return room;
    }
    /// The same for a channel of vectors.
    vrMKPConstVectors Fetch(const vrMKPConstVectors &channel, Particle::Planes &room) const;

private:
    const vrMKPSortEntry *Entries;
    int Count;
    int First; ///< the slot of the first one, when the others follow it; otherwise -1
};

/// A block of quads. The vertices 0 to 3 of each are its corners: top left, bottom left, bottom right, top right.
struct vrMKPQuadBlock
{
    static constexpr int SIZE = vrMKPParticleRun::SIZE;
    using Plane = float[SIZE];

    /// All vertices of a quad take its colour, and the corners of its texture begin with that of number `turn` (0 to
    /// 3), which goes to vertex 0. Of the arrays nothing is set.
    explicit vrMKPQuadBlock(int turn = 0);
    vrMKPQuadBlock(const vrMKPQuadBlock &) = delete;
    vrMKPQuadBlock &operator=(const vrMKPQuadBlock &) = delete;

    void Set_Normals(const Vector3 &normal);
    void Set_Binormals(const Vector3 &binormal);
    void Set_Tangents(const Vector3 &tangent);
    /// All corners p become p * scale + offset.
    void Map_Corners(float scale, const Vector3 &offset);
    /// Writes 4 * Count vertices: position, normal, texture and colour.
    void Write(vrLitVertex *vertices) const;
    /// Tangent and binormal too.
    void Write(vrLitBumpVertex *vertices) const;

    int Count = 0;

    // What was fetched: the world position, half the width and height as they are drawn, the edges of the texture.
    vrMKPConstVectors Position; ///< in the channel itself, or in the room for it
    Particle::Planes PositionRoom;
    alignas(64) Plane Width;
    alignas(64) Plane Height;
    alignas(64) Plane U[2]; ///< left, right
    alignas(64) Plane V[2]; ///< top, bottom
    alignas(64) vrColor Color[SIZE];

    // What becomes vertices. X, Y, Z by corner.
    alignas(64) Plane X[4];
    alignas(64) Plane Y[4];
    alignas(64) Plane Z[4];
    alignas(64) Plane Normal[3]; ///< of quads: all corners take it
    alignas(64) Plane Tangent[3];
    alignas(64) Plane Binormal[3];
    // By vertex, the arrays that it takes these from.
    const float *VertexU[4];
    const float *VertexV[4];
    const vrColor *VertexColor[4];
    const float *VertexNormal[4][3];
};
