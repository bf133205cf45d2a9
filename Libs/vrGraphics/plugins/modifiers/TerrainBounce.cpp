#include "vrGraphics/plugins/modifiers/TerrainBounce.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

using namespace Motion;

namespace
{

constexpr float CLEARANCE = 0.1f; ///< world units between the ground and a particle that hit it
constexpr float REST_SPEED_SQUARED = 100.0f;

/// `vector` turned about an axis of unit length.
Vector3 Turn_About(const Vector3 &vector, const Vector3 &axis, float radians)
{
    const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(radians));
    return vector * cosine + Cross(axis, vector) * sine + axis * (Dot(axis, vector) * (1.0f - cosine));
}

/// A place's height in the world, less what the ground is taken to be higher.
struct HeightOf
{
    Vector4 Row;
    float Lowered;

    MK_INLINE float At(const Vector3 &place) const
    {
        return Row.x * place.x + Row.y * place.y + Row.z * place.z + Row.w - Lowered;
    }
};

/// Marks those whose way isn't wholly above or below all heights, and answers whether there are any.
MK_SIMD bool Mark_Near_Ground(vrMKPConstVectors from, vrMKPConstVectors to, int count, HeightOf before, HeightOf now,
                              vrHeightRange heights, uint8_t *__restrict marks)
{
    uint32_t any = 0;
    for (int i = 0; i < count; ++i) {
        const float start = before.At(from[i]);
        const float end = now.At(to[i]);
        const uint32_t isLow = start < heights.Greatest ? ~0u : 0u;
        const uint32_t endsLow = end < heights.Greatest ? ~0u : 0u;
        const uint32_t isHigh = start >= heights.Least ? ~0u : 0u;
        const uint32_t endsHigh = end >= heights.Least ? ~0u : 0u;
        const uint32_t isNear = (isLow | endsLow) & (isHigh | endsHigh);
        marks[i] = static_cast<uint8_t>(isNear & 1u);
        any |= isNear;
    }
    return any != 0;
}

} // namespace

/// The parameters of one run.
struct vrMKPTerrainBounceModifier::Surface
{
    float Elasticity;
    bool Sticky;
    float Roughness;
    bool HasFriction;
    float Slide; ///< factor for the velocity along the ground
    float ZOffset;

    /// The velocity after a hit. `rests` becomes true when the particle comes to rest.
    Vector3 Bounce(const Vector3 &velocity, const Vector3 &normal, RandomClass &random, bool &rests) const
    {
        const Vector3 across = normal * Dot(normal, velocity);
        Vector3 along = velocity - across;
        if (Roughness > 0.0f) {
            const Vector3 turned = Turn_About(along, normal, random.Get_Float(0.0f, Particle::TWO_PI));
            along = along * (1.0f - Roughness) + turned * Roughness;
        }
        const Vector3 bounced = along * Slide - across * Elasticity;
        rests = HasFriction && Dot(bounced, bounced) < REST_SPEED_SQUARED;
        return rests ? Vector3(0.0f) : bounced;
    }
};

vrMKPTerrainBounceModifier::vrMKPTerrainBounceModifier()
{
    Elasticity = Parameters.Add_Float(
        200, "Elasticity", 0.0f, 0.0f, 1.0f,
        "Elasticity of terrain.\nSet this to 1 for very bouncy particles.\nSetting it to 0 will cause "
        "them to slide along the terrain once they hit.");
    Sticky = Parameters.Add_Bool(201, "Sticky", false,
                                 "Check this to make particles stick in place once they hit the terrain.");
    Roughness = Parameters.Add_Float(203, "Surface Roughness", 0.0f, 0.0f, 1.0f,
                                     "Simulate the apparent roughness of a surface by randomizing the direction and "
                                     "speed of the bounce.");
    Friction = Parameters.Add_Float(204, "Surface Friction", 0.0f, 0.0f, 10.0f,
                                    "Simulates friction of the surface.\nUnlike elasticity, this operates along the "
                                    "direction of the surface, not perpendicular to it.");
    ZOffset = Parameters.Add_Float(206, "Z Offset", 0.0f, 0.0f, 100.0f,
                                   "Adds a fixed distance from terrain to collide from.\nModify this value if "
                                   "particles seem to intersect with terrain on collision.");
}

