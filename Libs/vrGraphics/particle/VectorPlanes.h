#pragma once

/// Loops over channels of vectors, whose components lie three by three. Where the processor shuffles floats freely the
/// compiler makes good loops of them as they stand; baseline x86-64 can't, and there a block is taken apart into three
/// planes first.

#include "MKLib/MKMath/Simd.h"
#include "MKLib/MKMath/Vectors.h"

namespace Particle
{

/// The components of a block of vectors, an array each.
struct Planes
{
    static constexpr int BLOCK = 256; ///< the most vectors

    MK_INLINE Vector3 At(int i) const { return {X[i], Y[i], Z[i]}; }
    MK_INLINE void Put(int i, const Vector3 &vector)
    {
        X[i] = vector.x;
        Y[i] = vector.y;
        Z[i] = vector.z;
    }

    alignas(64) float X[BLOCK];
    alignas(64) float Y[BLOCK];
    alignas(64) float Z[BLOCK];
};

/// Vectors as they stand in a channel, to be read like `Planes`.
struct Interleaved
{
    MK_INLINE Vector3 At(int i) const { return {Values[3 * i], Values[3 * i + 1], Values[3 * i + 2]}; }

    const float *__restrict Values;
};

/// Whether loops are better off without planes. The same for the whole run of the process.
bool Shuffles_Freely();
/// Takes the components apart, into an array each.
void Split(float *x, float *y, float *z, const Vector3 *from, int count);
/// `count` is at most `Planes::BLOCK`, here and in the next.
inline void Split(Planes &to, const Vector3 *from, int count)
{
    Split(to.X, to.Y, to.Z, from, count);
}
/// False when a component is infinite or no number.
bool Join(Vector3 *to, const Planes &from, int count);
/// to += add. False when a sum is infinite or no number.
bool Add_Vectors(Vector3 *to, const Vector3 *add, int count);

/// Calls `work(points, first, count)` for blocks of the vectors, with `Planes` or `Interleaved`, of which `At(0)` is
/// the vector `first`: a call of a loop that is a template over the two.
template <typename Work>
MK_INLINE void For_Points(const Vector3 *vectors, int count, Work &&work)
{
    if (Shuffles_Freely()) {
        work(Interleaved{&vectors->x}, 0, count);
        return;
    }
    Planes planes;
    for (int first = 0; first < count; first += Planes::BLOCK) {
        const int size = count - first < Planes::BLOCK ? count - first : Planes::BLOCK;
        Split(planes, vectors + first, size);
        work(static_cast<const Planes &>(planes), first, size);
    }
}

} // namespace Particle
