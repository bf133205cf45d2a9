#include "vrGraphics/plugins/visualizers/QuadCorners.h"

#include "MKLib/MKMath/Simd.h"
#include "vrGraphics/plugins/base/SharedTables.h"

namespace
{

constexpr uint32_t LAST_STEP = vrMKPSharedTables::SIZE - 1;

/// One of the three coordinates of all corners: those of opposite ones lie at the same distance from the centre.
MK_INLINE void Place(vrMKPQuadBlock::Plane *corners, int at, float center, float topLeft, float bottomLeft)
{
    corners[0][at] = center + topLeft;
    corners[1][at] = center + bottomLeft;
    corners[2][at] = center - topLeft;
    corners[3][at] = center - bottomLeft;
}

MK_SIMD void Turn(vrMKPQuadBlock &__restrict quads, vrMKPConstVectors centers, const uint32_t *__restrict rotations,
                  const float *__restrict sines, const float *__restrict cosines, Vector3 x, Vector3 y)
{
    const int count = quads.Count;
    for (int at = 0; at < count; ++at) {
        const uint32_t step = rotations[at] & LAST_STEP;
        const float sine = sines[step];
        const float cosine = cosines[step];
        const float width = quads.Width[at];
        const float height = quads.Height[at];
        // (-w, h) and (-w, -h), by (x cos - y sin, y cos + x sin).
        const float x0 = -width * cosine - height * sine;
        const float y0 = height * cosine - width * sine;
        const float x1 = height * sine - width * cosine;
        const float y1 = -height * cosine - width * sine;
        Place(quads.X, at, centers.X[at], x.x * x0 + y.x * y0, x.x * x1 + y.x * y1);
        Place(quads.Y, at, centers.Y[at], x.y * x0 + y.y * y0, x.y * x1 + y.y * y1);
        Place(quads.Z, at, centers.Z[at], x.z * x0 + y.z * y0, x.z * x1 + y.z * y1);
    }
}

MK_SIMD void Turn_Axis(vrMKPQuadBlock &__restrict quads, const uint32_t *__restrict rotations,
                       const float *__restrict sines, const float *__restrict cosines, Vector3 x, Vector3 y)
{
    const int count = quads.Count;
    for (int at = 0; at < count; ++at) {
        const uint32_t step = rotations[at] & LAST_STEP;
        const float sine = sines[step];
        const float cosine = cosines[step];
        quads.Tangent[0][at] = x.x * cosine + y.x * sine;
        quads.Tangent[1][at] = x.y * cosine + y.y * sine;
        quads.Tangent[2][at] = x.z * cosine + y.z * sine;
    }
}

} // namespace

void Turn_Corners(vrMKPQuadBlock &quads, const uint32_t *rotations, const vrMKPQuadAxes &axes)
{
    const vrMKPSharedTables &tables = vrMKPSharedTables::Get();
    Turn(quads, quads.Position, rotations, tables.Sine.data(), tables.Cosine.data(), axes.X, axes.Y);
}

void Turn_Tangents(vrMKPQuadBlock &quads, const uint32_t *rotations, const vrMKPQuadAxes &axes)
{
    const vrMKPSharedTables &tables = vrMKPSharedTables::Get();
    Turn_Axis(quads, rotations, tables.Sine.data(), tables.Cosine.data(), axes.X, axes.Y);
}
