#include "vrGraphics/particle/VectorPlanes.h"

#include <bit>
#include <cstdint>

namespace
{

/// Four floats at any address.
using Floats = float __attribute__((vector_size(16), aligned(4), may_alias));

const Floats &Load(const float *from)
{
    return *reinterpret_cast<const Floats *>(from);
}

void Store(float *to, const Floats &floats)
{
    *reinterpret_cast<Floats *>(to) = floats;
}

MK_SIMD void Split_Freely(float *__restrict x, float *__restrict y, float *__restrict z, const float *__restrict from,
                          int count)
{
    for (int i = 0; i < count; ++i) {
        x[i] = from[3 * i];
        y[i] = from[3 * i + 1];
        z[i] = from[3 * i + 2];
    }
}

/// What is infinite or no number less itself isn't 0, and all else is.
MK_INLINE uint32_t Invalid_Bits(float value)
{
    return std::bit_cast<uint32_t>(value - value);
}

MK_SIMD uint32_t Join_Freely(float *__restrict to, const float *__restrict x, const float *__restrict y,
                             const float *__restrict z, int count)
{
    uint32_t invalid = 0;
    for (int i = 0; i < count; ++i) {
        to[3 * i] = x[i];
        to[3 * i + 1] = y[i];
        to[3 * i + 2] = z[i];
        invalid |= Invalid_Bits(x[i]) | Invalid_Bits(y[i]) | Invalid_Bits(z[i]);
    }
    return invalid;
}

MK_SIMD uint32_t Add_Floats(float *__restrict to, const float *__restrict add, int count)
{
    uint32_t invalid = 0;
    for (int at = 0; at < count; ++at) {
        const float sum = to[at] + add[at];
        to[at] = sum;
        invalid |= Invalid_Bits(sum);
    }
    return invalid;
}

bool Can_Shuffle_Freely()
{
#if defined(__x86_64__) && !defined(MK_BASELINE_ONLY)
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl");
#else
    return false;
#endif
}

} // namespace

namespace Particle
{

bool Shuffles_Freely()
{
    static const bool shuffles = Can_Shuffle_Freely();
    return shuffles;
}

void Split(float *x, float *y, float *z, const Vector3 *from, int count)
{
    const float *source = &from->x;
    if (Shuffles_Freely()) return Split_Freely(x, y, z, source, count);
    int at = 0;
    for (; at + 4 <= count; at += 4) {
        const Floats a = Load(source + at * 3);     // x0 y0 z0 x1
        const Floats b = Load(source + at * 3 + 4); // y1 z1 x2 y2
        const Floats c = Load(source + at * 3 + 8); // z2 x3 y3 z3
        const Floats xy = __builtin_shufflevector(b, c, 2, 3, 5, 6);
        const Floats yz = __builtin_shufflevector(a, b, 1, 2, 4, 5);
        Store(x + at, __builtin_shufflevector(a, xy, 0, 3, 4, 6));
        Store(y + at, __builtin_shufflevector(yz, xy, 0, 2, 5, 7));
        Store(z + at, __builtin_shufflevector(yz, c, 1, 3, 4, 7));
    }
    for (; at < count; ++at) {
        x[at] = from[at].x;
        y[at] = from[at].y;
        z[at] = from[at].z;
    }
}

bool Join(Vector3 *to, const Planes &from, int count)
{
    float *target = &to->x;
    if (Shuffles_Freely()) return Join_Freely(target, from.X, from.Y, from.Z, count) == 0;
    Floats differences{};
    int at = 0;
    for (; at + 4 <= count; at += 4) {
        const Floats x = Load(from.X + at);
        const Floats y = Load(from.Y + at);
        const Floats z = Load(from.Z + at);
        const Floats xy = __builtin_shufflevector(x, y, 0, 2, 4, 6);
        const Floats yz = __builtin_shufflevector(y, z, 1, 3, 5, 7);
        const Floats zx = __builtin_shufflevector(z, x, 0, 2, 5, 7);
        Store(target + at * 3, __builtin_shufflevector(xy, zx, 0, 2, 4, 6));
        Store(target + at * 3 + 4, __builtin_shufflevector(yz, xy, 0, 2, 5, 7));
        Store(target + at * 3 + 8, __builtin_shufflevector(zx, yz, 1, 3, 5, 7));
        differences += (x - x) + (y - y) + (z - z); // 0, or no number for good
    }
    float sum = differences[0] + differences[1] + differences[2] + differences[3];
    for (; at < count; ++at) {
        to[at] = from.At(at);
        sum += (to[at].x - to[at].x) + (to[at].y - to[at].y) + (to[at].z - to[at].z);
    }
    return sum == 0.0f;
}

bool Add_Vectors(Vector3 *to, const Vector3 *add, int count)
{
    return Add_Floats(&to->x, &add->x, count * 3) == 0;
}

} // namespace Particle
