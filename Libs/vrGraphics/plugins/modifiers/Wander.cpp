#include "vrGraphics/plugins/modifiers/Wander.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/plugins/modifiers/MotionLoops.h"

#include <algorithm>

namespace
{

using namespace Motion;
using Particle::Planes;

/// Half the widths of the draws.
Vector3 Half_Widths(const Vector3 &scale, float frameTime)
{
    return glm::abs(scale * frameTime * 0.5f * 100.0f);
}

Vector3 Draw(RandomClass &random, const Vector3 &halfWidths)
{
    const float x = random.Get_Float(-halfWidths.x, halfWidths.x);
    const float y = random.Get_Float(-halfWidths.y, halfWidths.y);
    const float z = random.Get_Float(-halfWidths.z, halfWidths.z);
    return {x, y, z};
}

template <bool World>
MK_INLINE bool Step(const Run &run, const Planes &ways, const Planes &turns, const vrMKPRenderState &state)
{
    const Mat3DClass toLocal = state.InverseTransform;
    const Mat3DClass toWorld = state.Transform;
    return Move(run, [&](int i, Vector3 &position, Vector3 &velocity) MK_INLINE_LAMBDA {
        const Vector3 way = ways[i];
        const Vector3 turn = turns[i];
        position = World ? Map(toWorld, Plus(Map(toLocal, position), way)) : Plus(position, way);
        velocity = World ? Turn(toWorld, Plus(Turn(toLocal, velocity), turn)) : Plus(velocity, turn);
        return TOUCHED;
    });
}
MK_SIMD bool Step_Local(const Run &run, const Planes &ways, const Planes &turns, const vrMKPRenderState &state)
{
    return Step<false>(run, ways, turns, state);
}
MK_SIMD bool Step_World(const Run &run, const Planes &ways, const Planes &turns, const vrMKPRenderState &state)
{
    return Step<true>(run, ways, turns, state);
}

} // namespace

vrMKPRandomWalkModifier::vrMKPRandomWalkModifier()
{
    PositionScale = Parameters.Add_Vector3(200, "Position Scale", Vector3(0.0f),
                                           "Size of the variations to apply to the position.");
    VelocityScale = Parameters.Add_Vector3(201, "Velocity Scale", Vector3(10.0f),
                                           "Size of the variations to apply to the velocity.");
}

void vrMKPRandomWalkModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 halfWay = Half_Widths(PositionScale->Get_Value(), state.FrameTime);
    const Vector3 halfTurn = Half_Widths(VelocityScale->Get_Value(), state.FrameTime);
    Planes ways;
    Planes turns;
    bool invalid = false;
    for (int at = 0; at < span.Count; at += Planes::BLOCK) {
        const Run run(buffer, {span.First + at, std::min(Planes::BLOCK, span.Count - at)});
        for (int i = 0; i < run.Count; ++i) {
            const bool moves = !(run.Flags[i] & PARTICLE_STOPPED);
            turns.Put(i, moves ? Draw(state.Random, halfTurn) : Vector3(0.0f));
            ways.Put(i, moves ? Draw(state.Random, halfWay) : Vector3(0.0f));
        }
        invalid |= buffer.Is_World() ? Step_World(run, ways, turns, state) : Step_Local(run, ways, turns, state);
    }
    MK_ASSERT(!invalid, INVALID_VELOCITY);
}
