#pragma once

/// Points on the mesh that an effect is attached to.

#include "MKLib/RandomLanes.h"
#include "vrGraphics/particle/vrWorld.h"

#include <vector>

/// What picks points, of many takers at once. Left unwritten by `Draw` where nothing needs it.
struct vrMKPMeshPicks
{
    static constexpr int VERTEX_DRAWS = 2;
    static constexpr int SURFACE_DRAWS = 4;

    /// The takers' next draws for a vertex, or for a place of the surface. False where one is drawn again.
    bool Draw(const RandomLanes &takers, int count, bool ofSurface);

    alignas(64) int32_t Wide[RandomLanes::CAPACITY]; ///< picks the vertex or the triangle
    alignas(64) float Root[RandomLanes::CAPACITY];   ///< how far from the triangle's first corner
    alignas(64) float Along[RandomLanes::CAPACITY];  ///< and how far along there
};

/// Picks vertices and surface points of a mesh, in the mesh's own space. The mesh comes from outside: triangles with
/// vertices that there aren't have no surface, like those without an area, and a vertex without a normal has a zero
/// one.
class vrMKPMeshPoints
{
public:
    struct Point
    {
        Vector3 Position{0.0f};
        Vector3 Normal{0.0f}; ///< of unit length, or zero
    };

    /// Takes a mesh for this frame. With `needsSurface`, and only where it isn't the mesh of before, the table of the
    /// triangles' areas is made anew, which allocates.
    void Set_Mesh(const vrSpawnMesh &mesh, bool needsSurface);
    /// The in-order walk begins again.
    void Rewind() { Cursor = 0; }

    int Get_Vertex_Count() const { return static_cast<int>(Mesh.Vertices.size()); }
    /// Whether a triangle has an area.
    bool Has_Surface() const { return !Areas.empty() && Areas.back() > 0.0; }

    // Each expects what it picks from: vertices, or a surface.
    Point Pick_Vertex(RandomClass &random) const;
    /// Even over the surface: a triangle by its area with two draws, then a point of it with two more. The normal is
    /// the mix of the vertices', or the triangle's own without these.
    Point Pick_Surface(RandomClass &random) const;
    Point Next_Vertex();
    // The same as they were drawn.
    Point Get_Picked_Vertex(int32_t wide) const;
    Point Get_Picked_Surface(int32_t wide, float root, float along) const;

private:
    Point Get_Vertex(size_t index) const;
    void Measure_Triangles();
    size_t Find_Triangle(double part) const;

    vrSpawnMesh Mesh;
    std::vector<double> Areas;              ///< for each triangle, that of all up to it
    std::vector<uint32_t> Guide;            ///< for equal parts of the whole area, the triangle that each begins in
    const void *MeasuredVertices = nullptr; ///< what `Areas` was made from; compared, never followed
    const void *MeasuredIndices = nullptr;
    size_t MeasuredVertexCount = 0;
    size_t Cursor = 0;
};
