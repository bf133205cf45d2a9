#include "vrGraphics/plugins/spawners/MeshPoints.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"

#include <algorithm>
#include <cmath>

#include <glm/geometric.hpp>

namespace
{

constexpr int32_t DRAWS = static_cast<int32_t>(RandomMax) + 1; ///< values of one draw
constexpr size_t MAX_VERTICES = size_t(1) << 24;
constexpr double LEAST_AREA = 1e-60; ///< far from where products of areas lose their bits

/// Two draws: one alone has too few values for a large mesh.
MK_INLINE int32_t Join(int32_t high, int32_t low)
{
    return high * DRAWS + low;
}
int32_t Draw_Wide(RandomClass &random)
{
    const int32_t high = random.Draw();
    return Join(high, random.Draw());
}

template <bool OfSurface>
MK_INLINE uint32_t Draw_In_Form(vrMKPMeshPicks &picks, const RandomLanes::View &takers, int count)
{
    const RandomLanes::View lanes = takers;
    const int whole = RandomLanes::Round_Up(count);
    uint32_t marks = 0;
#pragma GCC ivdep
    for (int i = 0; i < whole; ++i) {
        uint32_t state = lanes[i];
        const int32_t high = RandomLanes::Draw(state, marks);
        picks.Wide[i] = Join(high, RandomLanes::Draw(state, marks));
        if constexpr (OfSurface) {
            picks.Root[i] = std::sqrt(RandomLanes::To_Unit(RandomLanes::Draw(state, marks)));
            picks.Along[i] = RandomLanes::To_Unit(RandomLanes::Draw(state, marks));
        }
    }
    return marks;
}
MK_SIMD uint32_t Draw_Vertices(vrMKPMeshPicks &picks, const RandomLanes::View &takers, int count)
{
    return Draw_In_Form<false>(picks, takers, count);
}
MK_SIMD uint32_t Draw_Surface(vrMKPMeshPicks &picks, const RandomLanes::View &takers, int count)
{
    return Draw_In_Form<true>(picks, takers, count);
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

bool vrMKPMeshPicks::Draw(const RandomLanes &takers, int count, bool ofSurface)
{
    const uint32_t marks =
        ofSurface ? Draw_Surface(*this, takers.Get_View(), count) : Draw_Vertices(*this, takers.Get_View(), count);
    return (marks & RandomLanes::REPEATED) == 0;
}

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
    Guide.resize(Areas.size());
    size_t triangle = 0;
    for (size_t part = 0; part < Guide.size(); ++part) {
        const double area = sum * (static_cast<double>(part) / static_cast<double>(Guide.size()));
        while (triangle + 1 < Areas.size() && Areas[triangle] <= area) ++triangle;
        Guide[part] = static_cast<uint32_t>(triangle);
    }
}

/// The first triangle with which more area than `part` of all is reached, for a part of 0 to less than 1. From where
/// the guide says it is a step or two on average, however many there are.
size_t vrMKPMeshPoints::Find_Triangle(double part) const
{
    const double sought = Areas.back() * part;
    size_t triangle = Guide[static_cast<size_t>(part * static_cast<double>(Guide.size()))];
    while (triangle > 0 && Areas[triangle - 1] > sought) --triangle; // the guide's products are rounded
    while (Areas[triangle] <= sought) ++triangle;
    return triangle;
}

MK_INLINE vrMKPMeshPoints::Point vrMKPMeshPoints::Get_Vertex(size_t index) const
{
    // A mesh that was changed in place may have fewer vertices than its table knows.
    if (index >= Mesh.Vertices.size()) return {};
    const bool hasNormal = index < Mesh.Normals.size() && Particle::Invalid_Bits(Mesh.Normals[index]) == 0;
    return {Mesh.Vertices[index], hasNormal ? Particle::Unit(Mesh.Normals[index]) : Vector3(0.0f)};
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Pick_Vertex(RandomClass &random) const
{
    return Get_Picked_Vertex(Draw_Wide(random));
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Get_Picked_Vertex(int32_t wide) const
{
    return Get_Vertex(static_cast<size_t>(wide % Get_Vertex_Count()));
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Pick_Surface(RandomClass &random) const
{
    const int32_t wide = Draw_Wide(random);
    const float root = std::sqrt(random.Get_Float(0.0f, 1.0f));
    return Get_Picked_Surface(wide, root, random.Get_Float(0.0f, 1.0f));
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Get_Picked_Surface(int32_t wide, float root, float along) const
{
    const size_t triangle = Find_Triangle(static_cast<double>(wide) / (static_cast<double>(DRAWS) * DRAWS));
    const float weights[3] = {1.0f - root, root * (1.0f - along), root * along};

    const uint32_t *corner = Mesh.Indices.data() + 3 * triangle;
    const Point a = Get_Vertex(corner[0]);
    const Point b = Get_Vertex(corner[1]);
    const Point c = Get_Vertex(corner[2]);
    const auto mix = [&weights](const Vector3 &x, const Vector3 &y, const Vector3 &z) {
        return Vector3(0.0f) + x * weights[0] + y * weights[1] + z * weights[2];
    };
    const Vector3 normal = mix(a.Normal, b.Normal, c.Normal);
    const bool hasNormal = normal != Vector3(0.0f);
    return {mix(a.Position, b.Position, c.Position),
            Particle::Unit(hasNormal ? normal : glm::cross(b.Position - a.Position, c.Position - a.Position))};
}

vrMKPMeshPoints::Point vrMKPMeshPoints::Next_Vertex()
{
    if (Cursor >= Mesh.Vertices.size()) Cursor = 0;
    return Get_Vertex(Cursor++);
}
