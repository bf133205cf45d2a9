#include "vrGraphics/plugins/ensembles/Bullet.h"
#include "vrGraphics/plugins/ensembles/GlobalTrajectory.h"
#include "vrGraphics/plugins/ensembles/WeatherCube.h"
#include "vrGraphics/plugins/stompers/Stompers.h"
#include "vrGraphics/plugins/transformers/Transformers.h"

#include "BufferBuilder.h"
#include "Fakes.h"
#include "PluginBuilders.h"
#include "common/Reports.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrBounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace MKTest;

namespace
{

template <typename T>
SmartPtr<T> Make(const Values &values = {})
{
    SmartPtr<T> plugin(new T);
    Set_Values(*plugin, values);
    if constexpr (std::is_base_of_v<vrMKPStomper, T>) plugin->Post_Load();
    return plugin;
}

std::vector<uint32_t> Numbers(const vrMKPBuffer &buffer)
{
    std::vector<uint32_t> numbers;
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int at = 0; at < span.Count; ++at) numbers.push_back(buffer.Number[span.First + at]);
    return numbers;
}

} // namespace

TEST(Stompers, LivesComeFromTimeAndVariation)
{
    struct Case
    {
        float time, variation;
        bool full, fixed;
        float maxLife, lowest, highest;
    };
    // A variation is per cent of the time; up to a hundredth of a second counts as none.
    const Case cases[] = {
        {1.0f, 1.0f, true, true, 1.01f, 1.0f, 1.0f},    {2.0f, 50.0f, false, false, 3.0f, 2.0f, 3.0f},
        {2.0f, 300.0f, true, false, 8.0f, 0.01f, 8.0f}, {-2.0f, 50.0f, false, false, -3.0f, 0.01f, 0.01f},
        {0.0f, 0.0f, false, true, 0.0f, 0.0f, 0.0f},
    };
    for (const Case &c : cases) {
        const auto stomper = Make<vrMKPSimpleStomper>(
            {{"Stomp Time", c.time}, {"Stomp Time Variation", c.variation}, {"Full Range Variation", c.full}});
        BufferBuilder built(64);
        EXPECT_EQ(stomper->Has_Fixed_Life(), c.fixed);
        EXPECT_FLOAT_EQ(stomper->Get_Max_Life(built.State), c.maxLife);
        for (int i = 0; i < 64; ++i) built.Buffer->Age[built.Add()] = 0.5f;
        stomper->Init_New_Particles(*built.Buffer);
        float lowest = INF, highest = -INF;
        for (int slot = 0; slot < 64; ++slot) {
            const float life = built.Buffer->MaxAge[slot];
            lowest = std::min(lowest, life);
            highest = std::max(highest, life);
            EXPECT_EQ(built.Buffer->Time[slot], life == 0.0f ? 1.0f : 0.5f / life);
        }
        EXPECT_GE(lowest, c.lowest);
        EXPECT_LE(highest, c.highest);
        EXPECT_GE(highest - lowest, (c.highest - c.lowest) * 0.5f);
    }
}

// Random rings, of which random particles die, against the rule that is told of one particle after the other.
TEST(Stompers, AgeingMatchesTheRuleOneByOne)
{
    RandomClass random(7);
    const auto stomper = Make<vrMKPSimpleStomper>({{"Stomp Time Variation", 50.0f}, {"Spawn on Age", 1.0f}});
    const int capacities[] = {1, 2, 7, 8, 9, 17, 64, 65, 600, 1100, 1537};
    for (int round = 0; round < 400; ++round) {
        const int capacity = capacities[round % std::size(capacities)];
        SCOPED_TRACE(capacity);
        const int perCentDead = random.Get_Int(0, 4) * 25;
        BufferBuilder built(capacity);
        vrMKPBuffer &buffer = *built.Buffer;
        FakeLayer listener;
        buffer.Add_Death_Listener(listener);
        built.Start_At(random.Get_Int(0, capacity - 1));
        built.State.FrameTime = 0.25f;
        std::vector<uint32_t> living;
        std::vector<float> times;
        std::vector<FakeLayer::Death> deaths;
        for (int left = random.Get_Int(0, capacity); left > 0; --left) {
            const int slot = built.Add({random.Get_Float(0.0f, 1.0f), 0.0f, 0.0f});
            const float age = buffer.Age[slot] = random.Get_Float(0.0f, 1.0f);
            const bool dies = random.Get_Int(0, 99) < perCentDead;
            const float maxAge = buffer.MaxAge[slot] = dies ? age + 0.125f : age + 0.25f;
            if (age + 0.25f > maxAge) {
                deaths.push_back({buffer.Position[slot].x, age + 0.25f - maxAge});
            } else {
                living.push_back(buffer.Number[slot]);
                times.push_back((age + 0.25f) / maxAge);
            }
        }
        stomper->Age_Particles(buffer);

        ASSERT_EQ(Numbers(buffer), living);
        EXPECT_EQ(listener.Deaths, deaths);
        EXPECT_EQ(buffer.TimeSinceDeath, deaths.empty() ? 0.25f : 0.0f);
        int slot = buffer.Head;
        for (const float time : times) {
            ASSERT_EQ(buffer.Time[slot], time);
            slot = buffer.Next_Slot(slot);
        }
    }
}

