#include "vrGraphics/scene/vrSimpleCarrier.h"

#include "MKLib/MKString.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <limits>

int vrSimpleCarrier::Add_Bone(std::string_view name, const Mat3DClass &transform)
{
    Bones.push_back({std::string(name), transform});
    return static_cast<int>(Bones.size()) - 1;
}

bool vrSimpleCarrier::Set_Mesh(std::vector<Vector3> vertices, std::vector<Vector3> normals,
                               std::vector<uint32_t> indices, int bone)
{
    if (!normals.empty() && normals.size() != vertices.size()) return false;
    const auto isVertex = [&](uint32_t index) { return index < vertices.size(); };
    if (indices.size() % 3 != 0 || !std::all_of(indices.begin(), indices.end(), isVertex)) return false;
    Vertices = std::move(vertices);
    Normals = std::move(normals);
    Indices = std::move(indices);
    MeshBone = bone;
    return true;
}

int vrSimpleCarrier::Find_Bone(std::string_view name) const
{
    const auto found = std::find_if(Bones.begin(), Bones.end(),
                                    [&](const Bone &bone) { return MK::Equal_Ignoring_Case(bone.Name, name); });
    return found == Bones.end() ? -1 : static_cast<int>(found - Bones.begin());
}

Mat3DClass vrSimpleCarrier::Get_Bone_Transform(int bone) const
{
    if (bone < 0 || static_cast<size_t>(bone) >= Bones.size()) return Transform;
    return Transform * Bones[static_cast<size_t>(bone)].Transform;
}

vrSpawnMesh vrSimpleCarrier::Get_Spawn_Mesh() const
{
    return {Vertices, Normals, Indices, MeshBone};
}

bool vrSimpleCarrier::Get_Trajectory_Fraction(const Vector3 &point, float &fraction) const
{
    if (Trajectory.size() < 2) return false;
    const Vector3 local = Transform.Inverse().Transform(point);
    float length = 0.0f;
    float lengthAtNearest = 0.0f;
    float nearest = std::numeric_limits<float>::infinity();
    for (size_t corner = 0; corner + 1 < Trajectory.size(); ++corner) {
        const Vector3 way = Trajectory[corner + 1] - Trajectory[corner];
        const float square = glm::dot(way, way);
        const float along =
            square > 0.0f ? std::clamp(glm::dot(local - Trajectory[corner], way) / square, 0.0f, 1.0f) : 0.0f;
        const float part = glm::length(way);
        const float distance = glm::distance(local, Trajectory[corner] + way * along);
        if (distance < nearest) {
            nearest = distance;
            lengthAtNearest = length + part * along;
        }
        length += part;
    }
    fraction = length > 0.0f ? lengthAtNearest / length : 0.0f;
    return true;
}
