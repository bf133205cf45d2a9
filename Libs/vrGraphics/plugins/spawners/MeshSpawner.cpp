#include "vrGraphics/plugins/spawners/MeshSpawner.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/spawners/ParticleFilling.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeBatch.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <algorithm>
#include <cmath>

namespace
{

// Indices into these are a file format.
constexpr const char *MESH_SPAWN_LOCATIONS[] = {"Random Vertices", "Random Surface Location", "All Vertices",
                                                "In-Order Vertices"};
constexpr const char *EMITTER_MESH_RELATIONSHIPS[] = {"Emitter on mesh's child bone", "Emitter on same bone as mesh"};

enum MeshSpawnLocation
{
    RANDOM_VERTICES,
    RANDOM_SURFACE_LOCATION,
    ALL_VERTICES,
    IN_ORDER_VERTICES
};

enum EmitterMeshRelationship
{
    ON_CHILD_BONE,
    ON_SAME_BONE
};

/// From the mesh's space to the emitter's local frame.
Mat3DClass Get_Mesh_Transform(const vrMKPRenderState &state, const vrCarrierModel &carrier, int relationship)
{
    if (relationship == ON_SAME_BONE) return {};
    return state.InverseTransform * carrier.Get_Bone_Transform(carrier.Get_Spawn_Mesh().Bone);
}

/// Newborns as they were picked: starts and normals in the mesh's space, velocities as drawn.
struct PickedRun
{
    vrMKPVectors Starts;
    vrMKPVectors Normals;
    vrMKPVectors Velocities;
};

/// `Mat3DClass::Look_Along(direction).Rotate(vector)` for directions of unit length, or none, in a form for loops.
MK_INLINE Vector3 Turn_Along(const Vector3 &direction, const Vector3 &vector)
{
    const auto divide = [](const Vector3 &by, float length)
                            MK_INLINE_LAMBDA { return Vector3(by.x / length, by.y / length, by.z / length); };
    const float length = std::sqrt(Particle::Dot(direction, direction));
    const Vector3 forward = divide(direction, length);
    const Vector3 side(-forward.y, forward.x, 0.0f);
    const float sideLength = std::sqrt(Particle::Dot(side, side));
    const Vector3 level = Particle::Select_Bits(Particle::As_Mask(sideLength > 0.0f), divide(side, sideLength),
                                                Vector3(1.0f, 0.0f, 0.0f));
    const Vector3 upward = Particle::Cross(forward, level);
    const Mat3DClass turn{{{level.x, upward.x, forward.x, 0.0f},
                           {level.y, upward.y, forward.y, 0.0f},
                           {level.z, upward.z, forward.z, 0.0f}}};
    return Particle::Select_Bits(Particle::As_Mask(length > 0.0f), Particle::Turn(turn, vector),
                                 Particle::Turn(Mat3DClass(), vector));
}

template <bool Aligns>
MK_INLINE void Place_In_Form(const PickedRun &run, int count, const Mat3DClass &toLocal, float offset)
{
    const PickedRun newborns = run;
    const Mat3DClass map = toLocal;
    const int whole = RandomLanes::Round_Up(count);
#pragma GCC ivdep
    for (int i = 0; i < whole; ++i) {
        const Vector3 normal = Particle::Unit(Particle::Turn(map, newborns.Normals[i]));
        const Vector3 start = Particle::Map(map, newborns.Starts[i]);
        const Vector3 velocity = newborns.Velocities[i];
        newborns.Starts.Put(i, Particle::Plus(start, Particle::Times(normal, offset)));
        if constexpr (Aligns) newborns.Velocities.Put(i, Turn_Along(normal, velocity));
    }
}
MK_SIMD void Place_Picked(const PickedRun &run, int count, const Mat3DClass &toLocal, float offset, bool aligns)
{
    if (aligns) return Place_In_Form<true>(run, count, toLocal, offset);
    return Place_In_Form<false>(run, count, toLocal, offset);
}

class MeshSource
{
public:
    using Point = vrMKPMeshPoints::Point;

