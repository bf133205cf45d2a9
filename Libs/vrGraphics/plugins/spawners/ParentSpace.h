#pragma once

/// Where and how fast particles start that come from the particles of another layer.

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/MKMath/RotationPath.h"
#include "vrGraphics/plugins/spawners/ParticleFilling.h"

/// Which way the z axis of a shape looks, seen from the particle of the parent.
enum vrMKPParentAlignment : int
{
    PARENT_ALIGNMENT_NONE = 0, ///< as the emitter is turned
    PARENT_ALIGNMENT_FORWARD = 1,
    PARENT_ALIGNMENT_REVERSE = 2
};

/// Maps what a parent's particles do into the space in which its child is simulated: a world-space child may follow a
/// local parent, and the other way round. For one frame.
class vrMKPParentSpace
{
public:
    vrMKPParentSpace(const vrMKPBuffer &parent, const vrMKPBuffer &child);

    /// Where a point of the parent's space is when `fraction` of the frame has passed, 0 to 1.
    Vector3 Map_Point(const Vector3 &point, float fraction) const;
    Vector3 Map_Velocity(const Vector3 &velocity) const;

private:
    enum Way
    {
        SAME,
        SCALED, ///< both in the world, at the scale that the child's filling is going to apply
        TO_WORLD,
        TO_LOCAL
    };
    static Way Get_Way(const vrMKPBuffer &parent, const vrMKPBuffer &child);

    Way Direction;
    const vrMKPRenderState &State;
};

/// What all particles of one parent's particle share, in the child's space. The filling is left nothing to transform.
class vrMKPParentPose
{
public:
    /// `rules` are the child's; they are changed so that a filling which places what this pose has placed is right.
    vrMKPParentPose(const vrMKPBuffer &child, vrMKPParentAlignment position, vrMKPParentAlignment velocity,
                    vrMKPFilling &filling);

    /// For the next particles: `place` is where the parent's particle is, `velocity` how it moves, `fraction` how much
    /// of the frame has passed.
    void Move_To(const Vector3 &place, const Vector3 &velocity, float fraction);
    /// Whether `Move_To` heeds the velocity.
    bool Needs_Velocity() const { return Rules.InheritVelocity || IsAligned; }

    Vector3 Get_Position(const Vector3 &drawn) const { return Place + PositionTurn.Rotate(drawn); }
    Vector3 Get_Velocity(const Vector3 &drawn) const
    {
        return VelocityTurn.Rotate(drawn * Rules.VelocityFactor) + Inherited;
    }

private:
    Mat3DClass Get_Emitter_Turn(float fraction) const;

    const vrMKPRenderState &State;
    bool IsWorld;
    bool IsAligned;
    vrMKPParentAlignment PositionAlignment;
    vrMKPParentAlignment VelocityAlignment;
    vrMKPFillRules Rules;
    RotationPath Turn; ///< of the emitter in this frame

    Vector3 Place{0.0f};
    Vector3 Inherited{0.0f};
    Mat3DClass PositionTurn;
    Mat3DClass VelocityTurn;
};
