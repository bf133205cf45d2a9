#include "vrGraphics/plugins/modifiers/RotationModifiers.h"

#include "MKLib/MKMath/PortableMath.h"
#include "vrGraphics/particle/WholeRegisters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <bit>

namespace
{

constexpr const char *BASE_VARIATION_TEXT = "Amount of a rotation to vary by from base rotation.";

constexpr float STEPS_A_TURN = 4096.0f;
constexpr uint32_t STEP_MASK = 0xfff;

BoolParameter *Add_Reverse(ParameterListClass &parameters, int32_t id)
{
    return parameters.Add_Bool(id, "Reverse", false, "Reverses the rotation randomly based on ID");
}

/// To the nearest step, halves away from zero.
MK_INLINE uint32_t Nearest_Step(float steps)
{
    const auto whole = static_cast<int32_t>(Particle::Truncate_Low_Bits(steps));
    const float rest = steps - static_cast<float>(whole);
    return static_cast<uint32_t>(whole + (rest >= 0.5f ? 1 : 0) - (rest <= -0.5f ? 1 : 0)) & STEP_MASK;
}

// Where the turns of a particle come from, by its place in the run.

struct SameTurns
{
    float Value;

    MK_INLINE float At(int) const { return Value; }
};

template <bool Smooth>
struct LinearTurns
{
    const float *Times;
    vrMKPLinearWeight Weight;
    float Start;
    float Difference;

    MK_INLINE float At(int i) const { return Weight.At<Smooth>(Times[i]) * Difference + Start; }
};

struct GivenTurns
{
    const float *Values;

    MK_INLINE float At(int i) const { return Values[i]; }
};

// What the ID makes of them.

struct Unchanged
{
    MK_INLINE float At(float turns, uint32_t) const { return turns; }
};

/// Odd IDs turn the other way where `ReverseBit` is 1.
MK_INLINE float Reversed(float turns, uint32_t id, uint32_t reverseBit)
{
    return std::bit_cast<float>(std::bit_cast<uint32_t>(turns) ^ (id & reverseBit) << 31);
}

struct Randomized
{
    uint32_t ReverseBit;
    float Offset;

    MK_INLINE float At(float turns, uint32_t id) const
    {
        return Reversed(turns, id, ReverseBit) + (Particle::Unit_ID(id) * 2.0f - 1.0f) * Offset;
    }
};

struct Varied
{
    uint32_t ReverseBit;
    float Variation;