TEST(Stompers, RemovalOfTheEmitterEmptiesOnlyWhenAsked)
{
    for (const bool kills : {true, false}) {
        const auto stomper = Make<vrMKPSimpleStomper>({{"Kill On Removal", kills}});
        BufferBuilder built;
        built.Add();
        stomper->Init_New_Particles(*built.Buffer);
        built.State.Hidden = true;
        stomper->Age_Particles(*built.Buffer);
        EXPECT_EQ(built.Buffer->ActiveCount, kills ? 0 : 1);
        EXPECT_EQ(built.Buffer->Head, kills ? -1 : 0);
    }
}

TEST(Stompers, BadGreatestAgeIsReportedOnceAStep)
{
    const Reports reports;
    const auto stomper = Make<vrMKPSimpleStomper>({{"Stomp Time Variation", 50.0f}});
    BufferBuilder built;
    for (int i = 0; i < 5; ++i) built.Buffer->MaxAge[built.Add()] = NOT_A_NUMBER;
    stomper->Age_Particles(*built.Buffer);
    EXPECT_EQ(reports.Count_Asserts("buffer->MaxAge[index] > 0.0f"), 1);
    EXPECT_EQ(built.Buffer->ActiveCount, 5);
}

namespace
{

/// The border is met on the way from `base` along an axis.
struct Condition
{
    const char *name;
    SmartPtr<vrMKPStomper> stomper;
    vrMKPTransformType space;
    bool isFull; ///< with terrain and carrier
    Vector3 base;
    int axis;
    float border;
    float outward; ///< 1 when particles die above the border, -1 below it
    bool borderLives = true;

    Vector3 Place(float beyond) const
    {
        Vector3 place = base;
        place[axis] = border + beyond * outward;
        return place;
    }
};

} // namespace

