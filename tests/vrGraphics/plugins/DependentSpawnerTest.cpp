#include "vrGraphics/plugins/spawners/ParticleSpawners.h"

#include "BufferBuilder.h"
#include "PluginBuilders.h"
#include "common/Reports.h"

#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/CodeSpawner.h"
#include "vrGraphics/plugins/spawners/MeshSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

using namespace MKTest;

namespace
{

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

constexpr int TRAIL = 39, DEATH = 40, MESH = 35, SLAVE = 95, CODE = 127;

void Expect_Near(const Vector3 &actual, const Vector3 &expected, float tolerance = 1e-4f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

struct FakeLayer final : vrMKPLayer
{
    MK::String Name;
    vrMKPBuffer *Buffer = nullptr;
    const vrMKPSpawner *Spawner = nullptr;

    const MK::String &Get_Name() const override { return Name; }
    vrMKPBuffer *Get_Buffer() const override { return Buffer; }
    void On_Parent_Particle_Death(const vrMKPBuffer &parent, const Vector3 &position, const Vector3 &velocity,
                                  float overshoot) override
    {
        if (Spawner) Spawner->On_Parent_Particle_Death(*Buffer, parent, position, velocity, overshoot);
    }
};

struct FakeLayers final : vrMKPLayerList
{
    std::vector<vrMKPLayer *> Layers;

    vrMKPLayer *Find_Layer(std::string_view name) const override
    {
        for (vrMKPLayer *layer : Layers)
            if (MK::Equal_Ignoring_Case(layer->Get_Name(), name)) return layer;
        return nullptr;
    }
};

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

    explicit Family(int spawner, vrMKPTransformType parentSpace = MKP_TRANSFORM_WORLD,
                    vrMKPTransformType childSpace = MKP_TRANSFORM_WORLD, int parentCapacity = 8, int childCapacity = 64)
        : Parent(parentCapacity, parentSpace), Child(childCapacity, childSpace), Plugin(Make_Plugin(spawner)),
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
        if (Plugin->Get_Parameter_By_Name("Parent Name")) Name_Parent("sparks");
        Prepare();
    }

    void Prepare() { EXPECT_TRUE(Spawner.Create_Spawn_Data(Child.State, &Child.Buffer->SpawnerData)); }
    void Name_Parent(const char *name) { Parameter_Of<StringParameterClass>(*Plugin, "Parent Name").Set_Value(name); }
    void Set(const char *name, float value) { Parameter_Of<RangedFloatParameter>(*Plugin, name).Set_Value(value); }
    void Switch(const char *name, bool value) { Parameter_Of<BoolParameter>(*Plugin, name).Set_Value(value); }
    void Choose(const char *name, int index) { Parameter_Of<EnumParameterClass>(*Plugin, name).Set_Index(index); }
    /// A shape without a draw.
    void Set_Point(const char *name, const Vector3 &point)
    {
        ShapeStruct shape;
        shape.Center = point;
        Parameter_Of<ShapeParameterClass>(*Plugin, name).Set_Value(shape);
    }
    /// One step of the child; answers how many particles were born.
    int Step()
    {
        Child.End_Frame();
        Spawner.Spawn(*Child.Buffer);
        return Child.Buffer->SpawnedThisFrame;
    }
    vrMKPBuffer &Ring() { return *Child.Buffer; }
};

struct FakeCarrier final : vrCarrierModel
{
    vrSpawnMesh Mesh;
    std::map<int, Mat3DClass> Bones;

    int Find_Bone(std::string_view) const override { return -1; }
    Mat3DClass Get_Bone_Transform(int bone) const override { return Bones.at(bone); }
    vrSpawnMesh Get_Spawn_Mesh() const override { return Mesh; }
};

/// The second of the deaths' parameters of that name.
RangedFloatParameter &Burst_Probability(const vrMKPPlugin &plugin)
{
    return dynamic_cast<RangedFloatParameter &>(*plugin.Get_Parameters().Find_Parameter_By_ID(113));
}

} // namespace