    MK_INLINE float At(float turns, uint32_t id) const
    {
        return Reversed(turns, id, ReverseBit) + Particle::Signed_Factor(id, Variation);
    }
};

template <typename Turns, typename Change>
MK_SIMD void Write_All(uint32_t *__restrict rotations, const uint32_t *__restrict ids, int count, Turns turns,
                       Change change)
{
    Particle::For_Whole_Registers(count, [&](int i) MK_INLINE_LAMBDA {
        rotations[i] = Particle::Encode_Rotation(change.At(turns.At(i), ids[i]));
    });
}

template <typename Turns, typename Change>
MK_SIMD void Write_Moving(uint32_t *__restrict rotations, const uint32_t *__restrict ids,
                          const uint32_t *__restrict flags, int count, Turns turns, Change change)
{
    for (int i = 0; i < count; ++i) {
        const uint32_t rotation = Particle::Encode_Rotation(change.At(turns.At(i), ids[i]));
        rotations[i] = (flags[i] & PARTICLE_STOPPED) != 0 ? rotations[i] : rotation;
    }
}

template <typename Turns, typename Change>
void Write_Rotations(vrMKPBuffer &buffer, vrMKPSpan span, bool onlyWhenMoving, const Turns &turns, const Change &change)
{
    uint32_t *rotations = buffer.Rotation + span.First;
    const uint32_t *ids = buffer.ID + span.First;
    if (onlyWhenMoving && buffer.MayHaveStopped)
        Write_Moving(rotations, ids, buffer.Flags + span.First, span.Count, turns, change);
    else
        Write_All(rotations, ids, span.Count, turns, change);
}

template <typename Turns>
void Write_Rotations(vrMKPBuffer &buffer, vrMKPSpan span, const vrMKPRotationRandomness &randomness, const Turns &turns)
{
    const bool onlyWhenMoving = randomness.Is_Only_When_Moving();
    const Randomized change{randomness.Is_Reversing() ? 1u : 0u, randomness.Get_Offset()};
    if (change.ReverseBit == 0 && change.Offset == 0.0f)
        Write_Rotations(buffer, span, onlyWhenMoving, turns, Unchanged());
    else
        Write_Rotations(buffer, span, onlyWhenMoving, turns, change);
}

/// The dome of one run of particles. Directions here are level ones, across the axis.
struct Mushroom
{
    Mat3DClass ToLocal;
    Vector3 Axis;
    Vector3 TowardCamera;
    Vector3 Across; ///< TowardCamera x Axis: where it points, particles spin forward
    float Rate;
    float Variation;
    float FrameTime;
};

template <typename A, typename B>
MK_INLINE float Dot(const A &a, const B &b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <bool World>
MK_SIMD void Spin(uint32_t *__restrict rotations, vrMKPConstVectors positions, const uint32_t *__restrict ids,
                  const float *__restrict envelope, int count, Mushroom dome)
{
    for (int i = 0; i < count; ++i) {
        const Vector3 place = positions[i];
        const Vector3 position = World ? dome.ToLocal.Transform(place) : place;
        const float height = Dot(position, dome.Axis);
        const Vector3 radial = Particle::Unit(
            {position.x - dome.Axis.x * height, position.y - dome.Axis.y * height, position.z - dome.Axis.z * height});
        const float side = 1.0f - std::fabs(Dot(dome.TowardCamera, radial));
        const float measure = Dot(dome.Across, radial) < 0.0f ? -side : side;
        const float rate =
            measure * dome.Rate + (Particle::Unit_ID(ids[i]) * 2.0f - 1.0f) * measure * dome.Rate * dome.Variation;
        const auto before = static_cast<float>(static_cast<int32_t>(rotations[i] & STEP_MASK));
        rotations[i] = Nearest_Step(before + envelope[i] * rate * 1000.0f * dome.FrameTime);
    }
}

struct Screen
{
    Mat3DClass ToWorld;
    Vector4 Right;
    Vector4 Up;
    float Base;
};

template <bool World>
MK_INLINE uint32_t Aligned_Rotation(const Vector3 &velocity, const Screen &screen)
{
    const Vector3 motion = World ? velocity : screen.ToWorld.Rotate(velocity);
    const Vector3 onScreen = Particle::Unit({Dot(screen.Right, motion), Dot(screen.Up, motion), 0.0f});
    const float angle = Portable::Quick_Arc_Tangent(onScreen.y, onScreen.x);
    return Nearest_Step((angle * 0.15915494f + screen.Base) * STEPS_A_TURN);
}

template <bool World>
MK_SIMD void Align_All(uint32_t *__restrict rotations, vrMKPConstVectors velocities, int count, Screen screen)
{
    Particle::For_Whole_Registers(
        count, [&](int i) MK_INLINE_LAMBDA { rotations[i] = Aligned_Rotation<World>(velocities[i], screen); });
}

template <bool World>
MK_SIMD void Align_Moving(uint32_t *__restrict rotations, vrMKPConstVectors velocities,
                          const uint32_t *__restrict flags, int count, Screen screen)
{
    for (int i = 0; i < count; ++i) {
        const uint32_t rotation = Aligned_Rotation<World>(velocities[i], screen);
        rotations[i] = (flags[i] & PARTICLE_STOPPED) != 0 ? rotations[i] : rotation;
    }
}

template <bool World>
void Align(vrMKPBuffer &buffer, vrMKPSpan span, bool onlyWhenMoving, const Screen &screen)
{
    uint32_t *rotations = buffer.Rotation + span.First;
    const vrMKPConstVectors velocities = buffer.Velocity + span.First;
    if (onlyWhenMoving && buffer.MayHaveStopped)
        Align_Moving<World>(rotations, velocities, buffer.Flags + span.First, span.Count, screen);
    else
        Align_All<World>(rotations, velocities, span.Count, screen);
}

} // namespace

void vrMKPRotationRandomness::Add(ParameterListClass &parameters, int32_t firstId)
{
    Reverse = Add_Reverse(parameters, firstId);
    RandomizeRotations = parameters.Add_Bool(firstId + 1, "Randomize Rotations", false,
                                             "If true, sets the initial rotation to a random value");
    Variation = parameters.Add_Float(firstId + 2, "Rotation Variation", 1.0f, 0.0f, 1.0f,
                                     "If randomize rotations active, the amount to vary rotations by.");
    OnlyWhenMoving = parameters.Add_Bool(firstId + 3, "Only When Moving", false,
                                         "Rotation only occurs while the particle is moving");
}

vrMKPLinearRotationModifier::vrMKPLinearRotationModifier()
{
    StartRotation = Parameters.Add_Float(200, "Start Rotation", 0.0f, -200.0f, 200.0f, "Starting rotation");
    EndRotation = Parameters.Add_Float(201, "End Rotation", 1.0f, -200.0f, 200.0f, "Ending rotation");
    Randomness.Add(Parameters, 202);
}

void vrMKPLinearRotationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const float *times = buffer.Time + span.First;
    const float start = StartRotation->Get_Value();
    const float difference = EndRotation->Get_Value() - start;
    if (Is_Smooth())
        Write_Rotations(buffer, span, Randomness, LinearTurns<true>{times, Get_Weight(), start, difference});
    else
        Write_Rotations(buffer, span, Randomness, LinearTurns<false>{times, Get_Weight(), start, difference});
}