TEST(Stompers, ConditionsKillBeyondTheirBorder)
{
    using Radius = vrMKPRadiusStomper;
    using Axis = vrMKPAxisStomper;
    using Target = vrMKPTargetStomper;
    using Track = vrMKPGlobalTrajectoryStomper;
    const auto bone = Make<Target>({{"Target Position", 1}, {"Target Radius", 2}, {"Bone Name", "hand"}});
    const auto ground = Make<vrMKPTerrainStomper>();
    const auto track = Make<Track>({{"Trajectory Position", 50}});
    const auto aboveX = Make<Axis>({{"Stomp Axis", 0}, {"Kill if Value is", 0}, {"Stomp Value", 12}});
    constexpr auto WORLD = MKP_TRANSFORM_WORLD;
    constexpr auto LOCAL = MKP_TRANSFORM_LOCAL;
    // The renderable stands at (10, 20, 30), and the dynamic target radius is 3.
    const Condition cases[] = {
        {"radius local", Make<Radius>({{"Stomp Radius", 5}}), LOCAL, false, {3, 0, 0}, 1, 4, 1},
        {"dynamic radius", Make<Radius>({{"Use Target Radius", 1}}), LOCAL, false, {0, 0, 0}, 0, 3, 1},
        {"axis below", Make<Axis>({{"Stomp Value", -2}}), WORLD, false, {0, 0, 0}, 2, -2, -1},
        {"axis local", aboveX, LOCAL, false, {0, 0, 0}, 0, 2, 1},
        {"no terrain", ground, WORLD, false, {0, 0, 0}, 2, -60, -1},
        {"terrain", ground, WORLD, true, {7, 0, 0}, 2, 7, -1},
        {"target local", Make<Target>({{"Use Dynamic Radius", 1}}), LOCAL, false, {0, 0, 0}, 2, 3, -1, false},
        {"target bone", bone, WORLD, true, {0, 0, 0}, 1, 52, -1, false},
        {"trajectory", track, WORLD, true, {0, 0, 0}, 2, 50, 1},
    };
    FakeWorld world({0, 50, 0});
    world.Slope = 1.0f;
    for (const Condition &c : cases) {
        SCOPED_TRACE(c.name);
        BufferBuilder built(16, c.space);
        vrMKPBuffer &buffer = *built.Buffer;
        built.Start_At(14);
        built.State.Place_At(Mat3DClass::From_Translation({10.0f, 20.0f, 30.0f}));
        built.State.Dynamic[vrMKPRenderState::DYNAMIC_TARGET_RADIUS] = 3.0f;
        if (c.isFull) {
            built.State.Terrain = &world;
            built.State.Carrier = &world;
        }
        FakeLayer listener;
        buffer.Add_Death_Listener(listener);
        buffer.StomperData = c.stomper->Create_Buffer_Data(built.State);
        for (const float beyond : {0.1f, -0.1f, 0.0f, 0.1f}) built.Add(c.Place(beyond));
        auto &spawns = Parameter_Of<BoolParameter>(*c.stomper, "Spawn on Conditional");
        spawns.Set_Value(false);
        c.stomper->Kill_Particles(buffer);
        EXPECT_EQ(Numbers(buffer), c.borderLives ? (std::vector<uint32_t>{1, 2}) : std::vector<uint32_t>{1});
        EXPECT_TRUE(listener.Deaths.empty());
        // Half a second ahead of its greatest age.
        spawns.Set_Value(true);
        buffer.Age[built.Add(c.Place(0.1f))] = 0.5f;
        c.stomper->Kill_Particles(buffer);
        EXPECT_EQ(listener.Deaths, (std::vector<FakeLayer::Death>{{c.Place(0.1f).x, -0.5f}}));
    }
}

// Wherever it stands in runs of all lengths.
TEST(Stompers, ConditionFindsTheOneThatDies)
{
    const auto stomper = Make<vrMKPRadiusStomper>({{"Stomp Radius", 5}});
    for (const int count : {1, 7, 16, 17, 33, 511, 513, 700}) {
        for (const int dying : {0, count / 2, count - 1}) {
            BufferBuilder built(700);
            built.Start_At(dying % 7 + 600);
            std::vector<uint32_t> expected;
            for (int i = 0; i < count; ++i) {
                built.Add({i == dying ? 6.0f : 4.0f, 0.0f, 0.0f});
                if (i != dying) expected.push_back(static_cast<uint32_t>(i));
            }
            stomper->Kill_Particles(*built.Buffer);
            ASSERT_EQ(Numbers(*built.Buffer), expected) << dying << " of " << count;
        }
    }
}

TEST(Stompers, BulletSpendsItsLastFrameBeforeTheEnd)
{
    struct Case
    {
        float flight, speed, maxAge;
        std::vector<float> times; ///< at the start, and frame by frame of half a second until it dies
    };
    const Case cases[] = {{1.0f, 1.0f, 1.0f, {0.0f, 0.5f, 0.99f, 1.0f}},
                          {3.0f, 2.0f, 1.5f, {0.0f, 0.5f / 1.5f, 1.0f / 1.5f, 0.99f, 1.0f}},
                          {0.25f, 1.0f, 0.25f, {0.0f, 0.99f, 1.0f}},
                          {-1.0f, 1.0f, 0.01f, {1.0f}}};
    for (const Case &c : cases) {
        const auto stomper = Make<vrMKPBulletStomper>({{"SpeedMultiplier", c.speed}});
        BufferBuilder built;
        vrMKPBuffer &buffer = *built.Buffer;
        built.State.FrameTime = 0.5f;
        const int slot = built.Add();
        buffer.ProjectileFlightDuration[slot] = c.flight;
        stomper->Init_New_Particles(buffer);
        EXPECT_FLOAT_EQ(buffer.MaxAge[slot], c.maxAge);
        for (const float time : c.times) {
            ASSERT_EQ(buffer.ActiveCount, 1);
            EXPECT_FLOAT_EQ(buffer.Time[slot], time);
            stomper->Kill_Particles(buffer);
            stomper->Age_Particles(buffer);
        }
        EXPECT_EQ(buffer.ActiveCount, 0);
    }
}

