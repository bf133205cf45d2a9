#pragma once

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"

#include <map>
#include <vector>

namespace MKTest
{

/// Ground that rises with x, which segments cross at the height of 0, and a model with a bone by the name of "hand",
/// which is its fourth, and with a trajectory along z of length 100.
struct FakeWorld final : vrTerrain, vrCarrierModel
{
    float Height = 0.0f;
    float Slope = 0.0f;
    vrSpawnMesh Mesh;
    std::map<int, Mat3DClass> Bones;

    explicit FakeWorld(const Vector3 &hand = Vector3(0.0f))
    {
        Bones = {{-1, {}}, {4, Mat3DClass::From_Translation(hand)}};
    }

    float Get_Height(float x, float) const override { return Height + Slope * x; }
    bool Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const override
    {
        if (!(from.z > 0.0f) || !(to.z <= 0.0f)) return false;
        hit = from + (to - from) * (from.z / (from.z - to.z));
        normal = Vector3(0.0f, 0.0f, 1.0f);
        return true;
    }
    int Find_Bone(std::string_view name) const override { return name == "hand" ? 4 : -1; }
    Mat3DClass Get_Bone_Transform(int bone) const override { return Bones.at(bone); }
    vrSpawnMesh Get_Spawn_Mesh() const override { return Mesh; }
    bool Get_Trajectory_Fraction(const Vector3 &point, float &fraction) const override
    {
        fraction = point.z / 100.0f;
        return true;
    }
};

/// Takes down the deaths that it is told, and hands them to its spawner if it has one.
struct FakeLayer final : vrMKPLayer
{
    struct Death
    {
        float X;
        float Overshoot;
        bool operator==(const Death &) const = default;
    };
    MK::String Name;
    vrMKPBuffer *Buffer = nullptr;
    const vrMKPSpawner *Spawner = nullptr;
    std::vector<Death> Deaths;

    const MK::String &Get_Name() const override { return Name; }
    vrMKPBuffer *Get_Buffer() const override { return Buffer; }
    void On_Parent_Particle_Death(const vrMKPBuffer &parent, const Vector3 &position, const Vector3 &velocity,
                                  float overshoot) override
    {
        Deaths.push_back({position.x, overshoot});
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

} // namespace MKTest
