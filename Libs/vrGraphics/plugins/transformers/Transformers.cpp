#include "vrGraphics/plugins/transformers/Transformers.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/particle/vrHWParticleBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace
{

/// Particles that are tiled in one way. Few enough to be in the first cache still when their reach is known.
constexpr int BLOCK = 512;

/// How often a tile may fit into a coordinate for the remainder to be exact in double precision: the quotient of two
/// floats well below 2^28, when rounded, never crosses a whole number.
constexpr float MAX_TILES = 1 << 27;
/// The same where tiles are taken off one power of two at a time, which is exact, too.
constexpr float FEW_TILES = 8.0f;

struct Tiling
{
    Vector2 Size;
    float Depth; ///< factor of z
    float ZOffset;
};

// Each is the remainder of `value` by `size` with the sign of `value`, the same as std::fmod's to the last bit.

struct FewRemainder
{
    /// Less `part` if that is no more than there is.
    MK_INLINE static float Take_Off(float value, float part) { return value >= part ? value - part : value; }
    MK_INLINE static float Of(float value, float size)
    {
        const float rest = Take_Off(Take_Off(Take_Off(std::abs(value), size * 4.0f), size * 2.0f), size);
        return std::copysign(rest, value);
    }
};

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
MK_INLINE Vector3 Place(const Vector3 &point, const Tiling &tiling, const Mat3DClass &camera)
{
    return Particle::Map(camera, {Tile<Remainder>(point.x, tiling.Size.x), Tile<Remainder>(point.y, tiling.Size.y),
                                  point.z * tiling.Depth - tiling.ZOffset});
}

template <typename Remainder>
MK_SIMD void Place_Quickly(vrMKPVectors to, vrMKPConstVectors from, int count, Tiling tiling, Mat3DClass camera)
{
    Particle::For_Whole_Registers(
        count, [&](int i) MK_INLINE_LAMBDA { to.Put(i, Place<Remainder>(from[i], tiling, camera)); });
}

/// Up to which coordinate a remainder holds that is right for so many tiles.
float Limit_For(float size, float tiles)
{
    constexpr float GREATEST = 1e30f;
    constexpr float LEAST = 1e-30f; // the tiles of a smaller size aren't exact
    return size < GREATEST && size > LEAST ? std::min(size * tiles, GREATEST) : 0.0f;
}

struct Reach
{
    float X;
    float Y;
};

/// The greatest coordinates, or infinity or no number where one is that.
MK_SIMD Reach Find_Reach(vrMKPConstVectors from, int count)
{
    // On bits, which have the order of the floats, with what is no number on top.
    int32_t greatestX = 0;
    int32_t greatestY = 0;
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        const int32_t x = std::bit_cast<int32_t>(from.X[i]) & 0x7fffffff;
        const int32_t y = std::bit_cast<int32_t>(from.Y[i]) & 0x7fffffff;
        greatestX = x > greatestX ? x : greatestX;
        greatestY = y > greatestY ? y : greatestY;
    });
    return {std::bit_cast<float>(greatestX), std::bit_cast<float>(greatestY)};
}

/// A block of particles. No comparison holds for what is no number.
void Place_Block(const vrMKPVectors &to, const vrMKPConstVectors &from, int count, const Tiling &tiling,
                 const Mat3DClass &camera)
{
    const Reach reach = Find_Reach(from, count);
    const auto isWithin = [&](float tiles) {
        return reach.X < Limit_For(tiling.Size.x, tiles) && reach.Y < Limit_For(tiling.Size.y, tiles);
    };
    if (isWithin(FEW_TILES - 1.0f)) // a half is added
        Place_Quickly<FewRemainder>(to, from, count, tiling, camera);
    else if (isWithin(MAX_TILES))
        Place_Quickly<FastRemainder>(to, from, count, tiling, camera);
    else
        for (int i = 0; i < count; ++i) to.Put(i, Place<AnyRemainder>(from[i], tiling, camera));
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
    if (buffer.Shares_World_Positions()) return;
    Particle::Copy(buffer.WorldPosition + span.First, buffer.Position + span.First, span.Count);
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
        for (int done = 0; done < span.Count; done += BLOCK) {
            const int slot = span.First + done;
            Place_Block(buffer->WorldPosition + slot, buffer->Position + slot, std::min(BLOCK, span.Count - done),
                        tiling, *camera);
        }
    }
    // The camera looks down the negative of its third axis, so that this is the place in front of it.
    bounds.Center = camera->Get_Translation() - Particle::Unit(camera->Get_Axis(2)) * tiling.ZOffset;
    bounds.Extent = Vector3(VIEW_BOUNDS_EXTENT);
}
