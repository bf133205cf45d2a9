#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

#include "Fakes.h"
#include "PluginBuilders.h"
#include "VertexChecks.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"
#include "vrGraphics/scene/vrParticleLight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

using namespace MKTest;

namespace
{

/// One instance of a plugin of a renderable, whose clock runs.
template <typename Plugin>
struct Instance
{
    SmartPtr<vrMKPPlugin> Made;
    vrMKPRenderState State;
    RandomGeneratorClass Random;
    SmartPtr<vrMKPBufferPluginData> Data;
    float Time = 0.0f;

    explicit Instance(int id, const Values &values = {})
        : Made(Make_Plugin(id, values)), Data(Made->Create_Buffer_Data(State))
    {
    }
    void Set(const Values &values) { Set_Values(*Made, values); }

    const Plugin &Get() const { return dynamic_cast<const Plugin &>(*Made); }

    template <typename Context>
    Context Step(float step)
    {
        Time += step;
        return Context{{State, Time, step, Random, Data.Get()}};
    }
};

struct Mover : Instance<vrMKPRenderablePhysics>
{
    Mat3DClass Base;

    using Instance::Instance;

    /// A projectile on its way from the origin.
    void Launch(const Vector3 &target, float speed)
    {
        State.TargetPosition = State.ProjectileTargetStart = State.ProjectileTarget = target;
        State.ProjectileSpeed = speed;
    }
    Mat3DClass Move(float step)
    {
        auto context = Step<vrMKPMotionContext>(step);
        context.Base = Base;
        return Get().Get_Motion(context);
    }
    bool Has_Hit() const { return Get().Has_Hit(Data.Get()); }
};

constexpr int WAVE_AND_SPIN = 84;
constexpr int SIMPLE = 85;
constexpr int SPIRAL = kvrMKPSpiralAndSeekProjectileRenderablePhysics;
constexpr int KEYED = kvrMKPKeyedTransformRenderablePhysics;

// clang-format off
// Each renderable moves in one step of so many seconds, and in a hundred of a hundredth.
const struct
{
    const char *what;
    int id;
    Values values;
    Vector3 source; ///< in a frame scaled by 2
    Vector3 target;
    float speed;
    float seconds;
    Vector3 position, xAxis;
    bool hits = false;
} Motions[] = {
    {"sine at a quarter, without an amplitude along x", WAVE_AND_SPIN,
     {{"Wave Amplitude", Vector3(0, 0, 10)}, {"Wave Frequency", Vector3(1, 1, 0.5f)}},
     {1, 0, 0}, {}, 0, 0.5f, {1, 0, 20}, {2, 0, 0}},
    {"triangle on its way up, down and back", WAVE_AND_SPIN,
     {{"Waveform", 1}, {"Wave Amplitude", Vector3(4, 4, 4)}, {"Wave Phase", Vector3(0, 0.5f, 0.75f)}},
     {}, {}, 0, 0.125f, {4, -4, -4}, {2, 0, 0}},
    {"square in its second half and in its first", WAVE_AND_SPIN,
     {{"Waveform", 2}, {"Wave Amplitude", Vector3(0, 3, 1)}, {"Wave Phase", Vector3(0, 0.5f, 0)}},
     {}, {}, 0, 0.25f, {0, -6, 2}, {2, 0, 0}},
    {"sawtooth at three quarters and at a quarter", WAVE_AND_SPIN,
     {{"Waveform", 3}, {"Wave Amplitude", Vector3(8, 8, 0)}, {"Wave Phase", Vector3(0, 0.5f, 0)}},
     {}, {}, 0, 0.75f, {-8, 8, 0}, {2, 0, 0}},
    {"spin after a start rotation", WAVE_AND_SPIN,
     {{"Spin Rate", Vector3(0, 0, 45)}, {"Start Rotation", Vector3(0, 0, 45)}},
     {}, {}, 0, 1, {}, {0, 2, 0}},
    {"keys, in the second round", KEYED,
     {{"Duration", 2.0f}, {"Translate X", FloatKeys{{0, 0}, {1, 10}}}, {"Rotate Z", FloatKeys{{0, 90}}},
      {"Scale", FloatKeys{{0, 1}, {1, 3}}}},
     {}, {}, 0, 3, {10, 0, 0}, {0, 4, 0}},
    {"without a speed there is no flight", SIMPLE, {}, {1, 0, 0}, {30, 40, 0}, 0, 3, {1, 0, 0}, {2, 0, 0}},
    {"a line of 50, at 10 by 2", SIMPLE, {{"Speed Multiplier", 2.0f}},
     {}, {30, 40, 0}, 10, 1, {12, 16, 0}, {1.2f, 1.6f, 0}},
    // 2 s of flight; z = 10/2 * 0.5 * 1.5, dz = 10 * (1 - 0.5) beside dx = 10.
    {"an arc at a quarter", SIMPLE, {{"Trajectory Types", 1}, {"Gravity", 10.0f}},
     {}, {20, 0, 0}, 10, 0.5f, {5, 0, 3.75f}, {1.7888544f, 0, 0.8944272f}},
    // 2 s of flight; dz = 6 + 4 * (1 - 2) beside dx = 8.
    {"an arc's end, higher than its start", SIMPLE, {{"Trajectory Types", 1}, {"Gravity", 4.0f}},
     {0, 0, -4}, {16, 0, 8}, 10, 5, {16, 0, 8}, {1.9402850f, 0, 0.4850713f}, true},
    // A quarter turn, a quarter of the radius and of the way; out 4/s along y, around -1 * 2 pi along x, up 10/s.
    {"a spiral after a quarter of its time", SPIRAL,
     {{"Random Spiral Start", false}, {"Spiral Time", 1.0f}, {"Spiral Speed", 10.0f}, {"Spiral Radius", 4.0f},
      {"Spiral Rate", 1.0f}},
     {}, {100, 0, 0}, 10, 0.25f, {0, 1, 2.5f}, {-1.0078010f, 0.6415861f, 1.6039652f}},
    // From 10 to 30 takes 1 s and 20 units.
    {"seeking straight ahead, up to the projectile's speed", SPIRAL,
     {{"Spiral Time", 0.0f}, {"Spiral Axis", Vector3(1, 0, 0)}, {"Spiral Speed", 10.0f}, {"Seek Acceleration", 20.0f}},
     {}, {1000, 0, 0}, 30, 1, {20, 0, 0}, {2, 0, 0}},
};
// clang-format on

struct Lamp : Instance<vrMKPLightSourceController>
{
    vrParticleLight Light;
    const vrMKPLayer *First = nullptr;

