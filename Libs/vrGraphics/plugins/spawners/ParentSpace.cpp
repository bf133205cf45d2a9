#include "vrGraphics/plugins/spawners/ParentSpace.h"

#include <glm/geometric.hpp>

namespace
{

constexpr Mat3DClass WORLD{};

Vector3 Mix(const Vector3 &from, const Vector3 &to, float fraction)
{
    return from + (to - from) * fraction;
}

Vector3 Limit(const Vector3 &vector, float greatest)
{
    const float length = glm::length(vector);
    return length > greatest ? vector * (greatest / length) : vector;
}

Mat3DClass Turn_Along(const Vector3 &velocity, vrMKPParentAlignment alignment)
{
    return Mat3DClass::Look_Along(alignment == PARENT_ALIGNMENT_REVERSE ? -velocity : velocity);
}

} // namespace

vrMKPParentSpace::vrMKPParentSpace(const vrMKPBuffer &parent, const vrMKPBuffer &child)
    : Direction(Get_Way(parent, child)), State(*child.State)
{
}

vrMKPParentSpace::Way vrMKPParentSpace::Get_Way(const vrMKPBuffer &parent, const vrMKPBuffer &child)
{
    if (child.Is_World() && !parent.Is_World()) return TO_WORLD;
    if (!child.Is_World() && parent.Is_World()) return TO_LOCAL;
    const bool isScaled = child.Is_World() && parent.ScaleType == PARTICLE_SCALE_AT_SPAWN &&
                          child.ScaleType == PARTICLE_SCALE_AT_SPAWN && child.State->PositionScale != 0.0f &&
                          child.State->VelocityScale != 0.0f;
    return isScaled ? SCALED : SAME;
}

Vector3 vrMKPParentSpace::Map_Point(const Vector3 &point, float fraction) const
{
    switch (Direction) {
    case SCALED: return (point - State.PositionOffset) / State.PositionScale;
    case TO_WORLD:
        if (State.IsInstantMove) return State.Transform.Transform(point);
        return Mix(State.PreviousTransform.Transform(point), State.Transform.Transform(point), fraction);
    case TO_LOCAL: return State.InverseTransform.Transform(point);
    default: return point;
    }
}

Vector3 vrMKPParentSpace::Map_Velocity(const Vector3 &velocity) const
{
    switch (Direction) {
    case SCALED: return velocity / State.VelocityScale;
    case TO_WORLD: return State.Transform.Rotate(velocity);
    case TO_LOCAL: return State.InverseTransform.Rotate(velocity);
    default: return velocity;
    }
}

vrMKPParentPose::vrMKPParentPose(const vrMKPBuffer &child, vrMKPParentAlignment position, vrMKPParentAlignment velocity,
                                 vrMKPFilling &filling)
    : State(*child.State), IsWorld(child.Is_World()),
      IsAligned(position != PARENT_ALIGNMENT_NONE || velocity != PARENT_ALIGNMENT_NONE), PositionAlignment(position),
      VelocityAlignment(velocity), Rules(filling.Rules)
{
    Rules.InheritVelocity &= IsWorld;
    Rules.HiResRotate &= IsWorld;
    if (Rules.HiResRotate) Turn = RotationPath(State.PreviousTransform.Get_Rotation(), State.Transform.Get_Rotation());

    filling.Rules.VelocityFactor = 1.0f;
    filling.Rules.VelocityInLocalSpace = true;
    filling.Rules.InheritVelocity = false;
    filling.Rules.HiResRotate = false;
    if (IsWorld) filling.Transform = filling.InverseTransform = filling.PreviousTransform = &WORLD;
}

/// How the emitter is turned, as the space of the child sees it.
Mat3DClass vrMKPParentPose::Get_Emitter_Turn(float fraction) const
{
    if (!IsWorld) return {};
    if (Rules.HiResRotate) return Mat3DClass::From_Quaternion(Turn.At(fraction));
    return State.PreviousTransform;
}

void vrMKPParentPose::Move_To(const Vector3 &place, const Vector3 &velocity, float fraction)
{
    Place = place;
    const bool bothAligned = PositionAlignment != PARENT_ALIGNMENT_NONE && VelocityAlignment != PARENT_ALIGNMENT_NONE;
    const Mat3DClass emitter = bothAligned ? WORLD : Get_Emitter_Turn(fraction);
    PositionTurn = PositionAlignment == PARENT_ALIGNMENT_NONE ? emitter : Turn_Along(velocity, PositionAlignment);
    if (VelocityAlignment != PARENT_ALIGNMENT_NONE)
        VelocityTurn = VelocityAlignment == PositionAlignment ? PositionTurn : Turn_Along(velocity, VelocityAlignment);
    else if (IsWorld)
        VelocityTurn = Rules.VelocityInLocalSpace ? emitter : WORLD;
    else
        VelocityTurn = Rules.VelocityInLocalSpace ? WORLD : State.Transform;
    if (Rules.InheritVelocity) Inherited = Limit(velocity * Rules.InheritedVelocityScale, Rules.MaxInheritSpeed);
}
