#include "vrGraphics/plugins/transformers/Transformers.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrBounds.h"
#include "vrGraphics/particle/vrHWParticleBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <algorithm>
#include <cstring>

namespace
{

/// How often a tile may fit into a coordinate for the remainder to be exact in double precision: the quotient of two
/// floats well below 2^28, when rounded, never crosses a whole number.
constexpr float MAX_TILES = 1 << 27;

struct Tiling
{
    Vector2 Size;
    float Depth; ///< factor of z
    float ZOffset;
};

/// The remainder of `value` by `size` with the sign of `value`, the same as std::fmod's to the last bit. Expects less
/// than 2^28 tiles.
struct FastRemainder
{
    MK_INLINE static float Of(float value, float size)
    {
        const auto whole = static_cast<int32_t>(static_cast<double>(value) / static_cast<double>(size));
        return static_cast<float>(static_cast<double>(value) - static_cast<double>(whole) * static_cast<double>(size));
    }
};

struct AnyRemainder
{
    MK_INLINE static float Of(float value, float size) { return std::fmod(value, size); }
};

/// Into [-size / 2, size / 2], as if tiles of the size stood side by side.
template <typename Remainder>
MK_INLINE float Tile(float value, float size)
{
    const float half = size / 2.0f;
    const float shift = value >= 0.0f ? half : -half;
    return Remainder::Of(value + shift, size) - shift;
}

template <typename Remainder>
MK_INLINE void Tile_Points(float *__restrict to, const float *__restrict from, int count, const Tiling &tiling,
                           const Mat3DClass &camera)
{
    const Vector4 rx = camera.Row[0];
    const Vector4 ry = camera.Row[1];
    const Vector4 rz = camera.Row[2];
    const Vector2 size = tiling.Size;
    const float depth = tiling.Depth;
    const float offset = tiling.ZOffset;
    for (int at = 0; at < count; ++at) {
        const float x = Tile<Remainder>(from[at * 3], size.x);
        const float y = Tile<Remainder>(from[at * 3 + 1], size.y);
        const float z = from[at * 3 + 2] * depth - offset;
        to[at * 3] = rx.x * x + rx.y * y + rx.z * z + rx.w;
        to[at * 3 + 1] = ry.x * x + ry.y * y + ry.z * z + ry.w;
        to[at * 3 + 2] = rz.x * x + rz.y * y + rz.z * z + rz.w;
    }
}

MK_SIMD void Tile_Fast(float *to, const float *from, int count, const Tiling &tiling, const Mat3DClass &camera)
{
    Tile_Points<FastRemainder>(to, from, count, tiling, camera);
}

void Tile_Any(float *to, const float *from, int count, const Tiling &tiling, const Mat3DClass &camera)
{
    Tile_Points<AnyRemainder>(to, from, count, tiling, camera);
}

/// Up to which coordinate the fast remainder holds.
float Fast_Limit(float size)
{
    constexpr float GREATEST = 1e30f;
    return size < GREATEST ? std::min(size * MAX_TILES, GREATEST) : 0.0f;
}

/// Whether all of them are below the limits.
MK_SIMD bool Is_In_Range(const float *__restrict from, int count, float limitX, float limitY)
{
    int outside = 0;
    for (int at = 0; at < count; ++at)
        outside += (std::abs(from[at * 3]) < limitX ? 0 : 1) + (std::abs(from[at * 3 + 1]) < limitY ? 0 : 1);
    return outside == 0;
}

} // namespace

void vrMKPLocalTransformer::Transform_Span(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    Particle::Transform_Points(buffer.WorldPosition + span.First, buffer.Position + span.First, span.Count,
                               buffer.State->Transform);
}

void vrMKPLocalTransformer::Transform_Companion(vrMKPBuffer &buffer) const
{
    if (buffer.Companion) buffer.Companion->Update_Transform(0);
}

void vrMKPWorldTransformer::Transform_Span(vrMKPBuffer &buffer, vrMKPSpan span) const
{
    if (buffer.WorldPosition == buffer.Position) return;
    std::memcpy(static_cast<void *>(buffer.WorldPosition + span.First), buffer.Position + span.First,
                static_cast<size_t>(span.Count) * sizeof(Vector3));
}

void vrMKPWorldTransformer::Transform_Companion(vrMKPBuffer &buffer) const
{
    if (buffer.Companion) buffer.Companion->Update_Transform(1);
}

vrMKPScreenTransformer::vrMKPScreenTransformer()
{
    Width = Parameters.Add_Float(200, "Width", 500.0f, 1.0f, 2000.0f, "Width of the effect");
    Height = Parameters.Add_Float(201, "Height", 500.0f, 1.0f, 2000.0f, "Height of the effect");
    EnableZClamp = Parameters.Add_Bool(202, "Enable Z Clamp", false, "Snaps particles to the z offset.");
    ZOffset = Parameters.Add_Float(203, "Z Offset", 50.0f, 1.0f, 2000.0f, "Value to center on the Z axis");
}

void vrMKPScreenTransformer::Transform_For_View(vrMKPBuffer *buffer, const Mat3DClass *camera, vrBounds &bounds) const
{
    if (!MK_VERIFY(buffer && camera, "buffer == NULL || camera == NULL")) return;
    const Tiling tiling{
        {Width->Get_Value(), Height->Get_Value()}, EnableZClamp->Get_Value() ? 0.0f : 1.0f, ZOffset->Get_Value()};
    for (const vrMKPSpan span : buffer->Live_Spans()) {
        float *to = &buffer->WorldPosition[span.First].x;
        const float *from = &buffer->Position[span.First].x;
        const bool isFast = Is_In_Range(from, span.Count, Fast_Limit(tiling.Size.x), Fast_Limit(tiling.Size.y));
        (isFast ? Tile_Fast : Tile_Any)(to, from, span.Count, tiling, *camera);
    }
    // The camera looks down the negative of its third axis, so that this is the place in front of it.
    bounds.Center = camera->Get_Translation() - Particle::Unit(camera->Get_Axis(2)) * tiling.ZOffset;
    bounds.Extent = Vector3(VIEW_BOUNDS_EXTENT);
}