    using Instance::Instance;

    const vrParticleLight &Shine(float step)
    {
        auto context = Step<vrMKPLightContext>(step);
        context.Transform = Mat3DClass::From_Angles({0, 0, 1.5707964f});
        context.Transform.Set_Translation({100, 0, 0});
        context.FirstLayer = First;
        Get().Update(Light, context);
        return Light;
    }
};

vrMKPRenderableOutcome Outcome_Of(Instance<vrMKPRenderableModifier> &instance, float step, bool hit = false)
{
    vrMKPRenderableOutcome outcome;
    auto context = instance.Step<vrMKPRenderableModifierContext>(step);
    context.ProjectileHit = hit;
    instance.Get().Update(outcome, context);
    return outcome;
}

} // namespace

TEST(RenderableMotion, IsThatOfTheTable)
{
    for (const auto &row : Motions) {
        for (const int steps : {1, 100}) {
            Mover mover(row.id, row.values);
            mover.Base = mover.Base.Scaled(2.0f);
            mover.Base.Set_Translation(row.source);
            mover.Launch(row.target, row.speed);
            Mat3DClass motion;
            for (int step = 0; step < steps; ++step) motion = mover.Move(row.seconds / static_cast<float>(steps));
            // A hundred steps add their rounding up; a flight in one step goes on from where it is.
            Expect_Near(motion.Get_Translation() * 0.1f, row.position * 0.1f, row.what);
            Expect_Near(motion.Get_Axis(0), row.xAxis, row.what);
            EXPECT_EQ(mover.Has_Hit(), row.hits) << row.what;
        }
    }
}