    MeshSource(vrMKPMeshPoints &points, int location, const Mat3DClass &toLocal, float offset,
               const ShapeParameterClass &velocity, bool hollowVelocity, bool alignVelocity)
        : Points(points), Location(location), ToLocal(toLocal), Offset(offset), VelocityShape(velocity),
          HollowVelocity(hollowVelocity), AlignVelocity(alignVelocity), Courses(velocity, hollowVelocity, false)
    {
    }

    Vector3 Position(RandomClass &random)
    {
        const Point point = Pick(random);
        Normal = Particle::Unit(ToLocal.Rotate(point.Normal));
        return ToLocal.Transform(point.Position) + Normal * Offset;
    }
    Vector3 Velocity(RandomClass &random, const Vector3 & /*localPosition*/) const
    {
        const Vector3 drawn = VelocityShape.Sample(random, HollowVelocity, false, nullptr, Vector3(0.0f));
        return AlignVelocity ? Mat3DClass::Look_Along(Normal).Rotate(drawn) : drawn;
    }
    bool Draws_Blocks() const { return Courses.Is_Possible(); }
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count)
    {
        const bool ofSurface = Location == RANDOM_SURFACE_LOCATION;
        const bool picks = ofSurface || Location == RANDOM_VERTICES;
        const int pickDraws = ofSurface ? Picks.SURFACE_DRAWS : picks ? Picks.VERTEX_DRAWS : 0;
        const int draws = pickDraws + Courses.Get_Draw_Count();
        const RandomLanes takers(random, draws + 2);
        const vrMKPVectors velocities = vrMKPVectors(newborns.Velocities) + first;
        if (picks && !Picks.Draw(takers, count, ofSurface)) return false;
        if (!Courses.Draw(takers.After(pickDraws), velocities.X, velocities.Y, velocities.Z, count)) return false;
        takers.After(draws).Get_Words(newborns.IDs + first, count);
        takers.Finish(random, count);
        for (int i = 0; i < count; ++i) {
            const Point point = Get_Picked(i);
            newborns.Starts.Put(first + i, point.Position);
            Normals.Put(i, point.Normal);
        }
        newborns.Fill_Up(newborns.Starts, first + count);
        newborns.Fill_Up(Normals, count);
        Place_Picked({vrMKPVectors(newborns.Starts) + first, Normals, velocities}, count, ToLocal, Offset,
                     AlignVelocity);
        return true;
    }

private:
    Point Pick(RandomClass &random)
    {
        switch (Location) {
        case RANDOM_SURFACE_LOCATION: return Points.Pick_Surface(random);
        case RANDOM_VERTICES: return Points.Pick_Vertex(random);
        default: return Points.Next_Vertex();
        }
    }
    Point Get_Picked(int at)
    {
        switch (Location) {
        case RANDOM_SURFACE_LOCATION: return Points.Get_Picked_Surface(Picks.Wide[at], Picks.Root[at], Picks.Along[at]);
        case RANDOM_VERTICES: return Points.Get_Picked_Vertex(Picks.Wide[at]);
        default: return Points.Next_Vertex();
        }
    }
    vrMKPMeshPoints &Points;
    int Location;
    Mat3DClass ToLocal;
    float Offset;
    const ShapeParameterClass &VelocityShape;
    bool HollowVelocity;
    bool AlignVelocity;
    ShapeBatch Courses;   ///< of the velocities
    Vector3 Normal{0.0f}; ///< where the last position lies that was drawn by itself
    Particle::Planes Normals;
    vrMKPMeshPicks Picks;
};

} // namespace

MK_DEFINE_RUN_TIME_TYPE(vrMKPEnhancedMeshSpawnerPluginData, vrMKPBufferPluginData)

