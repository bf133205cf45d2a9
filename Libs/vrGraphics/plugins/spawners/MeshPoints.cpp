#include "vrGraphics/plugins/spawners/MeshPoints.h"

#include "vrGraphics/particle/ParticleMath.h"

#include <algorithm>
#include <cmath>

#include <glm/geometric.hpp>

namespace
{

constexpr int64_t DRAWS = static_cast<int64_t>(RandomMax) + 1; ///< values of one draw
constexpr size_t MAX_VERTICES = size_t(1) << 24;
constexpr double LEAST_AREA = 1e-60; ///< far from where products of areas lose their bits

/// Two draws: one alone has too few values for a large mesh.
int64_t Draw_Wide(RandomClass &random)
{
    const int64_t high = random.Get_Int(0, static_cast<int32_t>(RandomMax));
    return high * DRAWS + random.Get_Int(0, static_cast<int32_t>(RandomMax));
}

/// Twice the area of a triangle; 0 for one that has none.
double Measure(const vrSpawnMesh &mesh, size_t triangle)
{
    const size_t count = mesh.Vertices.size();
    const uint32_t *corner = mesh.Indices.data() + 3 * triangle;
    if (corner[0] >= count || corner[1] >= count || corner[2] >= count) return 0.0;
    const glm::dvec3 a = mesh.Vertices[corner[0]];
    const glm::dvec3 b = mesh.Vertices[corner[1]];
    const glm::dvec3 c = mesh.Vertices[corner[2]];
    const double area = glm::length(glm::cross(b - a, c - a));
    return std::isfinite(area) && area >= LEAST_AREA ? area : 0.0;
}

} // namespace

void vrMKPMeshPoints::Set_Mesh(const vrSpawnMesh &mesh, bool needsSurface)
{
    Mesh = mesh;
    Mesh.Vertices = mesh.Vertices.first(std::min(mesh.Vertices.size(), MAX_VERTICES));
    if (!needsSurface) return;
    const bool isMeasured = MeasuredVertices == Mesh.Vertices.data() && MeasuredIndices == Mesh.Indices.data() &&
                            MeasuredVertexCount == Mesh.Vertices.size() && Areas.size() == Mesh.Indices.size() / 3;
    if (!isMeasured) Measure_Triangles();
}

void vrMKPMeshPoints::Measure_Triangles()
{
    MeasuredVertices = Mesh.Vertices.data();
    MeasuredIndices = Mesh.Indices.data();
    MeasuredVertexCount = Mesh.Vertices.size();
    Areas.resize(Mesh.Indices.size() / 3);
    double sum = 0.0;
    for (size_t triangle = 0; triangle < Areas.size(); ++triangle) Areas[triangle] = sum += Measure(Mesh, triangle);
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Get_Vertex(size_t index) const
{
    // A mesh that was changed in place may have fewer vertices than its table knows.
    if (index >= Mesh.Vertices.size()) return {};
    const bool hasNormal = index < Mesh.Normals.size() && Is_Valid(Mesh.Normals[index]);
    return {Mesh.Vertices[index], hasNormal ? Particle::Unit(Mesh.Normals[index]) : Vector3(0.0f)};
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Pick_Vertex(RandomClass &random) const
{
    return Get_Vertex(static_cast<size_t>(Draw_Wide(random) % Get_Vertex_Count()));
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Pick_Surface(RandomClass &random) const
{
    const double sought = Areas.back() * (static_cast<double>(Draw_Wide(random)) / static_cast<double>(DRAWS * DRAWS));
    const auto found = std::upper_bound(Areas.begin(), Areas.end(), sought);
    const auto triangle = static_cast<size_t>(found - Areas.begin());
    const float root = std::sqrt(random.Get_Float(0.0f, 1.0f));
    const float along = random.Get_Float(0.0f, 1.0f);
    const float weights[3] = {1.0f - root, root * (1.0f - along), root * along};

    Point mix;
    Point corners[3];
    for (size_t corner = 0; corner < 3; ++corner) {
        corners[corner] = Get_Vertex(Mesh.Indices[3 * triangle + corner]);
        mix.Position += corners[corner].Position * weights[corner];
        mix.Normal += corners[corner].Normal * weights[corner];
    }
    if (mix.Normal == Vector3(0.0f))
        mix.Normal = glm::cross(corners[1].Position - corners[0].Position, corners[2].Position - corners[0].Position);
    mix.Normal = Particle::Unit(mix.Normal);
    return mix;
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Next_Vertex()
{
    if (Cursor >= Mesh.Vertices.size()) Cursor = 0;
    return Get_Vertex(Cursor++);
}
