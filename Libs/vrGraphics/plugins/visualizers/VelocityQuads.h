#pragma once

/// The loops of the quads that follow their particle's motion. They work on the arrays of a block, and know nothing of
/// parameters.

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/visualizers/QuadBlock.h"
#include "vrGraphics/plugins/visualizers/vrMKPAspect.h"

/// How a kind chooses the axes of its quads from the place, the velocity and the view.
enum class vrMKPAlignment
{
    CAMERA,      ///< along the velocity, turned about it toward the camera
    SCREEN,      ///< along the velocity as it is seen, in the camera's plane
    WORLD_SPACE, ///< along the velocity, turned about it toward a fixed axis
    NORMAL,      ///< across the velocity
    PLANAR,      ///< along the part of the velocity that is across a fixed axis
    AXIS         ///< along a fixed axis, turned about it toward the camera
};

/// How much longer a quad is at which speed.
struct vrMKPStretch
{
    float Slow = 1.0f;
    float Fast = 1.0f;
    float SlowSpeed = 10.0f; ///< up to it all are slow
    float Range = 0.0f;      ///< from there to the speed at which all are fast; 0 makes a step of the ramp
};

/// The place of a particle in its quad, in heights above the middle: an offset and how it changes with age.
struct vrMKPAnchor
{
    float Offset = 0.0f;
    float Slope = 0.0f; ///< over a life
};
/// By the value of "Anchor Point": center, bottom, top, from bottom to top with age.
constexpr vrMKPAnchor ANCHORS[] = {{0.0f, 0.0f}, {1.0f, 0.0f}, {-1.0f, 0.0f}, {1.0f, -2.0f}};

/// What is the same for all particles of a draw.
struct vrMKPVelocityView
{
    Vector3 CameraPosition{0.0f};
    Vector3 CameraX{0.0f};
    Vector3 CameraY{0.0f};
    Vector3 Axis{0.0f}; ///< the fixed one, of unit length or zero
    vrMKPStretch Stretch;
    vrMKPAnchor Anchor;
};

namespace VelocityQuads
{

/// Units a second in the world: (position - previous) * rate, turned by the transform.
void Find_Velocities(Particle::Planes &velocities, const vrMKPConstVectors &positions,
                     const vrMKPConstVectors &previous, int count, float rate, const Mat3DClass &transform);
/// Corners, normals, tangents and binormals of `quads.Count` quads. Ages are 0 to 1, from birth to death.
void Align(vrMKPAlignment alignment, vrMKPQuadBlock &quads, const Particle::Planes &velocities, const float *ages,
           const vrMKPVelocityView &view);

/// Measures the particles of a layer's bounds by blocks.
struct Measures
{
    static constexpr int SIZE = vrMKPQuadBlock::SIZE;

    /// Fills the arrays for the particles of a span, at most `SIZE`.
    void Measure(vrMKPAlignment alignment, const vrMKPBuffer &buffer, vrMKPSpan span, float rate,
                 const Mat3DClass &transform, const vrMKPVelocityView &view);

    vrMKPAspect Aspect;
    float SizeMultiplier;
    float Lift; ///< radii from a particle to the middle of its quad, up the long axis

    float Radii[SIZE];
    float Lifts[SIZE]; ///< how much higher than its particle each middle is
};

} // namespace VelocityQuads
