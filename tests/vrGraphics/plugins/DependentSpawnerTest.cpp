#include "vrGraphics/plugins/spawners/ParticleSpawners.h"

#include "BufferBuilder.h"
#include "Fakes.h"
#include "PluginBuilders.h"
#include "VertexChecks.h"
#include "common/Reports.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/spawners/CodeSpawner.h"
#include "vrGraphics/plugins/spawners/MeshSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

#include <gtest/gtest.h>

#include <vector>

using namespace MKTest;

namespace
{

constexpr int TRAIL = 39, DEATH = 40, MESH = 35, SLAVE = 95, CODE = 127;

/// A child with a spawner, and a parent by the name of "sparks", in one group.
struct Family
{
    FakeLayers Group;
    FakeLayer ParentLayer;
    FakeLayer ChildLayer;
    BufferBuilder Parent;
    BufferBuilder Child;
    SmartPtr<vrMKPPlugin> Plugin;
    const vrMKPSpawner &Spawner;

    explicit Family(int spawner, const Values &values = {}, vrMKPTransformType parentSpace = MKP_TRANSFORM_WORLD,
                    vrMKPTransformType childSpace = MKP_TRANSFORM_WORLD, int childCapacity = 64)
        : Parent(8, parentSpace), Child(childCapacity, childSpace), Plugin(Make_Plugin(spawner, values)),
          Spawner(dynamic_cast<const vrMKPSpawner &>(*Plugin))
    {
        ParentLayer.Name = "Sparks";
        ParentLayer.Buffer = Parent.Buffer.Get();
        ChildLayer.Name = "child";
        ChildLayer.Buffer = Child.Buffer.Get();
        ChildLayer.Spawner = &Spawner;
        Group.Layers = {&ParentLayer, &ChildLayer};
        Parent.State.Layers = Child.State.Layers = &Group;
        Parent.Buffer->Layer = &ParentLayer;
        Child.Buffer->Layer = &ChildLayer;
        if (Plugin->Get_Parameter_By_Name("Parent Name")) Set("Parent Name", "sparks");
        Prepare();
    }

    void Prepare() { EXPECT_TRUE(Spawner.Create_Spawn_Data(Child.State, &Child.Buffer->SpawnerData)); }
    void Set(const char *name, const Value &value) { Set_Value(*Plugin, name, value); }
    /// One step of the child; answers how many particles were born.
    int Step()
    {
        Child.End_Frame();
        Spawner.Spawn(*Child.Buffer);
        return Child.Buffer->SpawnedThisFrame;
    }
    vrMKPBuffer &Ring() { return *Child.Buffer; }
};

} // namespace

TEST(Slave, IsItsParentMovedByAnOffset)
{
    Family family(SLAVE);
    family.Set("Position Offset", Vector3(0.0f, 0.0f, 5.0f));
    family.Parent.Start_At(6);
    for (int i = 0; i < 4; ++i) family.Parent.Add({float(i), 0.0f, 1.0f}, {0.0f, 2.0f, 0.0f}, 0.25f);
    vrMKPBuffer &parent = *family.Parent.Buffer;
    parent.MayHaveStopped = true;
    family.Step();

    vrMKPBuffer &child = family.Ring();
    EXPECT_EQ(child.Head, 6);
    EXPECT_EQ(child.Tail, 1);
    EXPECT_TRUE(child.MayHaveStopped);
    EXPECT_EQ(child.Position[0], Vector3(2.0f, 0.0f, 6.0f));
    EXPECT_EQ(child.Velocity[0], Vector3(0.0f, 2.0f, 0.0f));
    EXPECT_EQ(child.Age[0], 0.25f);
    EXPECT_EQ(child.ID[1], 3u);
}

