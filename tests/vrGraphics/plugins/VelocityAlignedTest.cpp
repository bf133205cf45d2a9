#include "vrGraphics/plugins/visualizers/VelocityAligned.h"

#include "VertexChecks.h"
#include "VisualizerStage.h"

#include "vrGraphics/drivercommon/vrBounds.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace MKTest;

namespace
{

constexpr int FACING = kvrMKPVelocityAlignedVisualizer;
constexpr int UPRIGHT = kvrMKPVelocityAlignedWorldSpaceVisualizer;
constexpr int ACROSS = kvrMKPVelocityAlignedNormalVisualizer;
constexpr int PLANAR = kvrMKPVelocityAlignedPlanarVisualizer;
constexpr int AXIS = kvrMKPAxisAlignedVisualizer;
constexpr int KINDS[] = {FACING, UPRIGHT, ACROSS, PLANAR, AXIS};

/// The stage's particle, half 2 wide and 1 high, as it moves in a frame of 0.1 seconds.
struct Mover : VisualizerStage
{
    explicit Mover(int kind) : VisualizerStage(kind, 4)
    {
        Add(Vector3(0.0f));
        Move({0.0f, 20.0f, 0.0f});
    }
    void Move(const Vector3 &velocity)
    {
        Get_Buffer().PreviousPosition.Put(0, Get_Buffer().Position[0] - velocity * 0.1f);
    }
    void Stretch(float slow, float fast, float slowSpeed, float fastSpeed)
    {
        Set_Values(*Plugin, {{"Slow Stretch", slow},
                             {"Fast Stretch", fast},
                             {"Slow Stretch Speed", slowSpeed},
                             {"Fast Stretch Speed", fastSpeed}});
    }
};

/// A turn about z that takes x to y, and a place.
Mat3DClass Quarter_Turn()
{
    Mat3DClass transform;
    transform.Row[0] = {0, -1, 0, 100};
    transform.Row[1] = {1, 0, 0, 0};
    return transform;
}

} // namespace