TEST(RenderableMotion, OfASeekerTurnsNoFasterThanItsRate)
{
    Mover mover(
        SPIRAL,
        {{"Spiral Time", 0.0f}, {"Spiral Axis", Vector3(1, 0, 0)}, {"Spiral Speed", 10.0f}, {"Seek Turn Rate", 90.0f}});
    mover.Launch({0, 100, 0}, 10);
    // 45 of 90 degrees in half a second, and 5 units that way.
    const Mat3DClass motion = mover.Move(0.5f);
    Expect_Near(motion.Get_Translation(), {3.5355339f, 3.5355339f, 0}, "place");
    Expect_Near(motion.Get_Axis(0), {0.70710678f, 0.70710678f, 0}, "direction");
    for (int frame = 0; frame < 30 && !mover.Has_Hit(); ++frame) mover.Move(0.5f);
    EXPECT_TRUE(mover.Has_Hit());
    Expect_Near(mover.Move(0.5f).Get_Translation(), {0, 100, 0}, "the end");
}

TEST(RenderableMotion, OfAHomingProjectileFollowsItsTargetAndEndsWhereItHit)
{
    for (const bool homing : {false, true}) {
        Mover mover(SIMPLE, {{"Track Mode", homing ? 1 : 0}});
        mover.Launch({10, 0, 0}, 5);
        mover.Move(1.0f);
        mover.State.ProjectileTarget = {5, 10, 0};
        Expect_Near(mover.Move(1.0f).Get_Translation(), homing ? Vector3(5, 5, 0) : Vector3(10, 0, 0), "two seconds");
        mover.Move(1.0f);
        mover.State.ProjectileTarget = {0, 0, 50};
        EXPECT_TRUE(mover.Has_Hit());
        Expect_Near(mover.Move(1.0f).Get_Translation(), homing ? Vector3(5, 10, 0) : Vector3(10, 0, 0), "after");

        mover.Data->Reset();
        EXPECT_FALSE(mover.Has_Hit());
        mover.Launch({10, 0, 0}, 5);
        Expect_Near(mover.Move(1.0f).Get_Translation(), {5, 0, 0}, "again");
    }
}

TEST(RenderableMotion, TakesARandomPhaseOncePerRun)
{
    Mover mover(WAVE_AND_SPIN,
                {{"Random Phase", true}, {"Wave Amplitude", Vector3(10, 10, 0)}, {"Wave Phase", Vector3(0, 0.25f, 0)}});
    const Vector3 start = mover.Move(0.0f).Get_Translation();
    EXPECT_NEAR(glm::length(start), 10.0f, 1e-4f) << "the same for both axes: a circle stays a circle";
    Expect_Near(mover.Move(1.0f).Get_Translation(), start, "a round later");
    mover.Data->Reset();
    EXPECT_GT(glm::length(mover.Move(0.0f).Get_Translation() - start), 0.01f);
}

TEST(RenderableKiller, KillsAtTheEndOfTheLifetimeOrWithTheProjectile)
{
    Instance<vrMKPRenderableModifier> killer(kvrMKPRenderableKillerModifier, {{"Fade Out Time", 2.0f}});
    EXPECT_FALSE(Outcome_Of(killer, 1000.0f).Killed); // a lifetime of 0 is for ever
    killer.Time = 0.0f;
    killer.Set({{"Lifetime", 5.0f}});
    EXPECT_EQ(Outcome_Of(killer, 2.0f).Fade, 1.0f);
    EXPECT_EQ(Outcome_Of(killer, 2.0f).Fade, 0.5f);
    EXPECT_FALSE(Outcome_Of(killer, 0.5f).Killed);
    EXPECT_TRUE(Outcome_Of(killer, 0.5f).Killed);

    killer.Set({{"Lifetime", 0.0f}});
    EXPECT_FALSE(Outcome_Of(killer, 1.0f, true).Killed);
    killer.Set({{"Kill With Projectile", true}});
    EXPECT_FALSE(Outcome_Of(killer, 1.0f, false).Killed);
    EXPECT_TRUE(Outcome_Of(killer, 1.0f, true).Killed);
}

