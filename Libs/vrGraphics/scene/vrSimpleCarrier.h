#pragma once

#include "vrGraphics/particle/vrWorld.h"

#include <string>
#include <vector>

/// A model that carries an effect without being drawn: named bones, a mesh to spawn from and a trajectory, all in its
/// own frame, and a place in the world. Changed between frames.
class vrSimpleCarrier final : public vrCarrierModel
{
public:
    void Set_Transform(const Mat3DClass &transform) { Transform = transform; }
    /// Answers the bone's index. `transform` takes the bone's frame to the model's.
    int Add_Bone(std::string_view name, const Mat3DClass &transform);
    /// Expects an index that `Add_Bone` or `Find_Bone` gave.
    void Set_Bone_Transform(int bone, const Mat3DClass &transform)
    {
        Bones[static_cast<size_t>(bone)].Transform = transform;
    }
    /// Takes the mesh; normals may be empty. False, with the mesh as it was, unless there are as many normals as
    /// vertices or none, and three indices a triangle, each of a vertex.
    bool Set_Mesh(std::vector<Vector3> vertices, std::vector<Vector3> normals, std::vector<uint32_t> indices,
                  int bone = -1);
    /// The corners of a broken line in the model's frame; fewer than two are no trajectory.
    void Set_Trajectory(std::vector<Vector3> corners) { Trajectory = std::move(corners); }

    int Find_Bone(std::string_view name) const override;
    Mat3DClass Get_Bone_Transform(int bone) const override;
    vrSpawnMesh Get_Spawn_Mesh() const override;
    /// By the nearest point of the line.
    bool Get_Trajectory_Fraction(const Vector3 &point, float &fraction) const override;

private:
    struct Bone
    {
        std::string Name;
        Mat3DClass Transform;
    };

    Mat3DClass Transform;
    std::vector<Bone> Bones;
    std::vector<Vector3> Vertices;
    std::vector<Vector3> Normals;
    std::vector<uint32_t> Indices;
    int MeshBone = -1;
    std::vector<Vector3> Trajectory;
};