TEST(Slave, IsItsParentMovedByAnOffset)
{
    Family family(SLAVE);
    Parameter_Of<Vector3Parameter>(*family.Plugin, "Position Offset").Set_Value({0.0f, 0.0f, 5.0f});
    family.Parent.Start_At(6);
    for (int i = 0; i < 4; ++i) family.Parent.Add({float(i), 0.0f, 1.0f}, {0.0f, 2.0f, 0.0f}, 0.25f);
    vrMKPBuffer &parent = *family.Parent.Buffer;
    parent.Random.Seed(77);
    parent.Rotation[6] = 9;
    parent.MayHaveStopped = true;
    family.Step();

    vrMKPBuffer &child = family.Ring();
    EXPECT_EQ(child.Capacity, 8);
    EXPECT_EQ(child.Head, 6);
    EXPECT_EQ(child.Tail, 1);
    EXPECT_EQ(child.ActiveCount, 4);
    EXPECT_EQ(child.NextSerial, 4u);
    EXPECT_EQ(child.Random.Get_State(), 77u);
    EXPECT_TRUE(child.MayHaveStopped);
    EXPECT_EQ(child.Position[0], Vector3(2.0f, 0.0f, 6.0f));
    EXPECT_EQ(child.PreviousPosition[0], Vector3(2.0f, 0.0f, 6.0f));
    EXPECT_EQ(child.WorldPosition[0], Vector3(2.0f, 0.0f, 6.0f));
    EXPECT_EQ(child.Velocity[0], Vector3(0.0f, 2.0f, 0.0f));
    EXPECT_EQ(child.Age[0], 0.25f);
    EXPECT_EQ(child.ID[1], 3u);
    EXPECT_EQ(child.Rotation[6], 0u);
    EXPECT_EQ(child.Size[6], Vector2(1.0f, 1.0f));
}

TEST(Slave, WithoutAnotherLayerToFollowNothingHappens)
{
    const char *const names[] = {"child", "nobody", ""};
    for (const char *name : names) {
        SCOPED_TRACE(name);
        Family family(SLAVE);
        family.Name_Parent(name);
        family.Child.Add({1.0f, 2.0f, 3.0f});
        family.Step();
        EXPECT_EQ(family.Ring().ActiveCount, 1);
        EXPECT_EQ(family.Ring().Position[0], Vector3(1.0f, 2.0f, 3.0f));
    }
    // Not prepared yet, and prepared later.
    Family family(SLAVE);
    family.Parent.Add();
    family.ParentLayer.Buffer = nullptr;
    family.Step();
    EXPECT_EQ(family.Ring().ActiveCount, 0);
    family.ParentLayer.Buffer = family.Parent.Buffer.Get();
    family.Step();
    EXPECT_EQ(family.Ring().ActiveCount, 1);
}

TEST(Slave, EachModifierCopiesItsChannels)
{
    for (int id : {96, 97, 98, 99}) {
        SCOPED_TRACE(Plugin_Label(id));
        Family family(SLAVE);
        vrMKPBuffer &parent = *family.Parent.Buffer;
        parent.Rotation[family.Parent.Add()] = 7;
        parent.Size[0] = {3.0f, 4.0f};
        parent.Color[0] = 0x11223344;
        parent.UV[0] = {0.1f, 0.2f};
        parent.DUV[0] = {0.3f, 0.4f};
        family.Step();
        vrMKPBuffer &child = family.Ring();
        child.Color[0] = 0;
        child.UV[0] = child.DUV[0] = Vector2(0.0f);

        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        Parameter_Of<StringParameterClass>(*plugin, "Parent Name").Set_Value("SPARKS");
        const auto &modifier = dynamic_cast<const vrMKPModifier &>(*plugin);
        modifier.Modify(child, 0); // without its data
        child.ModifierData.push_back(modifier.Create_Buffer_Data(family.Child.State));
        modifier.Modify(child, 0);
        EXPECT_EQ(child.Rotation[0], id == 96 ? 7u : 0u);
        EXPECT_EQ(child.Size[0], id == 97 ? Vector2(3.0f, 4.0f) : Vector2(1.0f));
        EXPECT_EQ(child.Color[0], id == 98 ? 0x11223344u : 0u);
        EXPECT_EQ(child.UV[0], id == 99 ? Vector2(0.1f, 0.2f) : Vector2(0.0f));
        EXPECT_EQ(child.DUV[0], id == 99 ? Vector2(0.3f, 0.4f) : Vector2(0.0f));
    }
}