vrMKPEnhancedMeshSpawner::vrMKPEnhancedMeshSpawner()
{
    Location =
        Parameters.Add_Enum(105, "Mesh Spawn Location", MESH_SPAWN_LOCATIONS, 0, "Where to spawn from on the mesh");
    AlignVelocity =
        Parameters.Add_Bool(106, "Align Vel. To Norm", true,
                            "Aligns the Z-Axis of the emitter to the surface normal of the mesh for velocity.");
    Velocity = Parameters.Add_Shape(107, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    HollowVelocity = Parameters.Add_Bool(108, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    SurfaceOffset = Parameters.Add_Float(200, "Surface Offset", 0.0f, 0.0f, 50.0f,
                                         "Distance to offset the initial position away from the surface");
    Relationship = Parameters.Add_Enum(201, "Relationship to Mesh", EMITTER_MESH_RELATIONSHIPS, 0,
                                       "What bone the emitter should go on");
}

bool vrMKPEnhancedMeshSpawner::Post_Load()
{
    if (HollowVelocity->Get_Value()) Velocity->Prepare_Surface_Table();
    return vrMKPEnhancedSpawner::Post_Load();
}

bool vrMKPEnhancedMeshSpawner::Takes_Surface() const
{
    return Location->Get_Value() == RANDOM_SURFACE_LOCATION;
}

bool vrMKPEnhancedMeshSpawner::Takes_All_Vertices() const
{
    return Location->Get_Value() == ALL_VERTICES;
}

vrMKPBufferPluginData *vrMKPEnhancedMeshSpawner::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPEnhancedMeshSpawnerPluginData;
}

bool vrMKPEnhancedMeshSpawner::Create_Spawn_Data(const vrMKPRenderState &state,
                                                 SmartPtr<vrMKPBufferPluginData> *data) const
{
    if (!Keep_Spawn_Data(state, data)) return false;
    if (auto *mesh = MK_Dynamic_Cast<vrMKPEnhancedMeshSpawnerPluginData>(data->Get())) Update_Mesh(state, *mesh);
    return true;
}

void vrMKPEnhancedMeshSpawner::Update_Mesh(const vrMKPRenderState &state,
                                           vrMKPEnhancedMeshSpawnerPluginData &data) const
{
    data.Points.Set_Mesh(state.Carrier ? state.Carrier->Get_Spawn_Mesh() : vrSpawnMesh(), Takes_Surface());
}

bool vrMKPEnhancedMeshSpawner::Has_Points(const vrMKPMeshPoints &points) const
{
    return Takes_Surface() ? points.Has_Surface() : points.Get_Vertex_Count() > 0;
}

int vrMKPEnhancedMeshSpawner::Get_Cluster_Size(const vrMKPBufferPluginData *data) const
{
    const auto *mesh = MK_Dynamic_Cast<const vrMKPEnhancedMeshSpawnerPluginData>(data);
    if (mesh && Takes_All_Vertices()) return std::max(mesh->Points.Get_Vertex_Count(), 1);
    return vrMKPEnhancedSpawner::Get_Cluster_Size(data);
}

int vrMKPEnhancedMeshSpawner::Get_Min_Capacity(const vrMKPBufferPluginData *data) const
{
    return Takes_All_Vertices() ? Get_Cluster_Size(data) : vrMKPEnhancedSpawner::Get_Min_Capacity(data);
}

void vrMKPEnhancedMeshSpawner::Spawn(vrMKPBuffer &buffer) const
{
    auto *data = MK_Dynamic_Cast<vrMKPEnhancedMeshSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data) return;
    Update_Mesh(*buffer.State, *data);
    vrMKPEnhancedSpawner::Spawn(buffer);
}

void vrMKPEnhancedMeshSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime,
                                               float lead, float span) const
{
    const vrMKPRenderState &state = *buffer.State;
    auto *data = MK_Dynamic_Cast<vrMKPEnhancedMeshSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data || !state.Carrier || !Has_Points(data->Points)) return;
    vrMKPFilling filling(state);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;
    MK_ASSERT(Velocity->Are_Bounds_Ordered(), "low <= high");
    // The normals are those of the emitter's frame.
    if (AlignVelocity->Get_Value()) filling.Rules.VelocityInLocalSpace = true;
    filling.Fill(buffer, MeshSource(data->Points, Location->Get_Value(),
                                    Get_Mesh_Transform(state, *state.Carrier, Relationship->Get_Value()),
                                    SurfaceOffset->Get_Value(), *Velocity, HollowVelocity->Get_Value(),
                                    AlignVelocity->Get_Value()));
}
