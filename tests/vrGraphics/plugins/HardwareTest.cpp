#include "vrGraphics/plugins/ensembles/Hardware.h"

#include "NullDraw.h"
#include "SpawnRun.h"
#include "VertexChecks.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace MKTest;

namespace
{

/// A hardware spawner with its particles: from the origin, 10 a second, with a life of a second and no acceleration.
struct HardwareRun : SpawnRun
{
    HardwareRun() : SpawnRun(kvrMKPHardwareSpawner)
    {
        Set("Particle Count", 10).Set("Particle Lifetime", 1);
        Set("Acceleration", Vector3(0.0f));
    }
    vrHWParticles &Particles()
    {
        if (!Buffer->Companion) Buffer->Companion = Spawner().Get_Buffer_Companion(*Buffer);
        return static_cast<vrHWParticles &>(*Buffer->Companion);
    }
    bool Step(float dt) { return Particles().Update(dt, Vector3(0.0f), Vector3(0.0f)); }
    int Count() { return Particles().Get_Particles().ActiveCount; }
    std::vector<float> Living_Ages()
    {
        const vrMKPBuffer &living = Particles().Get_Particles();
        std::vector<float> ages;
        for (const vrMKPSpan span : living.Live_Spans())
            ages.insert(ages.end(), living.Age + span.First, living.Age + span.First + span.Count);
        return ages;
    }
    Vector3 First_Position() { return Particles().Get_Particles().Position[Particles().Get_Particles().Head]; }
};

void Expect_Ages(HardwareRun &run, const std::vector<float> &expected)
{
    const auto ages = run.Living_Ages();
    ASSERT_EQ(ages.size(), expected.size());
    for (size_t i = 0; i < ages.size(); ++i) EXPECT_NEAR(ages[i], expected[i], 1e-5f) << i;
}

} // namespace

TEST(HardwareSpawner, SpawnsAtItsRateFromTheFirstMomentOn)
{
    HardwareRun run;
    EXPECT_TRUE(run.Step(0.25f));
    Expect_Ages(run, {0.25f, 0.15f, 0.05f});
    EXPECT_FALSE(run.Step(0.1f));
    Expect_Ages(run, {0.35f, 0.25f, 0.15f, 0.05f});
    EXPECT_TRUE(run.Step(0.8f)) << "a cycle is a life long";
    EXPECT_FALSE(run.Step(-1.0f));
    EXPECT_EQ(run.Count(), 10);
}

TEST(HardwareSpawner, BurstsOnceACycle)
{
    HardwareRun run;
    run.Set("Enable Bursting", true).Set("Particle Count", 3.9f).Set("Start Delay", 0.5f);
    EXPECT_FALSE(run.Step(0.4f));
    EXPECT_EQ(run.Count(), 0);
    EXPECT_TRUE(run.Step(0.2f));
    Expect_Ages(run, {0.1f, 0.1f, 0.1f});
    EXPECT_TRUE(run.Step(5.2f)) << "of the cycles of a long frame the last one counts";
    Expect_Ages(run, {0.3f, 0.3f, 0.3f});
}

TEST(HardwareSpawner, PlaysToItsEndPastTheStopTime)
{
    HardwareRun run;
    run.Set("Stop Time", 0.3f);
    run.Step(0.45f);
    Expect_Ages(run, {0.45f, 0.35f, 0.25f});
    EXPECT_FALSE(run.Particles().Is_Finished());
    EXPECT_FALSE(run.Step(0.75f)) << "no cycle begins any more";
    EXPECT_EQ(run.Count(), 0);
    EXPECT_TRUE(run.Particles().Is_Finished());

    HardwareRun stopped;
    stopped.Step(0.15f);
    stopped.Particles().Stop_Spawning();
    EXPECT_FALSE(stopped.Step(0.3f));
    EXPECT_EQ(stopped.Count(), 2);
    EXPECT_FALSE(stopped.Step(2.0f));
    EXPECT_EQ(stopped.Count(), 0);
    EXPECT_FALSE(stopped.Particles().Is_Finished());
}

TEST(HardwareSpawner, ValuesWithoutAMeaningSpawnNothing)
{
    for (const char *name : {"Particle Count", "Particle Lifetime"})
        for (const float value : {0.0f, -5.0f, NOT_A_NUMBER}) {
            HardwareRun run;
            run.Set(name, value);
            EXPECT_FALSE(run.Step(0.5f));
            EXPECT_EQ(run.Count(), 0) << name << " " << value;
        }
    HardwareRun endless;
    endless.Set("Particle Count", 1e30f).Set("Particle Lifetime", INF).Set("Start Delay", -INF);
    endless.Step(0.5f);
    EXPECT_LE(endless.Count(), vrHWParticles::MAX_PARTICLES);
}

// 10 t - t^2, whatever the steps are, the first of which is in the frame of the birth.
TEST(HardwareSpawner, ParticlesFallByTheFormula)
{
    for (const int steps : {1, 2, 7}) {
        HardwareRun run;
        run.Set("Enable Bursting", true).Set("Velocity", Vector3{0, 1, 10});
        run.Set("Acceleration", Vector3{0, 0, -2});
        for (int i = 0; i < steps; ++i) run.Step(0.5f / static_cast<float>(steps));
        Expect_Near(run.First_Position(), {0, 0.5f, 4.75f}, "position");
    }
}

