#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "VertexChecks.h"
#include "VisualizerStage.h"
#include "common/Reports.h"

#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/plugins/visualizers/ParticleSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

using namespace MKTest;

namespace
{

template <typename Vertex>
void Expect_Textures(const std::vector<Vertex> &vertices, const std::vector<Vector2> &expected)
{
    ASSERT_EQ(vertices.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(vertices[i].UV, expected[i]) << i;
}

} // namespace

TEST(Billboard, TurnsSizesAndPlacesItsCornersByHand)
{
    struct Case
    {
        const char *name;
        void (*change)(VisualizerStage &);
        Vector3 topLeft, topRight;
    };
    const Case cases[] = {
        // (x, y) becomes (-y, x).
        {"half a turn, and more than one in the attribute",
         [](VisualizerStage &s) { s.Get_Buffer().Rotation[0] = 4096 + 2048; },
         {2, -1, 0},
         {-2, -1, 0}},
        // x of the quad lies along y, y along z.
        {"another camera",
         [](VisualizerStage &s) {
             s.Context.Camera = {{{0, 0, 1, 50}, {1, 0, 0, 0}, {0, 1, 0, 0}}};
         },
         {0, -2, 1},
         {0, 2, 1}},
        {"scaled at spawn",
         [](VisualizerStage &s) {
             s.Built.State.RenderSizeMultiplier = 3.0f;
             s.Built.State.SizeScale = 0.5f;
             s.Built.State.PositionScale = 100.0f; // was applied when they were born
             s.Get_Buffer().ScaleType = PARTICLE_SCALE_AT_SPAWN;
         },
         {-3, 1.5f, 0},
         {3, 1.5f, 0}},
        {"scaled at draw",
         [](VisualizerStage &s) {
             s.Built.State.SizeScale = 100.0f;
             s.Built.State.PositionScale = 2.0f;
             s.Built.State.PositionOffset = {10, 20, 30};
             s.Get_Buffer().ScaleType = PARTICLE_SCALE_AT_DRAW;
         },
         {6, 22, 30},
         {14, 22, 30}},
        // The greatest ID takes the greatest factor, for the width alone.
        {"aspect",
         [](VisualizerStage &s) {
             Set_Values(*s.Plugin, {{"Min Aspect Ratio", 2.0f}, {"Max Aspect Ratio", 4.0f}});
             s.Get_Buffer().ID[0] = 0xabcdffff;
         },
         {-8, 1, 0},
         {8, 1, 0}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        VisualizerStage stage(kvrMKPBillboardVisualizer);
        stage.Add(Vector3(0.0f));
        c.change(stage);
        const auto vertices = stage.Build<vrLitVertex>();
        ASSERT_EQ(vertices.size(), 4u);
        Expect_Near(vertices[0].Position, c.topLeft, "top left");
        Expect_Near(vertices[3].Position, c.topRight, "top right");
    }
}

// More particles than a block has, in all ways in which the slots of a block may lie: in one run, over the ring's end,
// with gaps, and in the order of a sort; and with all remainders that a group of four leaves.
TEST(Billboard, WritesEachVisibleParticleOnceInOrder)
{
    for (const std::string how : {"in a run", "over the end", "with gaps", "sorted", "bump"}) {
        for (const int count : {1, 2, 3, 127, 128, 131, 300}) {
            SCOPED_TRACE(how + ", " + std::to_string(count));
            const bool gaps = how == "with gaps";
            const bool sorts = how == "sorted";
            VisualizerStage stage(kvrMKPBillboardVisualizer, 310);
            if (how == "over the end") stage.Built.Start_At(200);
            if (gaps) {
                // Half of the IDs, from 0 up in ring order, are at most the threshold of 0.5 * 65535.
                stage.Get_Buffer().MinDynamicLOD = 0.5f;
                stage.Get_Buffer().DynamicLODNear = stage.Get_Buffer().DynamicLODFar = 0.0f;
            }
            Set_Values(*stage.Plugin, {{"Sort", sorts}, {"Sort Type", 0}, {"Enable Bump", how == "bump"}});
            std::vector<float> expected; // the x of each top right corner: right of the particle by 2
            for (int i = 0; i < count; ++i) {
                const int slot = stage.Add({static_cast<float>(i), 0.0f, static_cast<float>(-i)});
                stage.Get_Buffer().ID[slot] = gaps && i % 3 == 1 ? 0xffff : 0;
                // Sorted, the farthest comes first: the last one added.
                if (!gaps || i % 3 != 1) expected.push_back(static_cast<float>(sorts ? count - 1 - i : i) + 2.0f);
            }
            std::vector<float> actual;
            const auto take = [&](const auto &vertices) {
                for (size_t i = 3; i < vertices.size(); i += 4) actual.push_back(vertices[i].Position.x);
            };
            if (how == "bump")
                take(stage.Build<vrLitBumpVertex>());
            else
                take(stage.Build<vrLitVertex>());
            ASSERT_EQ(actual, expected);
        }
    }
}

TEST(Billboard, DrawsNothingOfWhatIsNotThere)
{
    VisualizerStage stage(kvrMKPBillboardVisualizer);
    EXPECT_TRUE(stage.Build<vrLitVertex>().empty());
    EXPECT_EQ(ParticleScratch::Get_Used_Bytes(), 0u);
    stage.Add(Vector3(0.0f));
    EXPECT_EQ(stage.Build<vrLitVertex>().size(), 4u);
    stage.Get_Buffer().Clear_Particles();
    EXPECT_TRUE(stage.Build<vrLitVertex>().empty()) << "what was pending is of a past frame";

    stage.Add(Vector3(0.0f));
    stage.Get_Visualizer().Select_Visible_Particles(stage.Get_Buffer(), stage.Context);
    stage.Get_Buffer().VisualizerData = nullptr;
    const Reports reports;
    stage.Get_Visualizer().Pre_Visualize(stage.Get_Buffer(), stage.Context);
    EXPECT_TRUE(reports.Has_Assert("data != NULL")) << reports.Get_Text();
}

TEST(Scratch, LogsTheKindThatFindsNoRoomAndRecovers)
{
    const struct
    {
        int kind;
        std::string name;
        size_t quadBytes;
    } kinds[] = {
        {kvrMKPBillboardVisualizer, "vrMKPBillboardVisualizer", 144},
        {kvrMKPXYZAlignedVisualizer, "vrMKPXYZAlignedVisualizer", 144},
        {kvrMKPInstantProjectileVisualizer, "vrMKPInstantProjectileVisualizer", 144},
        {kvrMKPSphericalBumpVisualizer, "vrMKPSphericalBumpVisualizer", 240},
        {kvrMKPVelocityAlignedVisualizer, "vrMKPVelocityAlignedVisualizer", 144},
    };
    for (const auto &row : kinds) {
        SCOPED_TRACE(row.name);
        VisualizerStage stage(row.kind, 16, 2 * row.quadBytes);
        const auto build = [&stage] {
            stage.Build<vrLitVertex>();
            return stage.Get_Data().VertexCount;
        };
        const Reports reports;
        stage.Add(Vector3(0.0f));
        stage.Add(Vector3(0.0f));
        EXPECT_EQ(build(), 8) << "exactly what there is";
        EXPECT_EQ(build(), 0);
        EXPECT_EQ(reports.Count_Logs(row.name + "::Do_Pre_Visualize: out of particle scratch memory!"), 1);
        ParticleScratch::Reset();
        EXPECT_EQ(build(), 8) << "the next frame";
    }
}

using Slots = std::vector<uint32_t>;

TEST(Sorting, PutsTheFarthestFirst)
{
    for (const int kind : {kvrMKPBillboardVisualizer, kvrMKPXYZAlignedVisualizer}) {
        VisualizerStage stage(kind, 8);
        stage.Built.Start_At(6);
        for (const float z : {1.0f, 3.0f, -2.0f, 2.0f, 20.0f}) stage.Add({0, 0, z}); // slots 6, 7, 0, 1, 2
        stage.Build<vrLitVertex>();
        EXPECT_EQ(stage.Get_Order(), (Slots{6, 7, 0, 1, 2})) << "ring order";
        Set_Values(*stage.Plugin, {{"Sort", true}, {"Sort Type", 0}});
        stage.Build<vrLitVertex>();
        // 9, 7, 12, 8 and 10 away from the camera.
        EXPECT_EQ(stage.Get_Order(), (Slots{0, 2, 6, 1, 7}));
    }
}

TEST(Sorting, StopsAtAnAge)
{
    VisualizerStage stage(kvrMKPBillboardVisualizer);
    Set_Values(*stage.Plugin, {{"Sort", true}, {"Sort Type", 1}, {"Max Sort Age", 0.5f}});
    stage.Built.State.Move_To(Mat3DClass::From_Translation({0, 0, 1}));
    stage.Add({0, 0, 1});
    stage.Add({0, 0, 2});
    stage.Build<vrLitVertex>();
    EXPECT_EQ(stage.Get_Order(), (Slots{0, 1}));
    // The renderable is 9 away: 81 - 81, and 81 - 64.
    EXPECT_EQ(stage.Get_Buffer().SortingRelativeToGroup[0], 0.0f);
    EXPECT_EQ(stage.Get_Buffer().SortingRelativeToGroup[1], 17.0f);
    // Seen from the other side, young ones change places, and old ones don't.
    stage.Context.Camera = Mat3DClass::From_Translation({0, 0, -10});
    stage.Get_Buffer().Age[0] = stage.Get_Buffer().Age[1] = 0.5f;
    stage.Build<vrLitVertex>();
    EXPECT_EQ(stage.Get_Order(), (Slots{0, 1}));
    stage.Get_Buffer().Age[0] = stage.Get_Buffer().Age[1] = 0.4f;
    stage.Build<vrLitVertex>();
    EXPECT_EQ(stage.Get_Order(), (Slots{1, 0}));
}

// Around the count up to which entries are shifted about, and far beyond it; with keys of both signs, of all
// magnitudes, and many that are equal, which keep their order.
TEST(Sorting, AgreesWithAStableSort)
{
    RandomClass random(3);
    std::vector<vrMKPSortEntry> room;
    for (const uint32_t count : {0u, 1u, 2u, 47u, 48u, 49u, 50u, 1000u, 70000u}) {
        for (const float range : {0.0f, 1.0f, 1e6f, 3e38f}) {
            std::vector<vrMKPSortEntry> entries;
            for (uint32_t i = 0; i < count; ++i)
                entries.push_back({std::floor(random.Get_Float(-8, 8)) * range / 8 + 0.0f, i});
            auto expected = entries;
            std::stable_sort(expected.begin(), expected.end());
            Sort_Entries(entries, room);
            ASSERT_EQ(entries.size(), expected.size());
            for (uint32_t i = 0; i < count; ++i)
                ASSERT_EQ(entries[i].Index, expected[i].Index) << count << " in " << range << ", at " << i;
        }
    }
}

TEST(Colors, TakeTheirPathByHand)
{
    struct Case
    {
        const char *name;
        vrColor from, to;
        RGBAClass multiplier = {};
        float tint = 1.0f;
        Vector3 scene = Vector3(1.0f);
    };
    const Case cases[] = {
        // 201 times a half is 100.5. Alpha: 255 times a half times a half is 63.75.
        {"multiplied", Pack_Color(201, 100, 255, 255), Pack_Color(100, 100, 0, 63), {0.5f, 1, 0, 0.5f}, 0.5f},
        {"past both", Pack_Color(200, 9, 99, 200), Pack_Color(255, 0, 197, 255), {1.5f, -1, 1, 2}, 1, {1, 1, 2}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        VisualizerStage stage(kvrMKPBillboardVisualizer);
        stage.Built.State.ColorMultiplier = c.multiplier;
        stage.Built.State.TintAlpha = c.tint;
        stage.Context.ParticleDiffuseMultiplier = c.scene;
        stage.Set("Scene Lighting Adj.", true);
        stage.Get_Buffer().Color[stage.Add(Vector3(0.0f))] = c.from;
        for (const vrLitVertex &vertex : stage.Build<vrLitVertex>()) EXPECT_EQ(vertex.Color, c.to);
    }
}

// The steps as they are told, one after the other, for each byte: blocks of colours must agree with them whatever
// shorter way they take.
TEST(Colors, AgreeWithTheSingleStepsForAllBytes)
{
    constexpr float UNIT = 0.003921569f;
    for (const float gamma : {1.0f, 2.2f, 0.4545f}) {
        for (const float factor : {1.0f, 0.37f, 0.0f}) {
            vrGraphicsDriver::Set_Gamma(gamma);
            VisualizerStage stage(kvrMKPBillboardVisualizer, 256);
            stage.Built.State.ColorMultiplier = {factor, factor, factor, factor};
            for (uint32_t byte = 0; byte < 256; ++byte)
                stage.Get_Buffer().Color[stage.Add(Vector3(0.0f))] = byte * 0x01010101u;
            const auto vertices = stage.Build<vrLitVertex>();
            ASSERT_EQ(vertices.size(), 1024u);
            for (uint32_t byte = 0; byte < 256; ++byte) {
                const int packed = static_cast<int>(static_cast<float>(byte) * UNIT * factor * 255.0f);
                const float light = vrGraphicsDriver::Get_Gamma_Table(0).Convert(static_cast<float>(packed) * UNIT);
                const auto color = static_cast<uint32_t>(light * 255.0f);
                EXPECT_EQ(vertices[byte * 4].Color, Pack_Color(color, color, color, static_cast<uint32_t>(packed)))
                    << byte << " times " << factor << ", gamma " << gamma;
            }
        }
    }
    vrGraphicsDriver::Set_Gamma(1.0f);
}

TEST(XYZAlign, HasAFixedRotationWhateverTheCamera)
{
    VisualizerStage stage(kvrMKPXYZAlignedVisualizer);
    stage.Set("Enable Bump", true); // which this kind draws without
    stage.Set("Rotate X", 90.0f);
    stage.Add({0, 0, 5});
    Expect_Corners(stage.Build<vrLitVertex>(), {{-2, 0, 6}, {-2, 0, 4}, {2, 0, 4}, {2, 0, 6}});
    stage.Set("Rotate Z", 90.0f); // about x first: x goes to y, z stays
    // The renderable turns all of it about x: y goes to z, z to -y.
    stage.Built.State.Place_At(Mat3DClass::From_Angles({1.5707963f, 0, 0}));
    Expect_Corners(stage.Build<vrLitVertex>(), {{0, -2, 6}, {0, -2, 4}, {0, 2, 4}, {0, 2, 6}});
    stage.Set("LocalSpace", true);
    Expect_Corners(stage.Build<vrLitVertex>(), {{0, -1, 3}, {0, 1, 3}, {0, 1, 7}, {0, -1, 7}});
}

TEST(InstantProjectile, ReachesFromSourceToTarget)
{
    VisualizerStage stage(kvrMKPInstantProjectileVisualizer);
    stage.Context.Camera = Mat3DClass::From_Translation({0, 5, 10});
    stage.Built.State.ProjectileTarget = {0, 10, 0};
    stage.Set("Texture Rotation", 1);
    stage.Add({7, 7, 7});
    // Toward the camera is z and along is y, so that the side is -x.
    auto vertices = stage.Build<vrLitVertex>();
    Expect_Corners(vertices, {{2, 10, 0}, {2, 0, 0}, {-2, 0, 0}, {-2, 10, 0}});
    Expect_Textures(vertices, {{0.25f, 0.75f}, {0.75f, 0.75f}, {0.75f, 0.5f}, {0.25f, 0.5f}});
    Expect_Near(vertices[0].Normal, {0, 0, 1}, "toward the camera");

    stage.Set("Enable Bump", true);
    const auto bump = stage.Build<vrLitBumpVertex>();
    ASSERT_EQ(bump.size(), 4u);
    Expect_Near(bump[1].Tangent, {-1, 0, 0}, "the side");
    Expect_Near(bump[1].Binormal, {0, 1, 0}, "along");

    // Grown by (2 + 1) * 2 on all sides.
    stage.Built.State.RenderSizeMultiplier = 2.0f;
    vrBounds bounds;
    stage.Get_Visualizer().Compute_Bounds(stage.Get_Buffer(), &bounds);
    Expect_Near(bounds.Center, {0, 5, 0}, "centre");
    Expect_Near(bounds.Extent, {6, 11, 6}, "extent");
}

TEST(CurvedBump, LeansNormalsAwayFromItsCentre)
{
    struct Case
    {
        int kind;
        float curvature;
        Vector3 centroid;
        Vector3 normal; ///< of the top left corner, at (-2, 1, 4)
    };
    const float s5 = 1.0f / std::sqrt(5.0f);
    const float s6 = 1.0f / std::sqrt(6.0f);
    // Half way between the camera's axis (0, 0, 1) and (-2, 1, 0) / sqrt(5) lies what is as long along both.
    const float half = std::sqrt(0.5f);
    const Case cases[] = {
        {kvrMKPSphericalBumpVisualizer, 1.0f, {-4, 0, 3}, {2 * s6, s6, s6}},
        {kvrMKPSphericalBumpVisualizer, 0.5f, {0, 0, 4}, {-2 * s5 * half, s5 * half, half}},
        {kvrMKPCylindricalBumpVisualizer, 1.0f, {0, 0, -70}, {-2 * s5, s5, 0}},
        {kvrMKPCenterToVertBumpVisualizer, 0.5f, {50, 60, 70}, {-2 * s5 * half, s5 * half, half}},
        // No way from the centre to go by, and one that cancels the axis out.
        {kvrMKPSphericalBumpVisualizer, 1.0f, {-2, 1, 4}, {0, 0, 1}},
        {kvrMKPSphericalBumpVisualizer, 0.5f, {-2, 1, 9}, {0, 0, 1}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(Plugin_Label(c.kind) + ", " + std::to_string(c.curvature));
        VisualizerStage stage(c.kind);
        stage.Set("Curvature", c.curvature);
        stage.Add({0, 0, 4});
        stage.Get_Buffer().SmoothedCentroid = c.centroid;
        const auto vertices = stage.Build<vrLitBumpVertex>();
        ASSERT_EQ(vertices.size(), 4u) << "with tangents, though \"Enable Bump\" is off";
        Expect_Near(vertices[0].Position, {-2, 1, 4}, "corner");
        Expect_Near(vertices[0].Normal, c.normal, "normal");
        Expect_Near(vertices[0].Tangent, {1, 0, 0}, "tangent");
    }
}

TEST(CurvedBump, LeansFromWhereCornersAreDrawn)
{
    VisualizerStage stage(kvrMKPSphericalBumpVisualizer);
    stage.Built.State.PositionScale = 2.0f;
    stage.Built.State.PositionOffset = {4, -2, 3};
    stage.Get_Buffer().ScaleType = PARTICLE_SCALE_AT_DRAW;
    stage.Add(Vector3(0.0f)); // its bottom right corner goes to (8, -4, 3)
    Expect_Near(stage.Build<vrLitBumpVertex>().at(2).Normal, Vector3(8, -4, 3) / std::sqrt(89.0f));
}