TEST(RenderableKiller, DrawsTheVariationOnce)
{
    for (const uint32_t seed : {1u, 2u, 3u, 4u}) {
        Instance<vrMKPRenderableModifier> killer(kvrMKPRenderableKillerModifier,
                                                 {{"Lifetime", 10.0f}, {"Lifetime Variation", 50.0f}});
        killer.Random.Seed(seed);
        RandomGeneratorClass same;
        same.Seed(seed);
        const float life = 10.0f + 5.0f * same.Get_Float(-1.0f, 1.0f);
        int frames = 0;
        while (!Outcome_Of(killer, 0.125f).Killed && frames < 200) ++frames;
        EXPECT_EQ(frames, static_cast<int>(std::ceil(life / 0.125f)) - 1) << seed;
    }
}

TEST(RenderableLightScale, MultipliesByItsKeys)
{
    Instance<vrMKPRenderableModifier> scale(kvrMKPKeyedLightScaleRenderableModifier);
    scale.Set({{"Light Scale R", FloatKeys{{0, 0}, {1, 1}}}, {"Light Scale B", FloatKeys{{0, 2}, {1, 2}}}});
    Expect_Near(Outcome_Of(scale, 0.25f).LightScale, {0.25f, 1, 2}, "a quarter");
}

TEST(ParticleLights, RunThroughTheLegacySpan)
{
    Lamp lamp(kvrMKPLegacyLightSourceController, {{"Start Delay", 1.0f},
                                                  {"Duration", 4.0f},
                                                  {"Fade In Time", 1.0f},
                                                  {"Fade Out Time", 2.0f},
                                                  {"Intensity", 8.0f}});
    for (const auto &[time, intensity] :
         {std::pair{0.5f, 0.0f}, {1.5f, 4.0f}, {2.5f, 8.0f}, {4.75f, 1.0f}, {9.0f, 0.0f}}) {
        lamp.Time = time;
        EXPECT_FLOAT_EQ(lamp.Shine(0.0f).Intensity, intensity) << time;
        EXPECT_EQ(lamp.Light.IsOn, intensity > 0.0f) << time;
    }
}

TEST(ParticleLights, ScaleWithTheCountOfParticles)
{
    Lamp lamp(kvrMKPKeyedLightSourceController, {{"Intensity", FloatKeys{{0, 2}, {1, 4}}},
                                                 {"Radius Scale", FloatKeys{{0, 1}, {1, 3}}},
                                                 {"Offset", Vector3(10, 0, 0)}});
    lamp.State.LightingParticleCount = 25;
    EXPECT_FLOAT_EQ(lamp.Shine(0.5f).Intensity, 3.0f);
    lamp.Set({{"Use Particle Count", true}});
    EXPECT_FLOAT_EQ(lamp.Shine(0.0f).Intensity, 0.75f);
    lamp.State.LightingParticleCount = 300;
    EXPECT_FLOAT_EQ(lamp.Shine(0.0f).Intensity, 3.0f);
    EXPECT_FLOAT_EQ(lamp.Light.InnerRadius, 100.0f);
    EXPECT_FLOAT_EQ(lamp.Light.OuterRadius, 400.0f);
    Expect_Near(lamp.Light.Position, {100, 10, 0}, "offset in the turned frame");
}

TEST(ParticleLights, SitOnTheCentroidOfTheLayerWhileItLives)
{
    const SmartPtr<vrMKPBuffer> buffer = vrMKPBuffer::Create(4, "test");
    buffer->SmoothedCentroid = {1, 2, 3};
    FakeLayer layer;
    layer.Name = "sparks";
    layer.Buffer = buffer.Get();
    FakeLayers layers;
    layers.Layers = {&layer};
    Lamp lamp(kvrMKPCentroidLightSourceController);
    lamp.State.Layers = &layers;
    lamp.Set({{"Offset", Vector3(10, 0, 0)}, {"Layer Name", "sparks"}});
    EXPECT_FALSE(lamp.Shine(0.1f).IsOn);
    layer.Buffer->ActiveCount = 1;
    EXPECT_TRUE(lamp.Shine(0.1f).IsOn);
    Expect_Near(lamp.Light.Position, {1, 12, 3}, "by name");
    lamp.Set({{"Layer Name", "smoke"}});
    EXPECT_FALSE(lamp.Shine(0.1f).IsOn);
    lamp.Set({{"Layer Name", ""}});
    EXPECT_FALSE(lamp.Shine(0.1f).IsOn);
    lamp.First = &layer;
    EXPECT_TRUE(lamp.Shine(0.1f).IsOn);
}

