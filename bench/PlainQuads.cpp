#include "PlainQuads.h"

#include "MKLib/MKMath/Simd.h"

#include <bit>
#include <cmath>
#include <cstddef>

namespace
{

constexpr int STEPS = 4096;
constexpr int VERTEX = 9; ///< floats

struct Arrays
{
    const float *Positions, *Sizes, *UVs, *Sines, *Cosines;
    const uint32_t *Rotations, *Colors;
};

MK_INLINE void Put(float *vertex, float x, float y, float z, float u, float v, uint32_t color)
{
    vertex[0] = x;
    vertex[1] = y;
    vertex[2] = z;
    vertex[3] = 0.0f;
    vertex[4] = 0.0f;
    vertex[5] = 1.0f;
    vertex[6] = u;
    vertex[7] = v;
    vertex[8] = std::bit_cast<float>(color);
}

/// The camera looks along y. In the baseline alone: what the compiler makes of it for wider processors is slower.
void Write(float *__restrict vertices, Arrays from, int count)
{
    for (int i = 0; i < count; ++i) {
        const uint32_t step = from.Rotations[i] & (STEPS - 1);
        const float sine = from.Sines[step];
        const float cosine = from.Cosines[step];
        const float w = from.Sizes[2 * i];
        const float h = from.Sizes[2 * i + 1];
        const float x0 = -w * cosine - h * sine;
        const float z0 = h * cosine - w * sine;
        const float x1 = h * sine - w * cosine;
        const float z1 = -h * cosine - w * sine;
        const float *p = from.Positions + 3 * i;
        const float *uv = from.UVs + 4 * i;
        float *vertex = vertices + 4 * VERTEX * i;
        Put(vertex, p[0] + x0, p[1], p[2] + z0, uv[0], uv[1], from.Colors[i]);
        Put(vertex + VERTEX, p[0] + x1, p[1], p[2] + z1, uv[0], uv[1] + uv[3], from.Colors[i]);
        Put(vertex + 2 * VERTEX, p[0] - x0, p[1], p[2] - z0, uv[0] + uv[2], uv[1] + uv[3], from.Colors[i]);
        Put(vertex + 3 * VERTEX, p[0] - x1, p[1], p[2] - z1, uv[0] + uv[2], uv[1], from.Colors[i]);
    }
}

} // namespace

PlainQuads::PlainQuads(int count)
    : Count(count), Positions(static_cast<size_t>(count) * 3), Sizes(static_cast<size_t>(count) * 2, 1.0f),
      UVs(static_cast<size_t>(count) * 4, 0.5f), Rotations(static_cast<size_t>(count)),
      Colors(static_cast<size_t>(count), 0xff8040ffu), Vertices(static_cast<size_t>(count) * 4 * VERTEX)
{
    for (size_t i = 0; i < Positions.size(); ++i) Positions[i] = static_cast<float>(i % 97);
    for (size_t i = 0; i < Rotations.size(); ++i) Rotations[i] = static_cast<uint32_t>(i * 2654435761u >> 20);
    for (int i = 0; i < STEPS; ++i) {
        Sines.push_back(std::sin(static_cast<float>(i) * (6.2831853f / STEPS)));
        Cosines.push_back(std::cos(static_cast<float>(i) * (6.2831853f / STEPS)));
    }
}

void PlainQuads::Build()
{
    Write(Vertices.data(),
          {Positions.data(), Sizes.data(), UVs.data(), Sines.data(), Cosines.data(), Rotations.data(), Colors.data()},
          Count);
}

float PlainQuads::Get_Checksum() const
{
    float sum = 0.0f;
    for (size_t i = 0; i < Vertices.size(); i += 37) sum += Vertices[i];
    return sum;
}