TEST(DeathSpawner, BurstsInProportionToDeathsAndDensity)
{
    const struct
    {
        const char *what;
        float perDeath, density;
        int deaths, born;
    } rows[] = {
        {"each death", 3.0f, 1.0f, 2, 6},         {"whole particles", 2.9f, 1.0f, 1, 2},
        {"density after that", 2.9f, 0.5f, 3, 3}, {"too thin", 3.0f, 0.3f, 4, 0},
        {"the room ends it", 30.0f, 1.0f, 3, 64}, {"no number", NOT_A_NUMBER, 1.0f, 2, 0},
        {"negative", -4.0f, 1.0f, 2, 0},
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
        {"as drawn", 0, 0, false, {1, 2, 5}, {0, 0, 4}},
        {"position ahead", 1, 0, false, {3, 2, 3}, {0, 0, 4}},
        {"velocity ahead", 0, 1, false, {1, 2, 5}, {4, 0, 0}},
        {"inherits twice 10 up to 15", 0, 0, true, {1, 2, 5}, {15, 0, 4}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(DEATH);
        family.Set("Particles / Death", 1.0f);
        family.Set_Point("Position", {0.0f, 0.0f, 2.0f});
        family.Set_Point("Velocity", {0.0f, 0.0f, 4.0f});
        family.Choose("Position Alignment", row.positionAlignment);
        family.Choose("Velocity Alignment", row.velocityAlignment);
        family.Switch("Inherit Velocity", row.inherits);
        family.Set("Inherited Vel. Scale", 2.0f);
        family.Set("Max Inherit Speed", 15.0f);
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
        Family family(DEATH, parentIsLocal ? MKP_TRANSFORM_LOCAL : MKP_TRANSFORM_WORLD,
                      parentIsLocal ? MKP_TRANSFORM_WORLD : MKP_TRANSFORM_LOCAL);
        family.Set("Particles / Death", 1.0f);
        family.Set_Point("Velocity", Vector3(0.0f));
        family.Child.State.Place_At(Mat3DClass::From_Translation({100.0f, 0.0f, 0.0f}));
        family.Step();
        family.Parent.Buffer->Notify_Death(family.Parent.Add({1.0f, 2.0f, 3.0f}), 0.0f);
        ASSERT_EQ(family.Step(), 1);
        Expect_Near(family.Ring().Position[0], {parentIsLocal ? 101.0f : -99.0f, 2.0f, 3.0f});
    }
}

TEST(DeathSpawner, OneChanceForAllDeathsOfAFrame)
{
    int bursts = 0;
    for (uint32_t seed = 0; seed < 64; ++seed) {
        Family family(DEATH);
        family.Set("Particles / Death", 1.0f);
        Burst_Probability(*family.Plugin).Set_Value(0.5f);
        family.Step();
        family.Ring().Random.Seed(seed * 7919);
        const int slot = family.Parent.Add();
        for (int death = 0; death < 10; ++death) family.Parent.Buffer->Notify_Death(slot, 0.0f);
        const int born = family.Step();
        EXPECT_TRUE(born == 0 || born == 10) << born;
        bursts += born == 10;
        EXPECT_EQ(family.Step(), 0) << "deaths without a burst are over, too";
    }
    EXPECT_GT(bursts, 16);
    EXPECT_LT(bursts, 48);
}

TEST(DeathSpawner, ItsRateSizesTheRing)
{
    Family family(DEATH);
    family.Set("Particles / Death", 7.0f);
    family.Set("Max Deaths / Second", 40.0f);
    const SmartPtr<vrMKPPlugin> age = Make_Plugin(19);
    Parameter_Of<RangedFloatParameter>(*age, "Stomp Time").Set_Value(0.5f);
    // 280 a second for 0.6 seconds, a hair above in floats.
    EXPECT_EQ(family.Spawner.Get_Max_Particles(family.Child.State, nullptr, &dynamic_cast<vrMKPStomper &>(*age)), 168);
    EXPECT_FALSE(family.Spawner.Has_Hard_Lifetime());
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
            Expect_Near(ring.Position[slot], {trace.X, trace.Y, 0.0f}, 1e-3f);
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
        {"one parent", 1, 30.0f, 1.0f, {{0, 0, 0.1f}, {3.3333f, 0, 0.06667f}, {6.6667f, 0, 0.03333f}, {10, 0, 0}}},
        {"each by itself",
         4,
         10.0f,
         0.0f,
         {{0, 0, 0.1f}, {2.5f, 1, 0.075f}, {5, 2, 0.05f}, {7.5f, 3, 0.025f}, {10, 0, 0}}},
        {"two of four",
         4,
         10.0f,
         0.5f,
         {{0, 0, 0.1f}, {0, 1, 0.1f}, {5, 2, 0.05f}, {5, 3, 0.05f}, {10, 0, 0}, {10, 1, 0}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        Family family(TRAIL);
        family.Set("Particles / Second", row.perSecond);
        family.Set("Clustering Amount", row.clustering);
        family.Set_Point("Velocity", Vector3(0.0f));
        Add_Runners(family.Parent.Start_At(6), row.parents);
        ASSERT_EQ(family.Step(), static_cast<int>(row.traces.size()));
        Expect_Traces(family.Ring(), row.traces);
    }
}

TEST(TrailSpawner, TakesItsParentsInTurnAcrossDeaths)
{
    Family family(TRAIL);
    family.Set("Particles / Second", 5.0f);
    family.Set("Clustering Amount", 0.0f);
    family.Set_Point("Velocity", Vector3(0.0f));
    Add_Runners(family.Parent, 4); // 20 a second together: 3 in the first frame, one each 0.05 seconds
    ASSERT_EQ(family.Step(), 3);
    Expect_Traces(family.Ring(), {{0, 0, 0.1f}, {5, 1, 0.05f}, {10, 2, 0.0f}});
    family.Parent.Buffer->Remove_Oldest(2); // 10 a second now, and it's the turn of the last one
    family.Child.State.FrameTime = 0.15f;
    ASSERT_EQ(family.Step(), 1); // at 0.2 seconds, two thirds into the frame
    Expect_Traces(family.Ring(), {{6.6667f, 3, 0.05f}});
    family.Child.State.FrameTime = 0.1f;
    ASSERT_EQ(family.Step(), 1); // at 0.3 seconds
    Expect_Traces(family.Ring(), {{5, 2, 0.05f}});
}

TEST(TrailSpawner, AParentBornInTheFrameComesFromItsBirthPlace)
{
    Family family(TRAIL);
    family.Set("Particles / Second", 20.0f);
    family.Set_Point("Velocity", Vector3(0.0f));
    // 0.05 seconds old: born at x = 5, while the emitter came from far away.
    const int slot = family.Parent.Add({10.0f, 0.0f, 0.0f}, {100.0f, 0.0f, 0.0f}, 0.05f);
    family.Parent.Buffer->PreviousPosition.Put(slot, {-500.0f, 0.0f, 0.0f});
    ASSERT_EQ(family.Step(), 3);
    Expect_Traces(family.Ring(), {{5, 0, 0.1f}, {5, 0, 0.05f}, {10, 0, 0.0f}});
}

TEST(TrailSpawner, SpawnsNothingWithoutAParentToFollow)
{
    const char *const names[] = {"child", "nobody", ""};
    for (const char *name : names) {
        SCOPED_TRACE(name);
        Family family(TRAIL);
        family.Name_Parent(name);
        Add_Runners(family.Parent, 2);
        Add_Runners(family.Child, 2);
        EXPECT_EQ(family.Step(), 0);
    }
    Family family(TRAIL);
    EXPECT_EQ(family.Step(), 0) << "an empty ring";
    family.ParentLayer.Buffer = nullptr;
    EXPECT_EQ(family.Step(), 0) << "no ring yet";
}

TEST(TrailSpawner, HasRoomForTheTrailsOfAllParents)
{
    Family family(TRAIL);
    family.Set("Particles / Second", 10.0f);
    const SmartPtr<vrMKPPlugin> age = Make_Plugin(19);
    Parameter_Of<RangedFloatParameter>(*age, "Stomp Time").Set_Value(1.0f);
    const auto &stomper = dynamic_cast<vrMKPStomper &>(*age);
    const auto room = [&](const vrMKPBufferPluginData *data) {
        return family.Spawner.Get_Max_Particles(family.Child.State, data, &stomper);
    };
    EXPECT_EQ(room(nullptr), 11);
    EXPECT_EQ(room(family.Ring().SpawnerData.Get()), 88); // 8 parents at 10 a second for 1.1 seconds
    family.Set("Particles / Second", 0.1f);
    EXPECT_EQ(room(family.Ring().SpawnerData.Get()), 8) << "one cluster fits";
    family.Set("Particles / Second", 1e9f);
    EXPECT_EQ(room(family.Ring().SpawnerData.Get()), 1100000001) << "one parent's, however many";
}

namespace
{

const std::vector<Vector3> CORNERS = {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, 0, 6}};
const std::vector<Vector3> NORMALS = {{1, 0, 0}, {0, 2, 0}, {0, 0, 0}, {NOT_A_NUMBER, 0, 0}};
/// The second has three times the area of the first.
const std::vector<uint32_t> TRIANGLES = {0, 1, 2, 0, 1, 3};

struct MeshFamily : Family
{
    FakeCarrier Carrier;

    explicit MeshFamily(int location, float perSecond = 1000.0f)
        : Family(MESH, MKP_TRANSFORM_WORLD, MKP_TRANSFORM_LOCAL, 8, 4096)
    {
        Carrier.Mesh = {CORNERS, NORMALS, TRIANGLES, -1};
        Carrier.Bones[-1] = Mat3DClass();
        Child.State.Carrier = &Carrier;
        Child.State.FrameTime = 1.0f;
        Choose("Mesh Spawn Location", location);
        Set("Particles / Second", perSecond);
        Set_Point("Velocity", Vector3(0.0f));
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

TEST(MeshSpawner, RandomPlacesAreSpreadEvenly)
{
    MeshFamily vertices(0);
    ASSERT_EQ(vertices.Step(), 1001);
    for (const Vector3 &corner : CORNERS) {
        int count = 0;
        for (int slot = 0; slot < 1001; ++slot) count += vertices.Ring().Position[slot] == corner;
        EXPECT_NEAR(count, 250.0, 60.0);
    }

    MeshFamily surface(1, 4000.0f);
    ASSERT_EQ(surface.Step(), 4001);
    int inSecond = 0;
    Vector3 sum(0.0f);
    for (int slot = 0; slot < 4001; ++slot) {
        const Vector3 place = surface.Ring().Position[slot];
        EXPECT_TRUE(place.y == 0.0f || place.z == 0.0f);
        EXPECT_LE(place.x / 2.0f + place.y / 2.0f + place.z / 6.0f, 1.0f + 1e-5f);
        if (place.z == 0.0f) continue;
        ++inSecond;
        sum += place;
    }
    EXPECT_NEAR(inSecond, 3000, 110);
    Expect_Near(sum / float(inSecond), {2.0f / 3.0f, 0.0f, 2.0f}, 0.1f); // the centre of the triangle
}

TEST(MeshSpawner, TurnsToTheNormalAndStandsOffTheSurface)
{
    MeshFamily family(3, 3.0f);
    family.Set_Point("Velocity", {0.0f, 0.0f, 5.0f});
    family.Set("Surface Offset", 2.0f);
    family.Child.State.FrameTime = 0.9999f; // 3 in all
    family.Switch("Distance As Time", false);
    ASSERT_EQ(family.Step(), 3);
    Expect_Near(family.Ring().Velocity[0], {5, 0, 0});
    Expect_Near(family.Ring().ProjectileStartingPosition[0], {2, 0, 0});
    Expect_Near(family.Ring().Velocity[1], {0, 5, 0}); // a normal of length 2 is a direction all the same
    Expect_Near(family.Ring().ProjectileStartingPosition[1], {2, 2, 0});
    Expect_Near(family.Ring().Velocity[2], {0, 0, 5}); // none
    Expect_Near(family.Ring().ProjectileStartingPosition[2], {0, 2, 0});
}

TEST(MeshSpawner, KnowsWhereTheMeshIs)
{
    for (const int relationship : {0, 1}) {
        MeshFamily family(3, 1.0f);
        family.Choose("Relationship to Mesh", relationship);
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
        Family family(CODE);
        family.Set("#Code Particles", row.limit);
        family.Set_Point("Position", {0.0f, 1.0f, 0.0f});
        family.Set_Point("Velocity", {3.0f, 0.0f, 0.0f});
        family.Child.State.Place_At(Mat3DClass::From_Translation({-9.0f, 0.0f, 0.0f}));
        family.Child.State.Move_To(Mat3DClass::From_Translation({5.0f, 0.0f, 0.0f}));
        for (int count : row.requests) family.Spawner.Spawn_Code_Particle(family.Ring(), count);
        ASSERT_EQ(family.Step(), row.born);
        EXPECT_EQ(family.Step(), 0);
        EXPECT_FLOAT_EQ(family.Ring().SpawnClock, 0.1f);
        for (int slot = 0; slot < row.born; ++slot) {
            Expect_Near(family.Ring().Position[slot], {5.0f, 1.0f, 0.0f});
            EXPECT_EQ(family.Ring().Velocity[slot], Vector3(3.0f, 0.0f, 0.0f));
            EXPECT_EQ(family.Ring().Age[slot], 0.0f);
        }
    }
    Family family(CODE);
    EXPECT_EQ(family.Spawner.Get_Max_Particles(family.Child.State, nullptr, nullptr), 10);
}

TEST(DependentSpawners, RefuseABufferWithoutAPlaceForTheirDataOrAGroup)
{
    vrMKPRenderState alone;
    for (int id : {SLAVE, DEATH, TRAIL}) {
        SCOPED_TRACE(Plugin_Label(id));
        Family family(id);
        SmartPtr<vrMKPBufferPluginData> data;
        EXPECT_FALSE(family.Spawner.Create_Spawn_Data(family.Child.State, nullptr));
        EXPECT_FALSE(family.Spawner.Create_Spawn_Data(alone, &data));
        family.Ring().SpawnerData = nullptr;
        EXPECT_EQ(family.Step(), 0);
        family.Spawner.On_Parent_Particle_Death(family.Ring(), family.Ring(), Vector3(0.0f), Vector3(0.0f), 0.0f);
    }
}
