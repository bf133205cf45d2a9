#pragma once

/// What the plain loops share.

#include "BehaviourBench.h"

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/ParticleMath.h"

#include <glm/geometric.hpp>

#include <bit>

#define MK_LOOP __attribute__((always_inline))

namespace Behaviour
{

/// A parameter, of which the compiler can't make a constant.
template <typename T>
T Given(T value)
{
    asm volatile("" : "+m"(value));
    return value;
}

/// How far a particle is on the way between two times.
struct Way
{
    float Start = Given(0.0f);
    float End = Given(1.0f);
    float Scale = 1.0f / (End - Start);

    MK_INLINE float At(float time) const { return Particle::Clamp_01((time - Start) * Scale); }
    MK_INLINE float Smooth_At(float time) const
    {
        return Particle::Smooth_Step(Particle::Clamp_01((time - Start) / (End - Start)));
    }
};

/// `work(i)` for each of them, none of which touches what another one reads or writes.
template <typename Work>
MK_SIMD void Each(int count, Work work)
{
#pragma GCC ivdep
    for (int i = 0; i < count; ++i) work(i);
}

MK_INLINE float Dot(const Vector3 &a, const Vector3 &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
MK_INLINE Vector3 Cross(const Vector3 &a, const Vector3 &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
MK_INLINE float Length(const Vector3 &a)
{
    return std::sqrt(Dot(a, a));
}
MK_INLINE Vector3 Times(const Vector3 &a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}
MK_INLINE Vector3 Plus(const Vector3 &a, const Vector3 &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
MK_INLINE Vector3 Minus(const Vector3 &a, const Vector3 &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
MK_INLINE Vector3 Choose(bool first, const Vector3 &a, const Vector3 &b)
{
    return {first ? a.x : b.x, first ? a.y : b.y, first ? a.z : b.z};
}
MK_INLINE Vector3 Map(const Mat3DClass &m, const Vector3 &p)
{
    return {m.Row[0].x * p.x + m.Row[0].y * p.y + m.Row[0].z * p.z + m.Row[0].w,
            m.Row[1].x * p.x + m.Row[1].y * p.y + m.Row[1].z * p.z + m.Row[1].w,
            m.Row[2].x * p.x + m.Row[2].y * p.y + m.Row[2].z * p.z + m.Row[2].w};
}
MK_INLINE Vector3 Turn(const Mat3DClass &m, const Vector3 &d)
{
    return {m.Row[0].x * d.x + m.Row[0].y * d.y + m.Row[0].z * d.z,
            m.Row[1].x * d.x + m.Row[1].y * d.y + m.Row[1].z * d.z,
            m.Row[2].x * d.x + m.Row[2].y * d.y + m.Row[2].z * d.z};
}

/// Three arrays as one of vectors.
struct Vectors
{
    float *X, *Y, *Z;

    MK_INLINE Vector3 At(int i) const { return {X[i], Y[i], Z[i]}; }
    MK_INLINE void Put(int i, const Vector3 &vector) const
    {
        X[i] = vector.x;
        Y[i] = vector.y;
        Z[i] = vector.z;
    }
};
inline Vectors Positions(const PlainParticles &p)
{
    return {p.X, p.Y, p.Z};
}
inline Vectors Velocities(const PlainParticles &p)
{
    return {p.VX, p.VY, p.VZ};
}
inline Vectors World_Positions(const PlainParticles &p)
{
    return {p.WX, p.WY, p.WZ};
}

/// velocity = `change(i, position, velocity)`
template <typename Change>
void Push(const PlainParticles &p, Change change)
{
    Each(p.Count, [position = Positions(p), velocity = Velocities(p), change](int i)
                      MK_LOOP { velocity.Put(i, change(i, position.At(i), velocity.At(i))); });
}

/// A curve through the eight keys that the cases have.
template <typename At>
struct Curve
{
    float Values[KEY_COUNT];
    float Times[KEY_COUNT];

    explicit Curve(At at)
    {
        for (int key = 0; key < KEY_COUNT; ++key) {
            Times[key] = static_cast<float>(key) / (KEY_COUNT - 1);
            Values[key] = at(key);
        }
    }
    /// Keys at or below the time.
    MK_INLINE int Place(float time) const
    {
        int place = 0;
        for (int key = 0; key < KEY_COUNT; ++key) place += time < Times[key] ? 0 : 1;
        return place;
    }
    MK_INLINE int Low(int place) const { return place > 0 ? place - 1 : 0; }
    MK_INLINE int High(int place) const { return place < KEY_COUNT ? place : KEY_COUNT - 1; }
    MK_INLINE float Fraction(float time, int place) const
    {
        const float begin = Times[Low(place)];
        return Particle::Clamp_01((time - begin) / (Times[High(place)] - begin));
    }
    MK_INLINE float At_Time(float time) const
    {
        const int place = Place(time);
        const float from = Values[Low(place)];
        return from + Fraction(time, place) * (Values[High(place)] - from);
    }
};

} // namespace Behaviour