TEST(ParticleLights, FlickerWithinTheirPartAndWithoutJumps)
{
    Lamp lamp(kvrMKPLegacyLightSourceController,
              {{"Intensity", 10.0f}, {"Flicker Amount", 0.4f}, {"Flicker Rate", 2.0f}});
    float before = lamp.Shine(0.0f).Intensity;
    float lowest = before;
    float highest = before;
    for (int frame = 0; frame < 400; ++frame) {
        const float now = lamp.Shine(0.05f).Intensity;
        // A tenth of the way between two values that are 4 apart at most.
        EXPECT_LE(std::abs(now - before), 0.4001f);
        lowest = std::min(lowest, now);
        highest = std::max(highest, now);
        before = now;
    }
    EXPECT_GE(lowest, 6.0f);
    EXPECT_LE(highest, 10.0f);
    EXPECT_GT(highest - lowest, 2.0f);
}

TEST(RenderablePlugins, SurviveAnyValueOfAFile)
{
    for (const float value : {0.0f, -1.0f, 1e-40f, 3e38f, -3e38f, INF, -INF, NOT_A_NUMBER}) {
        for (const int id : Plugin_IDs_Of(vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN)) {
            Mover mover(id);
            Set_All_Numbers(*mover.Made, value, 1);
            mover.Launch({30, 40, 0}, 10);
            for (int frame = 0; frame < 5; ++frame) mover.Move(0.25f);
        }
        for (const auto family : {vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN, vrMKPPlugin::RENDERABLE_KILLER_PLUGIN})
            for (const int id : Plugin_IDs_Of(family)) {
                Instance<vrMKPRenderableModifier> modifier(id);
                Set_All_Numbers(*modifier.Made, value, 1);
                const float fade = Outcome_Of(modifier, 0.25f).Fade;
                EXPECT_TRUE(fade >= 0.0f && fade <= 1.0f) << Plugin_Label(id) << " " << value;
            }
        for (const int id : Plugin_IDs_Of(vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN)) {
            const SmartPtr<vrMKPBuffer> buffer = vrMKPBuffer::Create(4, "test");
            buffer->ActiveCount = 1;
            FakeLayer layer;
            layer.Buffer = buffer.Get();
            Lamp lamp(id);
            lamp.First = &layer;
            Set_All_Numbers(*lamp.Made, value, 1);
            for (int frame = 0; frame < 5; ++frame) {
                const vrParticleLight &light = lamp.Shine(0.25f);
                EXPECT_TRUE(!light.IsOn || (Is_Valid(light.Position) && Is_Valid(light.Intensity)))
                    << Plugin_Label(id) << " " << value;
            }
        }
    }
}

// A loaded curve takes the place of the default key, also where it has a key at the same time or none at all.
TEST(RenderablePlugins, KeepNoDefaultKeyBesideLoadedOnes)
{
    for (const FloatKeys &keys : {FloatKeys{{0.0f, 3.0f}}, FloatKeys{}}) {
        const auto plugin = Make_Plugin(KEYED, {{"Scale", keys}});
        for (const SmartPtr<vrMKPPlugin> &same :
             {SmartPtr<vrMKPPlugin>(plugin->Clone()), Load_Plugin(Save_Plugin(*plugin))}) {
            float value = -1.0f;
            Parameter_Of<KeyedFloatParameterClass>(*same, "Scale").Evaluate(0.5f, false, value);
            EXPECT_EQ(value, keys.empty() ? 0.0f : 3.0f);
        }
    }
}
