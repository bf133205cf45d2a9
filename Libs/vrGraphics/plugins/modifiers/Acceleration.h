#pragma once

/// Accelerations of all particles alike, and the wind. Seconds and world units; particles at rest are left alone.

#include "vrGraphics/plugins/modifiers/Interpolating.h"
#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

/// An acceleration in the world's frame, or in that of the group.
struct vrMKPFramedAcceleration
{
    /// Ids in a row.
    void Add_To(ParameterListClass &parameters, int32_t firstId);
    /// As it acts on the velocities of the buffer.
    Vector3 In_Frame_Of(const vrMKPBuffer &buffer) const;

    Vector3Parameter *Acceleration;
    BoolParameter *IsLocal;
};

/// v += a dt
class vrMKPAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    vrMKPFramedAcceleration Acceleration;
};

/// The direction is constant, its factor follows a curve over the particle's time.
class vrMKPKeyedAccelerationModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    vrMKPFramedAcceleration Direction;
    KeyedFloatParameterClass *Acceleration;
};

/// An acceleration too, under which new particles are thrown onto a random point of a circle about the target.
class vrMKPCircleTargetAccelerationModifier final : public vrMKPTargetModifier
{
public:
    vrMKPCircleTargetAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// The throws draw in ring order.
    WalkType Get_Walk() const override { return WALK_WHOLE; }
    void Modify(vrMKPBuffer &buffer, int index) const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    void Throw_New_Particles(vrMKPBuffer &buffer, int index) const;

    vrMKPFramedAcceleration Acceleration;
};

class vrMKPWindAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPWindAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *WindResponse;
};

/// Moves the particles and leaves their velocities alone.
class vrMKPWindVelocityModifier final : public vrMKPModifier
{
public:
    vrMKPWindVelocityModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    RangedFloatParameter *WindResponse;
};
