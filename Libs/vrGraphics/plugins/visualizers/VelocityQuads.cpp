#include "vrGraphics/plugins/visualizers/VelocityQuads.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"

#include <cmath>

using Particle::Cross;
using Particle::Dot;
using Particle::Minus;
using Particle::Planes;
using Particle::Plus;
using Particle::Times;
using Particle::Unit;

namespace
{

/// Stretches and aspects so close to 1 change nothing.
constexpr float SCALE_TOLERANCE = 0.0001f;

struct Axes
{
    Vector3 Right;
    Vector3 Long;
    Vector3 Normal;
};

struct Direction
{
    Vector3 Unit;
    float Length;
};

/// A zero vector stays.
MK_INLINE Direction Split(const Vector3 &vector)
{
    const float length = std::sqrt(Dot(vector, vector));
    return {Times(vector, length > 0.0f ? 1.0f / length : 1.0f), length};
}

/// The axis of a quad that its stretch goes along, and the speed that the stretch goes by.
template <vrMKPAlignment ALIGNMENT>
MK_INLINE Direction Find_Motion(const Vector3 &velocity, const Vector3 &axis)
{
    const float along = Dot(velocity, axis);
    if constexpr (ALIGNMENT == vrMKPAlignment::AXIS) return {axis, std::fabs(along)};
    if constexpr (ALIGNMENT == vrMKPAlignment::PLANAR) return Split(Minus(velocity, Times(axis, along)));
    return Split(velocity);
}

/// By component: the compiler takes no loop with a copy of a whole vector in it.
MK_INLINE void Copy(Vector3 &to, const Vector3 &from)
{
    to.x = from.x;
    to.y = from.y;
    to.z = from.z;
}

template <vrMKPAlignment ALIGNMENT>
MK_INLINE void Find_Axes(Axes &axes, const Vector3 &position, const Vector3 &motion, const vrMKPVelocityView &view)
{
    if constexpr (ALIGNMENT == vrMKPAlignment::PLANAR) {
        Copy(axes.Right, Unit(Cross(motion, view.Axis)));
        Copy(axes.Long, motion);
        Copy(axes.Normal, view.Axis);
    } else if constexpr (ALIGNMENT == vrMKPAlignment::WORLD_SPACE || ALIGNMENT == vrMKPAlignment::NORMAL) {
        constexpr bool LIES_ACROSS = ALIGNMENT == vrMKPAlignment::NORMAL;
        Copy(axes.Right, Unit(Cross(motion, view.Axis)));
        Copy(LIES_ACROSS ? axes.Long : axes.Normal, Unit(Cross(axes.Right, motion)));
        Copy(LIES_ACROSS ? axes.Normal : axes.Long, motion);
    } else {
        Copy(axes.Normal, Unit(Minus(view.CameraPosition, position)));
        Copy(axes.Long, motion);
        if constexpr (ALIGNMENT == vrMKPAlignment::CAMERA) {
            Copy(axes.Right, Unit(Cross(axes.Normal, motion)));
        } else if constexpr (ALIGNMENT == vrMKPAlignment::AXIS) {
            Copy(axes.Right, Unit(Cross(motion, axes.Normal)));
        } else { // the camera's axes by the angle from its second one to the motion
            Copy(axes.Right, Minus(Times(view.CameraX, motion.y), Times(view.CameraY, motion.x)));
            Copy(axes.Long, Plus(Times(view.CameraX, motion.x), Times(view.CameraY, motion.y)));
        }
    }
}

MK_INLINE float Select(bool condition, float a, float b)
{
    return Particle::Select_Bits(Particle::As_Mask(condition), a, b);
}

template <bool IS_STEP>
MK_INLINE float Stretch(const vrMKPStretch &stretch, float speed)
{
    if constexpr (IS_STEP) return Select(speed <= stretch.SlowSpeed, stretch.Slow, stretch.Fast);
    const float t = Particle::Clamp_01((speed - stretch.SlowSpeed) / stretch.Range);
    return (1.0f - t) * stretch.Slow + t * stretch.Fast;
}

MK_INLINE void Put(float *x, float *y, float *z, int at, const Vector3 &vector)
{
    x[at] = vector.x;
    y[at] = vector.y;
    z[at] = vector.z;
}

template <vrMKPAlignment ALIGNMENT, bool IS_STEP>
MK_SIMD void Align_Block(vrMKPQuadBlock &__restrict quads, vrMKPConstVectors positions,
                         const Planes &__restrict velocities, const float *__restrict ages, vrMKPVelocityView view)
{
    const int count = quads.Count;
    for (int at = 0; at < count; ++at) {
        const Vector3 position = positions[at];
        const Direction motion = Find_Motion<ALIGNMENT>(velocities[at], view.Axis);
        Axes axes;
        Find_Axes<ALIGNMENT>(axes, position, motion.Unit, view);
        const float stretch = Stretch<IS_STEP>(view.Stretch, motion.Length);
        const float scale = Select(std::fabs(stretch - 1.0f) > SCALE_TOLERANCE, stretch, 1.0f);
        const float anchor = ages[at] * view.Anchor.Slope + view.Anchor.Offset;
        const float height = quads.Height[at];
        const Vector3 right = Times(axes.Right, quads.Width[at]);
        const Vector3 top = Times(axes.Long, (anchor + 1.0f) * height * scale);
        const Vector3 bottom = Times(axes.Long, (anchor - 1.0f) * height * scale);
        const Vector3 atLeft = Minus(position, right);
        const Vector3 atRight = Plus(position, right);
        Put(quads.X[0], quads.Y[0], quads.Z[0], at, Plus(atLeft, top));
        Put(quads.X[1], quads.Y[1], quads.Z[1], at, Plus(atLeft, bottom));
        Put(quads.X[2], quads.Y[2], quads.Z[2], at, Plus(atRight, bottom));
        Put(quads.X[3], quads.Y[3], quads.Z[3], at, Plus(atRight, top));
        Put(quads.Normal[0], quads.Normal[1], quads.Normal[2], at, axes.Normal);
        Put(quads.Tangent[0], quads.Tangent[1], quads.Tangent[2], at, axes.Right);
        Put(quads.Binormal[0], quads.Binormal[1], quads.Binormal[2], at, axes.Long);
    }
}

template <vrMKPAlignment ALIGNMENT, bool IS_STEP>
MK_SIMD void Measure_Block(VelocityQuads::Measures &__restrict measures, const float *__restrict sizes,
                           const uint32_t *__restrict ids, const Planes &__restrict velocities, int count,
                           vrMKPStretch stretches, Vector3 axis)
{
    const float minimum = measures.Aspect.Minimum;
    const float span = measures.Aspect.Maximum - minimum;
    const float multiplier = measures.SizeMultiplier;
    const float lift = measures.Lift;
    for (int at = 0; at < count; ++at) {
        const Direction motion = Find_Motion<ALIGNMENT>(velocities[at], axis);
        const float stretch = Stretch<IS_STEP>(stretches, motion.Length);
        const float aspect = Particle::Unit_ID(ids[at]) * span + minimum;
        const float radius =
            (sizes[at * 2] + sizes[at * 2 + 1]) * multiplier * Select(aspect > stretch, aspect, stretch);
        measures.Radii[at] = radius;
        measures.Lifts[at] = motion.Unit.z * radius * lift;
    }
}

MK_SIMD void Velocities_Of(Planes &__restrict velocities, vrMKPConstVectors positions, vrMKPConstVectors previous,
                           int count, float rate, Mat3DClass transform)
{
    for (int at = 0; at < count; ++at) {
        const Vector3 velocity = Times(Minus(positions[at], previous[at]), rate);
        velocities.Put(at, Particle::Turn(transform, velocity));
    }
}

template <vrMKPAlignment ALIGNMENT>
void Align_As(vrMKPQuadBlock &quads, const Planes &velocities, const float *ages, const vrMKPVelocityView &view)
{
    if (view.Stretch.Range == 0.0f)
        Align_Block<ALIGNMENT, true>(quads, quads.Position, velocities, ages, view);
    else
        Align_Block<ALIGNMENT, false>(quads, quads.Position, velocities, ages, view);
}

template <vrMKPAlignment ALIGNMENT>
void Measure_As(VelocityQuads::Measures &measures, const vrMKPBuffer &buffer, vrMKPSpan span, const Planes &velocities,
                const vrMKPVelocityView &view)
{
    const float *sizes = &buffer.Size[span.First].x;
    const uint32_t *ids = buffer.ID + span.First;
    if (view.Stretch.Range == 0.0f)
        Measure_Block<ALIGNMENT, true>(measures, sizes, ids, velocities, span.Count, view.Stretch, view.Axis);
    else
        Measure_Block<ALIGNMENT, false>(measures, sizes, ids, velocities, span.Count, view.Stretch, view.Axis);
}

} // namespace