TEST(HardwareSpawner, ParticlesAreDrawnAndTurned)
{
    const struct
    {
        const char *name;
        Values values;
        Vector3 expected; ///< from (6, 0, 8), in a tenth of a second
    } cases[] = {
        // 0.5 * 10 * 0.01 along (0.6, 0, 0.8), inward.
        {"attracted", {{"Attract acceleration", -10}}, {5.97f, 0, 7.96f}},
        {"off the axis", {{"Vortex Attraction", 10}, {"Vortex Axis", Vector3(-3, 0, 0)}}, {6, 0, 8.05f}},
        // 6 along the circle of 6: a tangent of 1.
        {"turned", {{"Vortex Rotation", 60}}, {6 * std::sqrt(0.5f), 6 * std::sqrt(0.5f), 8}},
        {"without an axis", {{"Vortex Rotation", 60}, {"Vortex Axis", Vector3(0.0f)}}, {6, 0, 8}},
    };
    for (const auto &c : cases) {
        HardwareRun run;
        run.Set("Position", Vector3{6, 0, 8});
        Set_Values(*run.Plugin, c.values);
        run.Step(0.1f);
        Expect_Near(run.First_Position(), c.expected, c.name);
    }
}

namespace
{

constexpr const char *EFFECT = "technique VORENENGINE_LOD_0 { pass { vertex { v } fragment { f } } }";

/// Three particles, born with an interval of 0.4 seconds, at the ages 0.25, 0.5 and 0.75 of a life of 1.6, which move
/// up from (5, 0, 0); half 2 high and 1 wide.
class HardwareDraw : public NullDraw
{
protected:
    HardwareDraw() : Stage(kvrMKPHardwareBillboardVisualizer)
    {
        Folder.Write("HWParticleBillboard.mks", EFFECT);
        Camera.Set_Transform(Mat3DClass::From_Translation({5.0f, 0.0f, 10.0f}));
        Stage.Set("Aspect Ratio", 0.5f);
        for (const char *name : {"Start Size", "Mid Size", "End Size"}) Stage.Set(name, 2.0f);
        Run.Set("Particle Count", 2.5f).Set("Particle Lifetime", 1.6f).Set("Stop Time", 1.0f);
        Run.Set("Position", Vector3{5, 0, 0}).Set("Velocity", Vector3{0, 1e-6f, 0});
        Run.Step(1.2f);
        Stage.Get_Buffer().Companion = Run.Buffer->Companion;
    }
    ~HardwareDraw() override
    {
        Run.Buffer->Companion = nullptr;
        Stage.Get_Buffer().Companion = nullptr;
    }
    const vrNullDrawRecord &Draw()
    {
        vrNullDriverMethods::Clear_Draws();
        Stage.Get_Visualizer().Load_Assets(false, nullptr);
        NullDraw::Draw(Stage);
        if (Draws().size() != 1) throw std::runtime_error("not one draw");
        return Draws().front();
    }
    std::vector<vrLitVertex> Vertices() { return Draw().Get_Vertices<vrLitVertex>(); }
    VisualizerStage Stage;
    HardwareRun Run;
};

} // namespace

TEST_F(HardwareDraw, IsAQuadInItsRenderablesFrame)
{
    Stage.Built.State.Place_At(Mat3DClass::From_Translation({0, 0, 4}));
    const vrNullDrawRecord draw = Draw();
    EXPECT_EQ(draw.World, Stage.Built.State.Transform);
    EXPECT_EQ(draw.Kind, VR_PRIMITIVE_QUADS);
    const auto vertices = draw.Get_Vertices<vrLitVertex>();
    ASSERT_EQ(vertices.size(), 12u);
    Expect_Corners(std::vector(vertices.begin(), vertices.begin() + 4), {{4, 2, 0}, {4, -2, 0}, {6, -2, 0}, {6, 2, 0}});
    EXPECT_EQ(vertices[0].UV, Vector2(0, 0));
    EXPECT_EQ(vertices[2].UV, Vector2(1, 1));
}

// Upward and toward the camera's z: the first axis points to -x.
TEST_F(HardwareDraw, FollowsItsMotionAndHangsOnItsAnchor)
{
    Stage.Set("Geometry Mode", 1);
    const auto vertices = Vertices();
    Expect_Corners(std::vector(vertices.begin(), vertices.begin() + 4), {{6, 2, 0}, {6, -2, 0}, {4, -2, 0}, {4, 2, 0}});
    Stage.Set("Geometry Mode", 0);
    Stage.Set("Anchor Point", 3); // the first one is at 0.75 of its life
    EXPECT_NEAR(Vertices()[0].Position.y, 1.0f, 1e-5f);
    EXPECT_NEAR(Vertices()[1].Position.y, -3.0f, 1e-5f);
}

TEST_F(HardwareDraw, GoesThroughThreeKeysOfColorAndSize)
{
    Set_Values(*Stage.Plugin, {{"Start Size", 1.0f},
                               {"Mid Size", 3.0f},
                               {"End Size", 7.0f},
                               {"Start Color", RGBAClass{1, 0, 0, 1}},
                               {"Mid Color", RGBAClass{0, 1, 0, 1}},
                               {"End Color", RGBAClass{0, 0, 1, 0}}});
    const auto expect = [&](size_t particle, float size, vrColor color) {
        const vrLitVertex vertex = Vertices()[4 * particle];
        EXPECT_NEAR(vertex.Position.y, size, 1e-5f) << particle;
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(int(vertex.Color >> shift & 0xff), int(color >> shift & 0xff), 1) << particle << " " << shift;
    };
    expect(0, 5.0f, Pack_Color(0, 127, 127, 127));
    expect(1, 3.0f, Pack_Color(0, 255, 0, 255));
    expect(2, 2.0f, Pack_Color(127, 127, 0, 255));
    Stage.Built.State.TintAlpha = 0.5f; // the companion has the facts of its own layer's renderable
    Run.State.ColorMultiplier = {1, 0.5f, 1, 1};
    Stage.Set("Mid Size Key Time", 0.0f);
    expect(1, 5.0f, Pack_Color(0, 127, 0, 255));
}
