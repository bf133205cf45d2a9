#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"
#include "VertexChecks.h"

#include "vrGraphics/drivercommon/vrRenderContext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace MKTest;

namespace
{

SmartPtr<vrMKPVisualizer> Make_Billboard(const Values &values = {{"Centroid Lag", 1.0f}})
{
    SmartPtr<vrMKPVisualizer> visualizer(new vrMKPBillboardVisualizer);
    Set_Values(*visualizer, values);
    return visualizer;
}

} // namespace

// Two particles: at 0 with sizes (1, 1) and the least ID, and at 10 along x with sizes (2, 3) and the greatest.
TEST(Bounds, HoldTheParticlesAsTheyAreDrawn)
{
    struct Case
    {
        const char *name;
        vrParticleScaleType scaling;
        float multiplier, minAspect, maxAspect;
        Vector3 center, extent, centroid;
    };
    const Case cases[] = {
        // From 0 - 2 to 10 + 5.
        {"plain", PARTICLE_SCALE_NONE, 1, 1, 1, {6.5f, 0, 0}, {8.5f, 5, 5}, {5, 0, 0}},
        // The size scale of 3 comes to it: from 10 - 30 to 10 + 30.
        {"scaled at spawn", PARTICLE_SCALE_AT_SPAWN, 2, 1, 1, {10, 0, 0}, {30, 30, 30}, {5, 0, 0}},
        // The plain box times 2, and 1 along x.
        {"scaled at draw", PARTICLE_SCALE_AT_DRAW, 1, 1, 1, {14, 0, 0}, {17, 10, 10}, {11, 0, 0}},
        // Factors of 2 and 4: from 10 - 20 to 10 + 20.
        {"aspect", PARTICLE_SCALE_NONE, 1, 2, 4, {10, 0, 0}, {20, 20, 20}, {5, 0, 0}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto visualizer = Make_Billboard({{"Min Aspect Ratio", c.minAspect}, {"Max Aspect Ratio", c.maxAspect}});
        BufferBuilder built(4);
        built.Start_At(3);
        built.State.RenderSizeMultiplier = c.multiplier;
        built.State.SizeScale = 3.0f;
        built.State.PositionScale = 2.0f;
        built.State.PositionOffset = {1.0f, 0.0f, 0.0f};
        built.Buffer->ScaleType = c.scaling;
        built.Buffer->ID[built.Add()] = 0;
        const int second = built.Add({10.0f, 0.0f, 0.0f});
        built.Buffer->ID[second] = 0xffff;
        built.Buffer->Size[second] = {2.0f, 3.0f};
        vrBounds bounds;
        visualizer->Compute_Bounds(*built.Buffer, &bounds);
        Expect_Near(bounds.Center, c.center);
        Expect_Near(bounds.Extent, c.extent);
        Expect_Near(built.Buffer->Centroid, c.centroid);
    }
}

TEST(Bounds, EmptyLayerIsAPointAtItsRenderable)
{
    BufferBuilder built;
    built.State.Place_At(Mat3DClass::From_Translation({1.0f, 2.0f, 3.0f}));
    vrBounds bounds{{9.0f, 9.0f, 9.0f}, {9.0f, 9.0f, 9.0f}};
    Make_Billboard()->Compute_Bounds(*built.Buffer, &bounds);
    EXPECT_EQ(bounds.Center, Vector3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(bounds.Extent, Vector3(0.0f));
}

TEST(Bounds, SmoothedCentroidLags)
{
    struct Case
    {
        float lag, dt, distance;
        bool instant;
        float expected; ///< share of the way in one frame
    };
    const Case cases[] = {
        {0.5f, 0.25f, 8.0f, false, 0.5f}, {0.5f, 2.0f, 8.0f, false, 1.0f},    {0.0f, 0.1f, 8.0f, false, 1.0f},
        {1.0f, 0.1f, 8.0f, true, 1.0f},   {1.0f, 0.1f, 1000.0f, false, 0.1f}, {1.0f, 0.1f, 1001.0f, false, 1.0f},
    };
    for (const Case &c : cases) {
        BufferBuilder built;
        built.State.FrameTime = c.dt;
        built.State.IsInstantMove = c.instant;
        built.Buffer->Centroid = {c.distance, 0.0f, 0.0f};
        Make_Billboard({{"Centroid Lag", c.lag}})->Compute_Bounds(*built.Buffer, nullptr);
        EXPECT_FLOAT_EQ(built.Buffer->SmoothedCentroid.x, c.distance * c.expected);
    }
}

TEST(Selection, ThinsByDistanceAndDensity)
{
    struct Case
    {
        float distance, least, density;
        std::vector<uint32_t> visible; ///< slots, of the IDs below in a ring that starts at slot 3
    };
    // Thinning runs from 100 to 200. At 150 half is left, which is 32767 of 65535; at 125 the smooth step is
    // (3 - 0.5) / 16 and 0.84375 is left, which is 55295.
    const std::vector<uint32_t> all = {3, 4, 0, 1, 2};
    const Case cases[] = {
        {100.0f, 0.0f, 1.0f, all},    {200.0f, 0.0f, 1.0f, {3}},          {150.0f, 0.0f, 1.0f, {3, 4}},
        {150.0f, 0.5f, 0.1f, {3, 4}}, {125.0f, 0.0f, 1.0f, {3, 4, 0, 1}}, {0.0f, 0.0f, 0.5f, {3, 4}},
        {1e9f, 0.99995f, 0.0f, all},  {200.0f, -1.0f, 1.0f, {3}},         {NAN, 0.0f, 1.0f, {}},
    };
    for (const Case &c : cases) {
        BufferBuilder built(5);
        vrMKPBuffer &buffer = *built.Buffer;
        built.Start_At(3);
        for (const uint32_t id : {0x50000u, 32767u, 32768u, 55295u, 65535u}) buffer.ID[built.Add()] = id;
        built.State.Place_At(Mat3DClass::From_Translation({0.0f, 7.0f, 0.0f}));
        built.State.GlobalDensity = c.density;
        buffer.MinDynamicLOD = c.least;
        buffer.DynamicLODNear = 100.0f;
        buffer.DynamicLODFar = 200.0f;
        Make_Billboard()->Select_Visible_Particles(buffer,
                                                   {.Camera = Mat3DClass::From_Translation({c.distance, 7.0f, 0.0f})});
        EXPECT_EQ(std::vector<uint32_t>(buffer.Render, buffer.Render + buffer.VisibleCount), c.visible)
            << c.distance << " " << c.least << " " << c.density;
    }
}