// To the first kind's camera is z, so that the first axis, which is that way crossed with the velocity, points to the
// left of it. That of the others is along -y. What moves at more than 22 a second is stretched to the double.
TEST(VelocityAligned, LiesAlongItsMotionOrItsAxis)
{
    const struct
    {
        const char *name;
        int kind;
        Vector3 velocity, topLeft, bottomLeft, normal;
        Vector3 position = Vector3(0.0f);
    } cases[] = {
        {"up", FACING, {0, 20, 0}, {2, 1, 0}, {2, -1, 0}, {0, 0, 1}},
        // The camera is at (-0.6, 0, 0.8) from it, ten units off; crossed with y that's (-0.8, 0, -0.6).
        {"askew", FACING, {0, 20, 0}, {7.6f, 1, 3.2f}, {7.6f, -1, 3.2f}, {-0.6f, 0, 0.8f}, {6, 0, 2}},
        // Neither the cross product nor the long axis has a direction.
        {"at rest", FACING, {}, {}, {}, {0, 0, 1}},
        {"about up, wherever the camera is", UPRIGHT, {0, 20, 0}, {-2, 1, 0}, {-2, -1, 0}, {0, 0, 1}},
        {"across the velocity", ACROSS, {0, 20, 0}, {-2, 0, 1}, {-2, 0, -1}, {0, 1, 0}},
        // Of 25, 24 lie in the plane.
        {"squashed, and fast", PLANAR, {0, 24, 7}, {-2, 2, 0}, {-2, -2, 0}, {0, 0, 1}},
        {"along an axis, slow there", AXIS, {24, 0, -7}, {-2, 0, 1}, {-2, 0, -1}, {0, -1, 0}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Mover mover(c.kind);
        if (c.kind != FACING) {
            const char *axis = c.kind == AXIS ? "Axis" : "Up Axis";
            mover.Set(axis, Vector3(0, 0, 4));
            mover.Context.Camera = Mat3DClass::From_Translation({0, -30, 0});
        }
        mover.Stretch(1, 2, 22, 22);
        mover.Built.State.Place_At(Quarter_Turn());
        mover.Move(c.velocity);
        mover.Get_Buffer().WorldPosition.Put(0, c.position);
        const auto vertices = mover.Build<vrLitVertex>();
        ASSERT_EQ(vertices.size(), 4u);
        Expect_Near(vertices[0].Position, c.topLeft, "top left");
        Expect_Near(vertices[1].Position, c.bottomLeft, "bottom left");
        for (const vrLitVertex &vertex : vertices) Expect_Near(vertex.Normal, c.normal, "normal");
    }
}

TEST(VelocityAligned, HasItsAspectInTheWidthAndItsStretchInTheHeight)
{
    Mover mover(FACING);
    mover.Set("Min Aspect Ratio", 3.0f);
    mover.Set("Max Aspect Ratio", 3.0f);
    mover.Stretch(1, 5, 10, 10);
    mover.Built.State.PositionScale = 2.0f;
    mover.Built.State.PositionOffset = {10, 20, 30};
    mover.Get_Buffer().ScaleType = PARTICLE_SCALE_AT_DRAW;
    Expect_Corners(mover.Build<vrLitVertex>(), {{22, 30, 30}, {22, 10, 30}, {-2, 10, 30}, {-2, 30, 30}});
}

// x of the camera is y of the world, y is z and z is x. Turned by a sine of -1: the long axis is the camera's first,
// the other one its second, downward.
TEST(VelocityAligned, LiesInTheScreensPlaneWhereParticlesMoveOnIt)
{
    Mover mover(FACING);
    mover.Get_Buffer().TransformType = MKP_TRANSFORM_SCREEN;
    mover.Built.State.Place_At(Quarter_Turn()); // doesn't matter
    mover.Context.Camera = {{{0, 0, 1, 50}, {1, 0, 0, 0}, {0, 1, 0, 0}}};
    mover.Move({20, 0, 0});
    const auto vertices = mover.Build<vrLitVertex>();
    Expect_Corners(vertices, {{0, 1, 2}, {0, -1, 2}, {0, -1, -2}, {0, 1, -2}});
    Expect_Near(vertices[0].Normal, {1, 0, 0}, "normal");
}

TEST(VelocityAligned, StretchesWithItsSpeed)
{
    const struct
    {
        const char *name;
        float slow, fast, slowSpeed, fastSpeed, speed, expected;
    } cases[] = {
        {"a step, up to its speed", 2, 3, 10, 10, 10, 2},
        {"halfway", 1, 3, 10, 30, 20, 2},
        {"so near 1 that it's none", 1.00005f, 1.00005f, 10, 10, 20, 1},
    };
    for (const auto &c : cases) {
        Mover mover(FACING);
        mover.Stretch(c.slow, c.fast, c.slowSpeed, c.fastSpeed);
        mover.Move({0, c.speed, 0});
        const auto vertices = mover.Build<vrLitVertex>();
        ASSERT_EQ(vertices.size(), 4u);
        EXPECT_NEAR(vertices[0].Position.y, c.expected, c.expected == 1 ? 0.0f : 1e-5f) << c.name;
    }
}

TEST(VelocityAligned, HangsOnItsAnchor)
{
    const struct
    {
        int anchor;
        float age, top, bottom;
    } cases[] = {{1, 0.25f, 2, 0}, {2, 0.25f, 0, -2}, {3, 0.25f, 1.5f, -0.5f}, {3, 1.0f, 0, -2}};
    for (const auto &c : cases) {
        Mover mover(FACING);
        mover.Set("Anchor Point", c.anchor);
        mover.Get_Buffer().Time[0] = c.age;
        Expect_Corners(mover.Build<vrLitVertex>(),
                       {{2, c.top, 0}, {2, c.bottom, 0}, {-2, c.bottom, 0}, {-2, c.top, 0}});
    }
}

TEST(VelocityAligned, DrawsNothingWithoutAFrameTime)
{
    for (const int kind : KINDS) {
        Mover mover(kind);
        EXPECT_EQ(mover.Build<vrLitVertex>().size(), 4u);
        mover.Built.State.FrameTime = 0.0f;
        EXPECT_TRUE(mover.Build<vrLitVertex>().empty()) << kind;
    }
    Mover kite(kvrMKPKiteVisualizer);
    EXPECT_TRUE(kite.Build<vrLitVertex>().empty());
}

// Two hundred particles with all there is, in a ring that wraps: each quad is as if it were alone.
TEST(VelocityAligned, QuadsDontDependOnTheirNeighbours)
{
    constexpr int COUNT = 200;
    for (const int kind : KINDS) {
        VisualizerStage many(kind, COUNT + 3);
        Mover one(kind);
        many.Built.Start_At(100);
        RandomClass random(9);
        const auto spread = [&] {
            return Vector3(random.Get_Float(-9, 9), random.Get_Float(-9, 9), random.Get_Float(-9, 9));
        };
        for (int i = 0; i < COUNT; ++i) {
            const int slot = many.Add(spread());
            many.Get_Buffer().PreviousPosition.Put(slot, spread());
            many.Get_Buffer().Time[slot] = random.Get_Float(0, 1);
        }
        for (VisualizerStage *stage : {&many, static_cast<VisualizerStage *>(&one)}) {
            stage->Set("Fast Stretch Speed", 90.0f);
            stage->Set("Fast Stretch", 4.0f);
            stage->Set("Anchor Point", 3);
        }
        const auto vertices = many.Build<vrLitVertex>();
        ASSERT_EQ(vertices.size(), 4u * COUNT);
        for (int i = 0; i < COUNT; ++i) {
            const int slot = (100 + i) % (COUNT + 3);
            one.Get_Buffer().Copy_Particle_From(slot, 0, many.Get_Buffer());
            const auto alone = one.Build<vrLitVertex>();
            for (size_t corner = 0; corner < 4; ++corner) {
                EXPECT_EQ(vertices[4 * static_cast<size_t>(i) + corner].Position, alone[corner].Position);
                EXPECT_EQ(vertices[4 * static_cast<size_t>(i) + corner].Normal, alone[corner].Normal);
            }
        }
    }
}

// Width and height come to 3. Those of more than 10 a second are stretched to the double.
TEST(VelocityBounds, HoldTheStretchAndTheAnchor)
{
    const float level = 20 * std::sqrt(3.0f); // rises by half of its way with 20 upward
    const struct
    {
        const char *name;
        int kind, anchor;
        Vector3 velocity;
        float maxAspect, frameTime, height, radius;
    } cases[] = {
        {"a fast one", FACING, 0, {0, 20, 0}, 1, 0.1f, 0, 6},
        {"wider than long", FACING, 0, {0, 20, 0}, 5, 0.1f, 0, 15},
        {"by the bottom, rising", FACING, 1, {0, level, 20}, 1, 0.1f, 3, 6},
        // The way of 0.2 counts as 20 a second.
        {"without a frame time", FACING, 0, {0, 2, 0}, 1, 0, 0, 6},
        {"across the axis", AXIS, 1, {0, 20, 0}, 1, 0.1f, 3, 3},
        {"down along the axis", AXIS, 1, {0, 0, -20}, 1, 0.1f, 6, 6},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Mover mover(c.kind);
        mover.Stretch(1, 2, 10, 10);
        mover.Set("Anchor Point", c.anchor);
        mover.Set("Max Aspect Ratio", c.maxAspect);
        mover.Get_Buffer().ID[0] = 0xffff;
        mover.Move(c.velocity);
        mover.Built.State.FrameTime = c.frameTime;
        vrBounds bounds;
        mover.Get_Visualizer().Compute_Bounds(mover.Get_Buffer(), &bounds);
        Expect_Near(bounds.Center, {0, 0, c.height}, "center");
        Expect_Near(bounds.Extent, Vector3(c.radius), "extent");
    }
}

// More than a block, in both runs of the ring, in a frame that takes x to y, twice as large.
TEST(VelocityBounds, HoldAllParticles)
{
    VisualizerStage stage(FACING, 400);
    stage.Built.Start_At(250);
    stage.Built.State.RenderSizeMultiplier = 2.0f;
    stage.Built.State.Place_At(Quarter_Turn());
    stage.Get_Buffer().TransformType = MKP_TRANSFORM_LOCAL;
    for (int i = 0; i < 390; ++i) stage.Add({static_cast<float>(i), 0, 0});
    vrBounds bounds;
    stage.Get_Visualizer().Compute_Bounds(stage.Get_Buffer(), &bounds);
    Expect_Near(bounds.Center, {194.5f, 0, 0}, "center");
    Expect_Near(bounds.Extent, {200.5f, 6, 6}, "extent");
    Expect_Near(stage.Get_Buffer().Centroid, {194.5f, 0, 0}, "centroid", 1e-3f);
}