vrMKPModifier::WalkType vrMKPTerrainBounceModifier::Get_Walk() const
{
    return !Sticky->Get_Value() && Roughness->Get_Value() > 0.0f ? WALK_WHOLE : WALK_LIVE;
}

vrMKPTerrainBounceModifier::Surface vrMKPTerrainBounceModifier::Get_Surface(float frameTime) const
{
    const float braking = frameTime * Friction->Get_Value();
    return {Elasticity->Get_Value(),
            Sticky->Get_Value(),
            Roughness->Get_Value(),
            Friction->Get_Value() > 0.0f,
            1.0f - (braking < 1.0f ? braking : 1.0f),
            ZOffset->Get_Value()};
}

void vrMKPTerrainBounceModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    if (!state.Terrain) return;
    const Surface surface = Get_Surface(state.FrameTime);
    const vrHeightRange heights = state.Terrain->Get_Height_Range();
    // Of the height in the world, and lowered.
    const Vector4 row = buffer.Is_World() ? Vector4(0.0f, 0.0f, 1.0f, 0.0f) : state.Transform.Row[2];
    const HeightOf before{row, 0.0f};
    const HeightOf now{row, surface.ZOffset};
    constexpr int BLOCK = 256;
    uint8_t candidates[BLOCK];
    bool invalid = false;
    for (int done = 0; done < span.Count; done += BLOCK) {
        const vrMKPSpan block{span.First + done, span.Count - done < BLOCK ? span.Count - done : BLOCK};
        if (!Mark_Near_Ground(buffer.PreviousPosition + block.First, buffer.Position + block.First, block.Count, before,
                              now, heights, candidates))
            continue;
        for (int at = 0; at < block.Count; ++at)
            if (candidates[at]) invalid |= Meet_Ground(buffer, block.First + at, surface);
    }
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}

/// The ground that a particle comes upon in this frame, if any. True when its velocity is infinite or no number then.
bool vrMKPTerrainBounceModifier::Meet_Ground(vrMKPBuffer &buffer, int slot, const Surface &surface) const
{
    if (buffer.Flags[slot] & PARTICLE_STOPPED) return false;
    const vrMKPRenderState &state = *buffer.State;
    const bool isWorld = buffer.Is_World();
    Vector3 from = buffer.PreviousPosition[slot];
    Vector3 to = buffer.Position[slot];
    if (!isWorld) {
        from = state.Transform.Transform(from);
        to = state.Transform.Transform(to);
    }
    to.z -= surface.ZOffset;
    Vector3 hit;
    Vector3 normal;
    if (!state.Terrain->Intersect_Segment(from, to, hit, normal)) return false;

    bool rests = surface.Sticky;
    bool isInvalid = false;
    if (!surface.Sticky) {
        const Vector3 velocity = buffer.Velocity[slot];
        const Vector3 before = isWorld ? velocity : state.Transform.Rotate(velocity);
        const Vector3 after = surface.Bounce(before, normal, state.Random, rests);
        const Vector3 turned = isWorld ? after : state.InverseTransform.Rotate(after);
        buffer.Velocity.Put(slot, turned);
        isInvalid = Is_Invalid(turned);
    }
    if (rests) {
        buffer.Flags[slot] |= PARTICLE_STOPPED;
        buffer.MayHaveStopped = true;
    }
    Vector3 place = hit + normal * CLEARANCE;
    place.z += surface.ZOffset;
    buffer.Position.Put(slot, isWorld ? place : state.InverseTransform.Transform(place));
    return isInvalid;
}