TEST(WeatherCube, ShowsAndHidesTheSameParticles)
{
    const auto spawner = Make<vrMKPWeatherCubeSpawner>({{"Particle Count", 10.0f}, {"Cube Size", 8.0f}});
    const auto stomper = Make<vrMKPWeatherCubeStomper>();
    EXPECT_EQ(spawner->Get_Min_Capacity(nullptr), 10);
    BufferBuilder built(12, MKP_TRANSFORM_LOCAL);
    vrMKPBuffer &buffer = *built.Buffer;
    spawner->Spawn(buffer);
    EXPECT_EQ(buffer.ActiveCount, 10);
    for (int slot = 0; slot < 10; ++slot)
        for (int axis = 0; axis < 3; ++axis) EXPECT_LE(std::abs(buffer.Position[slot][axis]), 4.0f);
    const std::vector<uint32_t> first = Numbers(buffer);
    built.End_Frame();
    for (int frame = 0; frame < 100; ++frame) stomper->Age_Particles(buffer);
    EXPECT_EQ(buffer.ActiveCount, 10) << "nobody dies of age";
    built.State.Energy = 0.55f;
    stomper->Kill_Particles(buffer);
    EXPECT_EQ(buffer.ActiveCount, 5);
    spawner->Spawn(buffer);
    EXPECT_EQ(Numbers(buffer), first);
    built.State.Hidden = true;
    stomper->Age_Particles(buffer);
    EXPECT_EQ(buffer.ActiveCount, 0);

    const Reports reports;
    BufferBuilder small(9);
    spawner->Spawn(*small.Buffer);
    EXPECT_EQ(small.Buffer->ActiveCount, 0);
    EXPECT_TRUE(reports.Has_Assert("buffer->Allocated < ParticleCount->Get_Value()"));
}

TEST(WeatherCube, ModifierBringsStraysBackFromTheOtherSide)
{
    // A cube of 10 about the origin: 7 is 2 past the face and comes back 2 from the other one; 26 is 21 past it, of
    // which the two whole cubes count as 2 units, not as 20.
    const auto modifier = Make<vrMKPWeatherCubeModifier>({{"Cube Size", 10.0f}});
    for (const bool mayRest : {false, true}) {
        BufferBuilder built(1024);
        vrMKPBuffer &buffer = *built.Buffer;
        buffer.MayHaveStopped = mayRest;
        built.Start_At(900);
        for (int i = 0; i < 600; ++i) built.Add({1.0f, 2.0f, 3.0f});
        const int resting = built.Add({7.0f, 0.0f, 0.0f});
        const int wrapped = built.Add({7.0f, 0.0f, -7.0f});
        const int far = built.Add({26.0f, 0.0f, 0.0f});
        buffer.Flags[resting] = PARTICLE_STOPPED;
        buffer.PreviousPosition.Put(wrapped, {6.0f, 0.0f, -7.0f});
        modifier->Modify(buffer, 0);
        // The flag counts where the buffer says that somebody may rest.
        EXPECT_EQ(buffer.Position[resting], Vector3(mayRest ? 7.0f : -3.0f, 0.0f, 0.0f));
        EXPECT_EQ(buffer.Position[wrapped], Vector3(-3.0f, 0.0f, 3.0f));
        EXPECT_EQ(buffer.PreviousPosition[wrapped], Vector3(-4.0f, 0.0f, 3.0f));
        EXPECT_EQ(buffer.Position[far], Vector3(14.0f, 0.0f, 0.0f));
        EXPECT_EQ(buffer.Position[900], Vector3(1.0f, 2.0f, 3.0f));
    }
}