TEST(DeathSpawner, BurstsInProportionToDeathsAndDensity)
{
    const struct
    {
        const char *what;
        float perDeath, density;
        int deaths, born;
    } rows[] = {
        {"density after that", 2.9f, 0.5f, 3, 3},
        {"the room ends it", 30.0f, 1.0f, 3, 64},
        {"no number", NOT_A_NUMBER, 1.0f, 2, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(DEATH);
        family.Set("Particles / Death", row.perDeath);
        family.Child.State.GlobalDensity = row.density;
        EXPECT_EQ(family.Step(), 0); // learns of its parent
        const int slot = family.Parent.Add();
        for (int death = 0; death < row.deaths; ++death) family.Parent.Buffer->Notify_Death(slot, 0.0f);
        EXPECT_EQ(family.Step(), row.born);
        EXPECT_EQ(family.Step(), 0);
    }
}

TEST(DeathSpawner, ADeathStandsForTheEmitter)
{
    const struct
    {
        const char *what;
        int positionAlignment, velocityAlignment;
        bool inherits;
        Vector3 start, velocity;
    } rows[] = {
        {"position ahead", 1, 0, false, {3, 2, 3}, {0, 0, 4}},
        {"velocity ahead", 0, 1, false, {1, 2, 5}, {4, 0, 0}},
        {"inherits twice 10 up to 15", 0, 0, true, {1, 2, 5}, {15, 0, 4}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(DEATH, {{"Particles / Death", 1.0f},
                              {"Position", Vector3(0.0f, 0.0f, 2.0f)},
                              {"Velocity", Vector3(0.0f, 0.0f, 4.0f)},
                              {"Position Alignment", row.positionAlignment},
                              {"Velocity Alignment", row.velocityAlignment},
                              {"Inherit Velocity", row.inherits},
                              {"Inherited Vel. Scale", 2.0f},
                              {"Max Inherit Speed", 15.0f}});
        family.Step();
        const int slot = family.Parent.Add({1.0f, 2.0f, 3.0f}, {10.0f, 0.0f, 0.0f});
        family.Parent.Buffer->Notify_Death(slot, 0.05f);
        family.Parent.Buffer->Notify_Death(slot, -1.0f);
        ASSERT_EQ(family.Step(), 2);
        Expect_Near(family.Ring().Position[0], row.start + row.velocity * 0.05f);
        Expect_Near(family.Ring().Position[1], row.start);
        Expect_Near(family.Ring().Velocity[0], row.velocity);
        EXPECT_EQ(family.Ring().Age[0], 0.05f);
        EXPECT_EQ(family.Ring().Age[1], 0.0f);
    }
}

TEST(DeathSpawner, ParentAndChildMayLiveInDifferentSpaces)
{
    for (const bool parentIsLocal : {false, true}) {
        Family family(DEATH, {{"Particles / Death", 1.0f}, {"Velocity", Vector3(0.0f)}},
                      parentIsLocal ? MKP_TRANSFORM_LOCAL : MKP_TRANSFORM_WORLD,
                      parentIsLocal ? MKP_TRANSFORM_WORLD : MKP_TRANSFORM_LOCAL);
        family.Child.State.Place_At(Mat3DClass::From_Translation({100.0f, 0.0f, 0.0f}));
        family.Step();
        family.Parent.Buffer->Notify_Death(family.Parent.Add({1.0f, 2.0f, 3.0f}), 0.0f);
        ASSERT_EQ(family.Step(), 1);
        Expect_Near(family.Ring().Position[0], {parentIsLocal ? 101.0f : -99.0f, 2.0f, 3.0f});
    }
}

namespace
{

/// Parents in a row along y that each move by 10 along x in this frame, at 100 a second.
void Add_Runners(BufferBuilder &parent, int count)
{
    for (int i = 0; i < count; ++i) {
        const int slot = parent.Add({10.0f, float(i), 0.0f}, {100.0f, 0.0f, 0.0f}, 0.5f);
        parent.Buffer->PreviousPosition.Put(slot, {0.0f, float(i), 0.0f});
    }
}

struct Trace
{
    float X, Y, Age;
};

void Expect_Traces(const vrMKPBuffer &ring, const std::vector<Trace> &traces)
{
    int at = 0;
    for (const vrMKPSpan span : ring.New_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot, ++at) {
            SCOPED_TRACE(at);
            const Trace &trace = traces[static_cast<size_t>(at)];
            Expect_Near(ring.Position[slot], {trace.X, trace.Y, 0.0f}, "place", 1e-4f);
            EXPECT_NEAR(ring.Age[slot], trace.Age, 1e-5f);
        }
}

} // namespace

TEST(TrailSpawner, LaysItsParticlesAlongThePathsOfTheParents)
{
    const struct
    {
        const char *what;
        int parents;
        float perSecond, clustering;
        std::vector<Trace> traces;
    } rows[] = {
        {"each by itself", 4, 10, 0, {{0, 0, 0.1f}, {2.5f, 1, 0.075f}, {5, 2, 0.05f}, {7.5f, 3, 0.025f}, {10, 0, 0}}},
        {"pairs", 4, 10, 0.5f, {{0, 0, 0.1f}, {0, 1, 0.1f}, {5, 2, 0.05f}, {5, 3, 0.05f}, {10, 0, 0}, {10, 1, 0}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(TRAIL, {{"Particles / Second", row.perSecond},
                              {"Clustering Amount", row.clustering},
                              {"Velocity", Vector3(0.0f)}});
        Add_Runners(family.Parent.Start_At(6), row.parents);
        ASSERT_EQ(family.Step(), static_cast<int>(row.traces.size()));
        Expect_Traces(family.Ring(), row.traces);
    }
}

TEST(TrailSpawner, TakesItsParentsInTurnAcrossDeaths)
{
    Family family(TRAIL, {{"Particles / Second", 5.0f}, {"Clustering Amount", 0.0f}, {"Velocity", Vector3(0.0f)}});
    Add_Runners(family.Parent, 4); // 20 a second together: 3 in the first frame, one each 0.05 seconds
    ASSERT_EQ(family.Step(), 3);
    Expect_Traces(family.Ring(), {{0, 0, 0.1f}, {5, 1, 0.05f}, {10, 2, 0.0f}});
    family.Parent.Buffer->Remove_Oldest(2); // 10 a second now, and it's the turn of the last one
    family.Child.State.FrameTime = 0.15f;
    ASSERT_EQ(family.Step(), 1); // at 0.2 seconds, two thirds into the frame
    Expect_Traces(family.Ring(), {{6.6667f, 3, 0.05f}});
}

TEST(TrailSpawner, AParentBornInTheFrameComesFromItsBirthPlace)
{
    Family family(TRAIL, {{"Particles / Second", 20.0f}, {"Velocity", Vector3(0.0f)}});
    // 0.05 seconds old: born at x = 5, while the emitter came from far away.
    const int slot = family.Parent.Add({10.0f, 0.0f, 0.0f}, {100.0f, 0.0f, 0.0f}, 0.05f);
    family.Parent.Buffer->PreviousPosition.Put(slot, {-500.0f, 0.0f, 0.0f});
    ASSERT_EQ(family.Step(), 3);
    Expect_Traces(family.Ring(), {{5, 0, 0.1f}, {5, 0, 0.05f}, {10, 0, 0.0f}});
}

TEST(DependentSpawners, HaveRoomForAllDeathsAndForTheTrailsOfAllParents)
{
    const SmartPtr<vrMKPPlugin> age = Make_Plugin(19, {{"Stomp Time", 0.5f}});
    const auto room = [&](Family &family, bool hasData) {
        return family.Spawner.Get_Max_Particles(family.Child.State, hasData ? family.Ring().SpawnerData.Get() : nullptr,
                                                &dynamic_cast<vrMKPStomper &>(*age));
    };
    Family death(DEATH, {{"Particles / Death", 7.0f}, {"Max Deaths / Second", 40.0f}});
    EXPECT_EQ(room(death, false), 168); // 280 a second for 0.6 seconds, a hair above in floats
    Family trail(TRAIL, {{"Particles / Second", 10.0f}});
    EXPECT_EQ(room(trail, false), 6);
    EXPECT_EQ(room(trail, true), 48) << "of 8 parents";
    trail.Set("Particles / Second", 0.1f);
    EXPECT_EQ(room(trail, true), 8) << "one cluster fits";
    trail.Set("Particles / Second", 1e9f);
    EXPECT_GT(room(trail, true), 0);
}

namespace
{

const std::vector<Vector3> CORNERS = {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, 0, 6}};
const std::vector<Vector3> NORMALS = {{1, 0, 0}, {0, 2, 0}, {0, 0, 0}, {NOT_A_NUMBER, 0, 0}};
/// The second has three times the area of the first.
const std::vector<uint32_t> TRIANGLES = {0, 1, 2, 0, 1, 3};

struct MeshFamily : Family
{
    FakeWorld Carrier;

    explicit MeshFamily(int location, float perSecond = 1000.0f)
        : Family(MESH, {}, MKP_TRANSFORM_WORLD, MKP_TRANSFORM_LOCAL, 4096)
    {
        Carrier.Mesh = {CORNERS, NORMALS, TRIANGLES, -1};
        Child.State.Carrier = &Carrier;
        Child.State.FrameTime = 1.0f;
        Set("Mesh Spawn Location", location);
        Set("Particles / Second", perSecond);
        Set("Velocity", Vector3(0.0f));
        Prepare();
    }
};

} // namespace

TEST(MeshSpawner, TakesTheVerticesInOrderOrAllAtOnce)
{
    for (const int location : {2, 3}) {
        SCOPED_TRACE(location);
        MeshFamily family(location, 5.0f);
        // In order 1 and one for each of 5 gaps; all at once 1 cluster and one for the gap of 0.8 seconds.
        ASSERT_EQ(family.Step(), location == 2 ? 8 : 6);
        for (int slot = 0; slot < family.Ring().SpawnedThisFrame; ++slot) {
            EXPECT_EQ(family.Ring().Position[slot], CORNERS[static_cast<size_t>(slot % 4)]);
            EXPECT_NEAR(family.Ring().Age[slot],
                        location == 2 ? 1.0f - 0.8f * float(slot / 4) : 1.0f - 0.2f * float(slot), 1e-5f);
        }
    }
}

TEST(MeshSpawner, RandomPlacesAreSpreadEvenlyOverTheSurface)
{
    MeshFamily family(1, 4000.0f);
    ASSERT_EQ(family.Step(), 4001);
    int inSecond = 0;
    Vector3 sum(0.0f);
    for (int slot = 0; slot < 4001; ++slot) {
        const Vector3 place = family.Ring().Position[slot];
        EXPECT_TRUE(place.y == 0.0f || place.z == 0.0f);
        EXPECT_LE(place.x / 2.0f + place.y / 2.0f + place.z / 6.0f, 1.0f + 1e-5f);
        if (place.z == 0.0f) continue;
        ++inSecond;
        sum += place;
    }
    EXPECT_NEAR(inSecond, 3000, 110);
    Expect_Near(sum / float(inSecond), {2.0f / 3.0f, 0.0f, 2.0f}, "centre of the triangle", 0.03f);
}

TEST(MeshSpawner, TurnsToTheNormalAndStandsOffTheSurface)
{
    MeshFamily family(3, 3.0f);
    family.Set("Velocity", Vector3{0.0f, 0.0f, 5.0f});
    family.Set("Surface Offset", 2.0f);
    family.Child.State.FrameTime = 0.9999f; // 3 in all
    family.Set("Distance As Time", false);
    ASSERT_EQ(family.Step(), 3);
    Expect_Near(family.Ring().Velocity[0], {5, 0, 0});
    Expect_Near(family.Ring().ProjectileStartingPosition[0], {2, 0, 0});
    Expect_Near(family.Ring().Velocity[1], {0, 5, 0}); // a normal of length 2 is a direction all the same
    Expect_Near(family.Ring().ProjectileStartingPosition[1], {2, 2, 0});
    Expect_Near(family.Ring().Velocity[2], {0, 0, 5}); // none
    Expect_Near(family.Ring().ProjectileStartingPosition[2], {0, 2, 0});
}

// 300 newborns are several blocks, some of which have a number that is drawn again.
TEST(MeshSpawner, PicksBlocksAsOneByOne)
{
    const Vector3 velocity{1.0f, 2.0f, 3.0f};
    for (const int location : {0, 1}) {
        SCOPED_TRACE(location);
        MeshFamily family(location, 299.5f);
        family.Set("Velocity", velocity);
        family.Set("Surface Offset", 2.0f);
        vrMKPMeshPoints points;
        points.Set_Mesh(family.Carrier.Mesh, true);
        for (uint32_t seed = 0; seed < 60; ++seed) {
            family.Ring().Reset();
            family.Prepare();
            RandomClass random(seed * 0x9e3779b9u);
            family.Ring().Random.Seed(random.Get_State());
            ASSERT_EQ(family.Step(), 300);
            for (const vrMKPSpan span : family.Ring().New_Spans())
                for (int slot = span.First; slot < span.First + span.Count; ++slot) {
                    const auto point = location == 0 ? points.Pick_Vertex(random) : points.Pick_Surface(random);
                    const Vector3 normal = Particle::Unit(point.Normal);
                    const Vector3 start = point.Position + normal * 2.0f;
                    ASSERT_EQ(family.Ring().ProjectileStartingPosition[slot], start) << seed << " " << slot;
                    ASSERT_EQ(family.Ring().Velocity[slot], Mat3DClass::Look_Along(normal).Rotate(velocity));
                    ASSERT_EQ(family.Ring().ID[slot], random.Get_Word());
                }
        }
    }
}

TEST(MeshSpawner, KnowsWhereTheMeshIs)
{
    for (const int relationship : {0, 1}) {
        MeshFamily family(3, 1.0f);
        family.Set("Relationship to Mesh", relationship);
        family.Carrier.Mesh.Bone = 4;
        family.Carrier.Bones[4] = Mat3DClass::From_Translation({0.0f, 0.0f, 7.0f});
        family.Child.State.Place_At(Mat3DClass::From_Translation({0.0f, 1.0f, 5.0f}));
        family.Step();
        Expect_Near(family.Ring().Position[0], relationship == 0 ? Vector3(0, -1, 2) : Vector3(0, 0, 0));
    }
}

TEST(MeshSpawner, SurvivesBrokenMeshes)
{
    const std::vector<uint32_t> beyond = {0, 1, 4, 4000000000u, 0, 1, 3};
    const std::vector<uint32_t> flat = {0, 0, 1, 2, 2, 2};
    const std::vector<Vector3> wild = {{INF, 0, 0}, {NOT_A_NUMBER, 0, 0}, {3e38f, 3e38f, 3e38f}, {0, 0, 0}};
    const struct
    {
        const char *what;
        vrSpawnMesh mesh;
        bool hasVertices, hasSurface;
    } rows[] = {
        {"nothing", {}, false, false},
        {"no normals", {CORNERS, {}, TRIANGLES, -1}, true, true},
        {"indices beyond", {CORNERS, NORMALS, beyond, -1}, true, false},
        {"no area", {CORNERS, NORMALS, flat, -1}, true, false},
        {"no numbers", {wild, NORMALS, TRIANGLES, -1}, true, false},
    };
    for (const auto &row : rows)
        for (int location = 0; location < 4; ++location) {
            SCOPED_TRACE(std::string(row.what) + " " + std::to_string(location));
            Reports reports;
            MeshFamily family(location, 10.0f);
            family.Carrier.Mesh = row.mesh;
            family.Set("Surface Offset", 1.0f);
            family.Prepare();
            EXPECT_EQ(family.Step() > 0, location == 1 ? row.hasSurface : row.hasVertices);
        }
    MeshFamily family(1);
    family.Child.State.Carrier = nullptr;
    EXPECT_EQ(family.Step(), 0);
}

TEST(CodeSpawner, SpawnsWhatTheLastRequestAskedFor)
{
    const struct
    {
        const char *what;
        float limit;
        std::vector<int> requests;
        int born;
    } rows[] = {
        {"the second replaces the first", 10.0f, {7, 2}, 2},
        {"up to the limit", 4.9f, {50}, 4},
        {"fewer than none", 10.0f, {-5}, 0},
        {"no number", NOT_A_NUMBER, {5}, 0},
        {"up to the room", 1e9f, {2000000000}, 64},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(CODE, {{"#Code Particles", row.limit}, {"Position", Vector3(0.0f, 1.0f, 0.0f)}});
        family.Child.State.Place_At(Mat3DClass::From_Translation({5.0f, 0.0f, 0.0f}));
        for (int count : row.requests) family.Spawner.Spawn_Code_Particle(family.Ring(), count);
        ASSERT_EQ(family.Step(), row.born);
        EXPECT_EQ(family.Step(), 0);
        for (int slot = 0; slot < row.born; ++slot) Expect_Near(family.Ring().Position[slot], {5.0f, 1.0f, 0.0f});
    }
}

TEST(DependentSpawners, NeedAGroupAndAnotherLayerToFollow)
{
    vrMKPRenderState alone;
    for (const int id : {SLAVE, DEATH, TRAIL}) {
        SCOPED_TRACE(Plugin_Label(id));
        for (const char *name : {"child", "nobody", ""}) {
            Family family(id);
            family.Set("Parent Name", name);
            Add_Runners(family.Parent, 2);
            family.Child.Add({1.0f, 2.0f, 3.0f});
            EXPECT_EQ(family.Step(), 0) << name;
            EXPECT_EQ(family.Ring().Position[0], Vector3(1.0f, 2.0f, 3.0f));
        }
        Family family(id);
        family.ParentLayer.Buffer = nullptr;
        EXPECT_EQ(family.Step(), 0) << "not prepared yet";
        SmartPtr<vrMKPBufferPluginData> data;
        EXPECT_FALSE(family.Spawner.Create_Spawn_Data(family.Child.State, nullptr));
        EXPECT_FALSE(family.Spawner.Create_Spawn_Data(alone, &data));
        family.Ring().SpawnerData = nullptr;
        EXPECT_EQ(family.Step(), 0);
        family.Spawner.On_Parent_Particle_Death(family.Ring(), family.Ring(), Vector3(0.0f), Vector3(0.0f), 0.0f);
    }
}
