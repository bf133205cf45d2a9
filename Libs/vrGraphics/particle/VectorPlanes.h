#pragma once

/// Vectors with an array for each component, as the channels of a particle buffer hold them: a loop over particles
/// takes as many at once as a register has room for, and shuffles nothing.

#include "MKLib/MKMath/Simd.h"
#include "MKLib/MKMath/Vectors.h"

/// A borrowed run of vectors.
struct vrMKPConstVectors
{
    /// By value, and not to be assigned to: vectors are written by `Put`.
    MK_INLINE const Vector3 operator[](int i) const { return {X[i], Y[i], Z[i]}; }
    MK_INLINE vrMKPConstVectors operator+(int first) const { return {X + first, Y + first, Z + first}; }

    const float *X = nullptr;
    const float *Y = nullptr;
    const float *Z = nullptr;
};

/// The same for writing.
struct vrMKPVectors
{
    MK_INLINE const Vector3 operator[](int i) const { return {X[i], Y[i], Z[i]}; }
    MK_INLINE void Put(int i, const Vector3 &vector) const
    {
        X[i] = vector.x;
        Y[i] = vector.y;
        Z[i] = vector.z;
    }
    MK_INLINE vrMKPVectors operator+(int first) const { return {X + first, Y + first, Z + first}; }
    MK_INLINE operator vrMKPConstVectors() const { return {X, Y, Z}; }

    float *X = nullptr;
    float *Y = nullptr;
    float *Z = nullptr;
};

namespace Particle
{

/// A block of vectors of its own, for what a loop leaves to the next.
struct Planes
{
    static constexpr int BLOCK = 256; ///< the most vectors

    MK_INLINE const Vector3 operator[](int i) const { return {X[i], Y[i], Z[i]}; }
    MK_INLINE void Put(int i, const Vector3 &vector)
    {
        X[i] = vector.x;
        Y[i] = vector.y;
        Z[i] = vector.z;
    }
    MK_INLINE operator vrMKPVectors() { return {X, Y, Z}; }
    MK_INLINE operator vrMKPConstVectors() const { return {X, Y, Z}; }

    alignas(64) float X[BLOCK];
    alignas(64) float Y[BLOCK];
    alignas(64) float Z[BLOCK];
};

} // namespace Particle
