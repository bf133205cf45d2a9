#pragma once

/// What particles can ask of the world around them. A game, a tool or a test implements these; a renderable without one
/// plays in a world that has none of it. Queries come from the threads that simulate, several at once, and must not
/// change anything.

#include "MKLib/MKMath/Mat3D.h"

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

/// What the heights of a ground lie within; more than it takes is right, too.
struct vrHeightRange
{
    float Least;
    float Greatest;
};

/// Ground with one height at each place.
class vrTerrain
{
public:
    virtual ~vrTerrain() = default;
    /// World units.
    virtual float Get_Height(float x, float y) const = 0;
    /// Spares queries for what is above or below all of the ground. Without limits where a ground doesn't know any.
    virtual vrHeightRange Get_Height_Range() const
    {
        return {-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()};
    }
    /// Whether the way from one point to another goes through the ground from above, where first, and the unit normal
    /// of the ground there.
    virtual bool Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const = 0;
};

/// A triangle mesh to spawn from, in the space of its bone. Borrowed from whoever answers it.
struct vrSpawnMesh
{
    std::span<const Vector3> Vertices;
    std::span<const Vector3> Normals;  ///< one a vertex, of unit length; may be empty
    std::span<const uint32_t> Indices; ///< three a triangle
    int Bone = -1;                     ///< the bone that it hangs on; -1 for the model itself
};

/// A model that carries an effect.
class vrCarrierModel
{
public:
    virtual ~vrCarrierModel() = default;
    /// The index of a bone, ignoring case, or -1.
    virtual int Find_Bone(std::string_view name) const = 0;
    /// In the world. Expects an index that `Find_Bone` gave, or -1 for the model itself.
    virtual Mat3DClass Get_Bone_Transform(int bone) const = 0;
    /// The mesh to spawn from; one without vertices where there is none.
    virtual vrSpawnMesh Get_Spawn_Mesh() const { return {}; }
    /// How far along its trajectory a point stands, 0 to 1 of its length. False without a trajectory.
    virtual bool Get_Trajectory_Fraction(const Vector3 & /*point*/, float & /*fraction*/) const { return false; }
};
