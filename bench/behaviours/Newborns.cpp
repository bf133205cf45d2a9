#include "ParentLayer.h"

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/scene/vrSimpleCarrier.h"

#include "MKLib/Parameters/ShapeParameter.h"

#include <cmath>
#include <iterator>

using namespace Behaviour;

namespace
{

/// All of them in one frame.
Case &At_Rate(Case &one)
{
    return one.Starting(
        [&one](Stage &stage) { one.Set("Particles / Second", static_cast<float>(stage.Plain.Count) / Stage::STEP); });
}

constexpr const char *SHAPES[] = {"point", "ray", "sphere", "box", "cap", "cylinder", "torus"};

void Add_Shapes(CaseList &cases)
{
    for (int shape = 0; shape < int(std::size(SHAPES)); ++shape)
        for (const bool isEven : {false, true})
            At_Rate(cases.Spawner(34, (std::string(SHAPES[shape]) + (isEven ? ", even" : "")).c_str()))
                .Set_Shape("Position", shape)
                .Set("Even Distribution", isEven);
    At_Rate(cases.Spawner(34, "sphere, radial velocity"))
        .Set_Shape("Position", SHAPE_SPHERE)
        .Set_Shape("Velocity", SHAPE_RADIAL);
    At_Rate(cases.Spawner(34, "hollow sphere"))
        .Set_Shape("Position", SHAPE_SPHERE)
        .Set("Hollow Position", true)
        .Set("Hollow Velocity", true);
    At_Rate(cases.Spawner(34, "sphere, in the group's frame"))
        .Set_Shape("Position", SHAPE_SPHERE)
        .Starting([](Stage &stage) { stage.Buffer->TransformType = MKP_TRANSFORM_LOCAL; });
    At_Rate(cases.Spawner(34, "sphere, hi-res rotate")).Set_Shape("Position", SHAPE_SPHERE).Set("Hi-Res Rotate", true);
    At_Rate(cases.Spawner(50)).Set_Shape("Position", SHAPE_SPHERE).Set("Outward Speed", 5.0f);
    At_Rate(cases.Spawner(43, "to target"))
        .Set_Shape("Position", SHAPE_SPHERE)
        .Set("Position Alignment", 2)
        .Set("Velocity Alignment", 3);
}

void Add_Areas(CaseList &cases)
{
    constexpr const char *AREAS[] = {"cylinder", "sphere", "flat circle"};
    for (int area = 0; area < 3; ++area)
        for (const bool isEven : {false, true}) {
            Case &one = cases.Spawner(115, (std::string(AREAS[area]) + (isEven ? ", even" : "")).c_str());
            one.Set("AOE Shape", area).Set("Even Distribution", isEven).Set("Particles / Second", 1e12f);
            one.Starting([&one](Stage &stage) {
                one.Set("Max Spawn Per Second", static_cast<float>(stage.Plain.Count) / Stage::STEP);
            });
        }
}

/// A tube of two rings of vertices.
vrSimpleCarrier Make_Tube()
{
    constexpr uint32_t SIDES = 64;
    std::vector<Vector3> vertices, normals;
    std::vector<uint32_t> indices;
    for (uint32_t side = 0; side < SIDES; ++side) {
        const float angle = 6.2831855f * static_cast<float>(side) / SIDES;
        const Vector3 normal(std::cos(angle), std::sin(angle), 0.0f);
        for (const float height : {0.0f, 5.0f}) {
            vertices.push_back(normal * 3.0f + Vector3(0.0f, 0.0f, height));
            normals.push_back(normal);
        }
        const uint32_t low = side * 2;
        const uint32_t next = (side + 1) % SIDES * 2;
        indices.insert(indices.end(), {low, next, low + 1, low + 1, next, next + 1});
    }
    vrSimpleCarrier carrier;
    carrier.Set_Mesh(std::move(vertices), std::move(normals), std::move(indices));
    return carrier;
}

void Add_Meshes(CaseList &cases)
{
    static const vrSimpleCarrier TUBE = Make_Tube();
    constexpr const char *LOCATIONS[] = {"random vertices", "surface", "all vertices", "vertices in order"};
    for (const int location : {0, 1, 3}) {
        Case &one = cases.Spawner(35, LOCATIONS[location]).Set("Mesh Spawn Location", location);
        one.Start = [create = std::move(one.Start)](Stage &stage) {
            stage.State.Carrier = &TUBE;
            create(stage);
        };
        At_Rate(one);
    }
}

/// Follows a parent of a thirtieth of the particles.
Case &Of_Parent(Case &one)
{
    one.Set("Parent Name", "parent").Set_Shape("Position", SHAPE_SPHERE);
    one.Start = [create = std::move(one.Start)](Stage &stage) {
        ParentLayer::Follow(stage, (stage.Plain.Count + 29) / 30);
        create(stage);
    };
    return one;
}

void Add_Followers(CaseList &cases)
{
    for (const int alignment : {0, 1}) {
        const char *variant = alignment ? "along the motion" : "";
        Case &trail = Of_Parent(cases.Spawner(39, variant));
        trail.Set("Position Alignment", alignment).Set("Velocity Alignment", alignment);
        trail.Starting([&trail](Stage &stage) {
            const int parents = (stage.Plain.Count + 29) / 30;
            trail.Set("Particles / Second",
                      static_cast<float>(stage.Plain.Count) / Stage::STEP / static_cast<float>(parents));
        });
        Case &burst = Of_Parent(cases.Spawner(40, variant));
        burst.Set("Particles / Death", 30.0f).Set("Position Alignment", alignment).Set("Velocity Alignment", alignment);
        burst.Starting([plugin = burst.Plugin](Stage &stage) {
            const auto &spawner = static_cast<const vrMKPSpawner &>(*plugin);
            spawner.Spawn(*stage.Buffer); // hears of its parent
            for (int death = 0; death < (stage.Plain.Count + 29) / 30; ++death)
                spawner.On_Parent_Particle_Death(*stage.Buffer, *ParentLayer::Get_Parent_Buffer(stage),
                                                 Vector3(static_cast<float>(death % 10)), Vector3(1.0f, 2.0f, 3.0f),
                                                 0.01f);
        });
    }
}

void Add_Others(CaseList &cases)
{
    Case &code = cases.Spawner(127).Set_Shape("Position", SHAPE_SPHERE);
    code.Starting([&code](Stage &stage) {
        code.Set("#Code Particles", static_cast<float>(stage.Plain.Count));
        stage.Buffer->PendingCount = stage.Plain.Count;
    });
    Case &cube = cases.Spawner(63);
    cube.Starting([&cube](Stage &stage) { cube.Set("Particle Count", stage.Plain.Count); });
    Case &slave = cases.Spawner(95).Set("Parent Name", "parent");
    slave.Start = [create = std::move(slave.Start)](Stage &stage) {
        ParentLayer::Follow(stage, stage.Plain.Count);
        create(stage);
    };
}

} // namespace

void Behaviour::Add_Newborns(CaseList &cases)
{
    Add_Shapes(cases);
    Add_Areas(cases);
    Add_Meshes(cases);
    Add_Followers(cases);
    Add_Others(cases);
}