vrMKPConstantRotationModifier::vrMKPConstantRotationModifier()
{
    Rotation = Parameters.Add_Float(200, "Rotation", 0.0f, 0.0f, 1.0f, "Rotation of a particle.");
    Variation = Parameters.Add_Float(201, "Rotation Variation", 0.0f, 0.0f, 1.0f, BASE_VARIATION_TEXT);
    Reverse = Add_Reverse(Parameters, 202);
}

void vrMKPConstantRotationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const SameTurns turns{Rotation->Get_Value()};
    const Varied change{Reverse->Get_Value() ? 1u : 0u, Variation->Get_Value()};
    if (change.ReverseBit == 0 && change.Variation == 0.0f)
        Write_Rotations(buffer, span, false, turns, Unchanged());
    else
        Write_Rotations(buffer, span, false, turns, change);
}

vrMKPKeyedRotationModifier::vrMKPKeyedRotationModifier()
{
    Rotation = Parameters.Add_Keyed_Float(300, "Rotation", "Rotation per second of particle");
    Randomness.Add(Parameters, 301);
}

void vrMKPKeyedRotationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    float values[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        Rotation->Evaluate_Many(buffer.Time + first, count, Is_Smooth(), values);
        Write_Rotations(buffer, {first, count}, Randomness, GivenTurns{values});
    });
}

vrMKPMushroomRotationModifier::vrMKPMushroomRotationModifier()
{
    Rate = Parameters.Add_Float(200, "Rotation Rate", 0.0f, -10.0f, 10.0f, "Rotation rate of a particle.");
    Variation = Parameters.Add_Float(201, "Rotation Variation", 0.0f, 0.0f, 1.0f, BASE_VARIATION_TEXT);
    Envelope = Parameters.Add_Keyed_Float(203, "Envelope", "Multiply the overall speed of the rotation by a curve.");
    Axis = Parameters.Add_Vector3(202, "Axis", Vector3(0.0f, 0.0f, 1.0f), "Axis forming the center of the mushroom.");
}

void vrMKPMushroomRotationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 axis = Axis->Get_Value();
    const Vector3 camera = state.InverseTransform.Transform(state.Camera.Get_Translation());
    const Vector3 toward = Particle::Unit(camera - axis * Dot(camera, axis));
    const Mushroom dome{.ToLocal = state.InverseTransform,
                        .Axis = axis,
                        .TowardCamera = toward,
                        .Across = {toward.y * axis.z - toward.z * axis.y, toward.z * axis.x - toward.x * axis.z,
                                   toward.x * axis.y - toward.y * axis.x},
                        .Rate = Rate->Get_Value(),
                        .Variation = Variation->Get_Value(),
                        .FrameTime = state.FrameTime};
    float envelope[MKP_CURVE_BLOCK];
    For_Each_Curve_Block(span, [&](int first, int count) {
        Envelope->Evaluate_Many(buffer.Time + first, count, false, envelope);
        uint32_t *rotations = buffer.Rotation + first;
        const vrMKPConstVectors positions = buffer.Position + first;
        const uint32_t *ids = buffer.ID + first;
        if (buffer.Is_World())
            Spin<true>(rotations, positions, ids, envelope, count, dome);
        else
            Spin<false>(rotations, positions, ids, envelope, count, dome);
    });
}

vrMKPScreenVelocityAlignedRotationModifier::vrMKPScreenVelocityAlignedRotationModifier()
{
    Base = Parameters.Add_Float(200, "Base", 0.0f, 0.0f, 1.0f, "Base rotation of all particles.");
    OnlyWhenMoving = Parameters.Add_Bool(201, "Only WHen Moving", false, "Only apply when moving.");
}

void vrMKPScreenVelocityAlignedRotationModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const Mat3DClass toCamera = buffer.State->Camera.Inverse();
    const Screen screen{buffer.State->Transform, toCamera.Row[0], toCamera.Row[1], Base->Get_Value()};
    if (buffer.Is_World())
        Align<true>(buffer, span, OnlyWhenMoving->Get_Value(), screen);
    else
        Align<false>(buffer, span, OnlyWhenMoving->Get_Value(), screen);
}