namespace VelocityQuads
{

void Find_Velocities(Planes &velocities, const vrMKPConstVectors &positions, const vrMKPConstVectors &previous,
                     int count, float rate, const Mat3DClass &transform)
{
    Velocities_Of(velocities, positions, previous, count, rate, transform);
}

void Align(vrMKPAlignment alignment, vrMKPQuadBlock &quads, const Planes &velocities, const float *ages,
           const vrMKPVelocityView &view)
{
    switch (alignment) {
    case vrMKPAlignment::CAMERA: return Align_As<vrMKPAlignment::CAMERA>(quads, velocities, ages, view);
    case vrMKPAlignment::SCREEN: return Align_As<vrMKPAlignment::SCREEN>(quads, velocities, ages, view);
    case vrMKPAlignment::WORLD_SPACE: return Align_As<vrMKPAlignment::WORLD_SPACE>(quads, velocities, ages, view);
    case vrMKPAlignment::NORMAL: return Align_As<vrMKPAlignment::NORMAL>(quads, velocities, ages, view);
    case vrMKPAlignment::PLANAR: return Align_As<vrMKPAlignment::PLANAR>(quads, velocities, ages, view);
    case vrMKPAlignment::AXIS: return Align_As<vrMKPAlignment::AXIS>(quads, velocities, ages, view);
    }
}

void Measures::Measure(vrMKPAlignment alignment, const vrMKPBuffer &buffer, vrMKPSpan span, float rate,
                       const Mat3DClass &transform, const vrMKPVelocityView &view)
{
    Planes velocities;
    Velocities_Of(velocities, buffer.Position + span.First, buffer.PreviousPosition + span.First, span.Count, rate,
                  transform);
    if (alignment == vrMKPAlignment::AXIS)
        Measure_As<vrMKPAlignment::AXIS>(*this, buffer, span, velocities, view);
    else if (alignment == vrMKPAlignment::PLANAR)
        Measure_As<vrMKPAlignment::PLANAR>(*this, buffer, span, velocities, view);
    else
        Measure_As<vrMKPAlignment::CAMERA>(*this, buffer, span, velocities, view);
}

} // namespace VelocityQuads