TEST(WeatherCube, MovingCameraMovesNobody)
{
    const auto transformer = Make<vrMKPWeatherCubeTransformer>({{"Cube Size", 10.0f}, {"Camera Offset", 3.0f}});
    BufferBuilder built(75, MKP_TRANSFORM_LOCAL);
    vrMKPBuffer &buffer = *built.Buffer;
    RandomClass random(3);
    for (int i = 0; i < 75; ++i) built.Add({random.Get_Float(-5, 5), random.Get_Float(-5, 5), random.Get_Float(-5, 5)});
    for (float way = -25.0f; way < 25.0f; way += 0.37f) {
        const Mat3DClass camera = Mat3DClass::Look_At({way, -2 * way, 1.0f}, {way + 1.0f, 5.0f, way});
        vrBounds bounds;
        transformer->Transform_For_View(&buffer, &camera, bounds);
        for (int slot = 0; slot < 75; ++slot) {
            for (int axis = 0; axis < 3; ++axis) {
                // The same place of the lattice, in whichever cube.
                const float cubes = (buffer.WorldPosition[slot][axis] - buffer.Position[slot][axis]) / 10.0f;
                ASSERT_NEAR(cubes, std::round(cubes), 1e-4f);
                ASSERT_LE(std::abs(buffer.WorldPosition[slot][axis] - bounds.Center[axis]), 5.001f);
            }
        }
    }
}

TEST(WeatherCube, TimeIsThePlaceInTheCube)
{
    // The cube's centre is 100 ahead of the camera, at (0, 0, -100): the particle at the world's origin is 100 above
    // it.
    for (const auto &[emulation, time] : {std::pair{0, 0.5f}, {1, 0.5f}, {2, 0.7f}, {4, 0.5f}, {5, 0.3f}, {99, 0.5f}}) {
        const auto transformer = Make<vrMKPWeatherCubeTransformer>({{"Time Emulation", emulation}});
        BufferBuilder built;
        built.Add();
        vrBounds bounds;
        const Mat3DClass camera;
        transformer->Transform_For_View(built.Buffer.Get(), &camera, bounds);
        EXPECT_NEAR(built.Buffer->Time[0], time, 1e-6f);
        EXPECT_EQ(bounds.Center, Vector3(0.0f, 0.0f, -100.0f));
    }
}

TEST(Transformers, ScreenTilesItsRectangle)
{
    struct Case
    {
        Vector3 position;
        bool clamps;
        Vector3 expected; ///< for 10 by 20, 5 ahead of a camera at (1, 2, 3)
    };
    const Case cases[] = {{{6.0f, -11.0f, 2.0f}, false, {-3.0f, 11.0f, 0.0f}},
                          {{6.0f, -11.0f, 2.0f}, true, {-3.0f, 11.0f, -2.0f}},
                          {{4.5f, 9.5f, 0.0f}, false, {5.5f, 11.5f, -2.0f}},
                          {{-104.5f, 1009.0f, 0.0f}, false, {-3.5f, 11.0f, -2.0f}},
                          {{5.0f, -10.0f, 0.0f}, false, {-4.0f, 12.0f, -2.0f}}};
    const Mat3DClass camera = Mat3DClass::From_Translation({1.0f, 2.0f, 3.0f});
    for (const Case &c : cases) {
        const auto transformer = Make<vrMKPScreenTransformer>(
            {{"Width", 10.0f}, {"Height", 20.0f}, {"Z Offset", 5.0f}, {"Enable Z Clamp", c.clamps}});
        BufferBuilder built;
        built.Add(c.position);
        vrBounds bounds;
        transformer->Transform_For_View(built.Buffer.Get(), &camera, bounds);
        EXPECT_EQ(built.Buffer->WorldPosition[0], c.expected);
        EXPECT_EQ(bounds.Center, Vector3(1.0f, 2.0f, -2.0f));
    }
    const Reports reports;
    vrBounds bounds;
    Make<vrMKPScreenTransformer>()->Transform_For_View(nullptr, &camera, bounds);
    EXPECT_EQ(reports.Count_Asserts("buffer == NULL || camera == NULL"), 1);
}
