#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrWorld.h"
#include "vrGraphics/plugins/spawners/ParticleFilling.h"
#include "vrGraphics/plugins/spawners/ShapeSource.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <algorithm>
#include <cmath>

namespace
{

// Indices into these are a file format.
constexpr const char *ALIGNMENT_DIRECTIONS[] = {"Towards", "Away"};
constexpr const char *POSITION_ALIGNMENTS[] = {"Default", "Bone", "Target"};
constexpr const char *VELOCITY_ALIGNMENTS[] = {"Default", "Position", "Bone", "Target"};
constexpr const char *AOE_SHAPES[] = {"Cylinder", "Sphere", "Flat Circle"};

enum AlignmentDirections : int32_t
{
    TOWARDS,
    AWAY
};

enum PositionAlignments : int32_t
{
    POSITION_AS_DRAWN,
    POSITION_TO_BONE,
    POSITION_TO_TARGET
};

enum VelocityAlignments : int32_t
{
    VELOCITY_AS_DRAWN,
    VELOCITY_TO_POSITION,
    VELOCITY_TO_BONE,
    VELOCITY_TO_TARGET
};

enum AreaShapes : int32_t
{
    AREA_CYLINDER,
    AREA_SPHERE,
    AREA_FLAT_CIRCLE
};

constexpr const char *ALIGNMENT_DIRECTION_TEXT = "Direction towards or away from aligned vector.";

/// Adds a speed away from the origin.
struct OutwardSource
{
    vrMKPShapeSource Shapes;
    Vector3 &LastPosition;
    float Speed;

    Vector3 Position(RandomClass &random) { return LastPosition = Shapes.Position(random); }
    Vector3 Velocity(RandomClass &random, const Vector3 &localPosition)
    {
        return Shapes.Velocity(random, localPosition) + Particle::Unit(LastPosition) * Speed;
    }
    bool Draws_Blocks() const { return Shapes.Draws_Blocks(); }
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count)
    {
        if (!Shapes.Draw_Block(random, newborns, first, count)) return false;
        for (int at = first; at < first + count; ++at)
            newborns.Velocities.Put(at, newborns.Velocities[at] + Particle::Unit(newborns.Starts[at]) * Speed);
        LastPosition = newborns.Starts[first + count - 1];
        return true;
    }
};

struct AlignedSource
{
    vrMKPShapeSource Shapes;
    vrMKPAlignedShapeSpawnerPluginData &Data;
    bool TurnsPositions;
    int32_t VelocityAlignment;

    Vector3 Position(RandomClass &random) { return Data.LastPosition = Align_Position(Shapes.Position(random)); }
    Vector3 Velocity(RandomClass &random, const Vector3 &localPosition) const
    {
        return Align_Velocity(Shapes.Velocity(random, localPosition));
    }
    bool Draws_Blocks() const { return Shapes.Draws_Blocks(); }
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count)
    {
        if (!Shapes.Draw_Block(random, newborns, first, count)) return false;
        for (int at = first; at < first + count; ++at) {
            Data.LastPosition = Align_Position(newborns.Starts[at]);
            newborns.Starts.Put(at, Data.LastPosition);
            newborns.Velocities.Put(at, Align_Velocity(newborns.Velocities[at]));
        }
        return true;
    }

private:
    Vector3 Align_Position(const Vector3 &drawn) const
    {
        return TurnsPositions ? Data.Alignment.Rotate(drawn) : Data.IsPositionAway ? -drawn : drawn;
    }
    /// For a particle at the last position.
    Vector3 Align_Velocity(Vector3 drawn) const
    {
        if (VelocityAlignment == VELOCITY_TO_POSITION)
            drawn = Mat3DClass::Look_Along(Data.LastPosition).Rotate(drawn);
        else if (VelocityAlignment != VELOCITY_AS_DRAWN)
            drawn = Mat3DClass::Look_Along(Data.Target - Data.LastPosition).Rotate(drawn);
        return Data.IsVelocityAway ? -drawn : drawn;
    }
};

/// Positions in the area, velocities from the shape.
struct AreaSource
{
    const ShapeParameterClass &VelocityShape;
    int32_t Area;
    bool EvenDistribution;
    float Radius;
    float MinHeight; ///< not above the greatest
    float MaxHeight;

    Vector3 Position(RandomClass &random) const
    {
        return Area == AREA_SPHERE ? In_Sphere(random) : In_Cylinder(random);
    }
    Vector3 Velocity(RandomClass &random, const Vector3 &localPosition) const
    {
        return VelocityShape.Sample(random, false, EvenDistribution, nullptr, localPosition);
    }

private:
    Vector3 In_Cylinder(RandomClass &random) const
    {
        const float angle = random.Get_Float(0.0f, Particle::TWO_PI);
        const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(angle));
        Vector3 point(cosine, sine, 0.0f);
        const float fraction = random.Get_Float(0.0f, 1.0f);
        point *= Radius * (EvenDistribution ? std::sqrt(fraction) : fraction);
        if (Area == AREA_CYLINDER) point.z = random.Get_Float(MinHeight, MaxHeight);
        return point;
    }
    Vector3 In_Sphere(RandomClass &random) const
    {
        const float u = random.Get_Float(0.0f, 1.0f);
        const float v = random.Get_Float(0.0f, 1.0f);
        const float fraction = random.Get_Float(0.0f, 1.0f);
        const float distance =
            Radius * (EvenDistribution ? static_cast<float>(Portable::Power_Of_Third(fraction)) : fraction);
        const float twice = 2.0f * std::sqrt((1.0f - v) * v);
        const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(u * Particle::TWO_PI));
        return Vector3(cosine * twice, sine * twice, 1.0f - 2.0f * v) * distance;
    }
};

} // namespace

MK_DEFINE_RUN_TIME_TYPE(vrMKPOutwardVelocityShapeSpawnerPluginData, vrMKPBufferPluginData)
MK_DEFINE_RUN_TIME_TYPE(vrMKPAlignedShapeSpawnerPluginData, vrMKPBufferPluginData)

vrMKPShapeSpawner::vrMKPShapeSpawner()
{
    Position = Parameters.Add_Shape(105, "Position", SHAPE_POINT, SpawnerText::POSITION_SHAPE);
    HollowPosition = Parameters.Add_Bool(106, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Velocity = Parameters.Add_Shape(107, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    HollowVelocity = Parameters.Add_Bool(108, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    EvenDistribution = Parameters.Add_Bool(200, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
}

bool vrMKPShapeSpawner::Post_Load()
{
    // Whether or not they are hollow, so that an editor can make them so.
    Position->Prepare_Surface_Table();
    Velocity->Prepare_Surface_Table();
    return vrMKPEnhancedSpawner::Post_Load();
}

vrMKPShapeSource vrMKPShapeSpawner::Get_Shapes() const
{
    return {*Position, *Velocity, HollowPosition->Get_Value(), HollowVelocity->Get_Value(),
            EvenDistribution->Get_Value()};
}

void vrMKPShapeSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                                        float span) const
{
    vrMKPFilling filling(*buffer.State);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;
    const vrMKPShapeSource shapes = Get_Shapes();
    shapes.Check();
    filling.Fill(buffer, shapes);
}

vrMKPOutwardVelocityShapeSpawner::vrMKPOutwardVelocityShapeSpawner()
{
    OutwardSpeed =
        Parameters.Add_Float(300, "Outward Speed", 0.0f, -10000.0f, 10000.0f, "Speed of the outward velocity.");
}

vrMKPBufferPluginData *vrMKPOutwardVelocityShapeSpawner::Create_Buffer_Data(const vrMKPRenderState &) const
{
    return new vrMKPOutwardVelocityShapeSpawnerPluginData;
}

bool vrMKPOutwardVelocityShapeSpawner::Create_Spawn_Data(const vrMKPRenderState &state,
                                                         SmartPtr<vrMKPBufferPluginData> *data) const
{
    return Keep_Spawn_Data(state, data);
}

void vrMKPOutwardVelocityShapeSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime,
                                                       float lead, float span) const
{
    auto *data = MK_Dynamic_Cast<vrMKPOutwardVelocityShapeSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data) return;
    vrMKPFilling filling(*buffer.State);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;
    OutwardSource source{Get_Shapes(), data->LastPosition, OutwardSpeed->Get_Value()};
    source.Shapes.Check();
    filling.Fill(buffer, source);
}

vrMKPAlignedShapeSpawner::vrMKPAlignedShapeSpawner()
{
    PositionAlignmentDirection =
        Parameters.Add_Enum(300, "Pos. Alignment Direction", ALIGNMENT_DIRECTIONS, 0, ALIGNMENT_DIRECTION_TEXT);
    PositionAlignment =
        Parameters.Add_Enum(301, "Position Alignment", POSITION_ALIGNMENTS, 0, "Object/Point to align position to.");
    VelocityAlignmentDirection =
        Parameters.Add_Enum(302, "Vel. Alignment Direction", ALIGNMENT_DIRECTIONS, 0, ALIGNMENT_DIRECTION_TEXT);
    VelocityAlignment =
        Parameters.Add_Enum(303, "Velocity Alignment", VELOCITY_ALIGNMENTS, 0, "Object/Point to align velocity to.");
    BoneName = Parameters.Add_String(304, "Bone Name", "",
                                     "Bone to align towards. (Only used if a alignment is set to 'bone')");
}

void vrMKPAlignedShapeSpawnerPluginData::Reset()
{
    Model = nullptr;
    Bone = -1;
    LastPosition = Vector3(0.0f);
    Alignment = {};
    Target = Vector3(0.0f);
    IsPositionAway = false;
    IsVelocityAway = false;
}

vrMKPBufferPluginData *vrMKPAlignedShapeSpawner::Create_Buffer_Data(const vrMKPRenderState &) const
{
    return new vrMKPAlignedShapeSpawnerPluginData;
}

bool vrMKPAlignedShapeSpawner::Create_Spawn_Data(const vrMKPRenderState &state,
                                                 SmartPtr<vrMKPBufferPluginData> *data) const
{
    return Keep_Spawn_Data(state, data);
}

Vector3 vrMKPAlignedShapeSpawner::Get_Aim(const vrMKPRenderState &state, vrMKPAlignedShapeSpawnerPluginData &data,
                                          bool atBone) const
{
    if (!atBone) return state.TargetPosition;
    if (data.Model != state.Carrier) {
        data.Model = state.Carrier;
        data.Bone = state.Carrier ? state.Carrier->Find_Bone(BoneName->Get_Value()) : -1;
    }
    if (!state.Carrier || data.Bone < 0) return state.TargetPosition;
    return state.Carrier->Get_Bone_Transform(data.Bone).Get_Translation();
}

void vrMKPAlignedShapeSpawner::Align(const vrMKPRenderState &state, vrMKPAlignedShapeSpawnerPluginData &data) const
{
    const int32_t velocityAlignment = VelocityAlignment->Get_Value();
    if (velocityAlignment == VELOCITY_TO_BONE || velocityAlignment == VELOCITY_TO_TARGET) {
        const Vector3 aim = Get_Aim(state, data, velocityAlignment == VELOCITY_TO_BONE);
        data.Target = state.InverseTransform.Transform(aim);
    }
    data.IsVelocityAway |= VelocityAlignmentDirection->Get_Value() == AWAY;

    const int32_t positionAlignment = PositionAlignment->Get_Value();
    const bool isAway = PositionAlignmentDirection->Get_Value() == AWAY;
    if (positionAlignment == POSITION_AS_DRAWN) {
        data.IsPositionAway |= isAway;
        return;
    }
    const Vector3 aim = Get_Aim(state, data, positionAlignment == POSITION_TO_BONE);
    data.Alignment = Mat3DClass::Look_Along(state.InverseTransform.Transform(isAway ? -aim : aim));
}

void vrMKPAlignedShapeSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime,
                                               float lead, float span) const
{
    auto *data = MK_Dynamic_Cast<vrMKPAlignedShapeSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data) return;
    Align(*buffer.State, *data);
    vrMKPFilling filling(*buffer.State);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;
    AlignedSource source{Get_Shapes(), *data, PositionAlignment->Get_Value() != POSITION_AS_DRAWN,
                         VelocityAlignment->Get_Value()};
    source.Shapes.Check();
    filling.Fill(buffer, source);
}

vrMKPAreaOfEffectSpawner::vrMKPAreaOfEffectSpawner()
{
    AreaShape = Parameters.Add_Enum(200, "AOE Shape", AOE_SHAPES, 2, SpawnerText::POSITION_SHAPE);
    Velocity = Parameters.Add_Shape(201, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    EvenDistribution = Parameters.Add_Bool(202, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    MinHeight = Parameters.Add_Float(203, "Cylinder Min Height", -10.0f, -1000.0f, 1000.0f,
                                     "Minimum height when the AOE shape is a cylinder.");
    MaxHeight = Parameters.Add_Float(204, "Cylinder Max Height", 10.0f, -1000.0f, 1000.0f,
                                     "Maximum height when the AOE shape is a cylinder.");
    MaxRate = Parameters.Add_Float(205, "Max Spawn Per Second", 10.0f, 0.0f, 10000.0f,
                                   "Use to limit the amount we can spawn in a second.  KEEP IT SMALL.");
}

float vrMKPAreaOfEffectSpawner::Get_Spawn_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const
{
    constexpr float PI = 3.1415927f;
    constexpr float THREE_QUARTERS_OF_PI = 2.3561945f; // as effects were tuned, not the volume of a ball
    constexpr float PER_THOUSAND = 0.001f;
    const float density = vrMKPEnhancedSpawner::Get_Spawn_Rate(state, data);
    const float radius = state.Get_Target_Radius();
    float rate = 0.0f;
    switch (AreaShape->Get_Value()) {
    case AREA_CYLINDER: {
        const float height = std::abs(MaxHeight->Get_Value() - MinHeight->Get_Value());
        rate = density * radius * PI * radius * (height > 1.0f ? height : 1.0f) * PER_THOUSAND;
        break;
    }
    case AREA_SPHERE: rate = density * radius * THREE_QUARTERS_OF_PI * radius * radius * PER_THOUSAND; break;
    default: rate = density * radius * PI * radius * PER_THOUSAND; break;
    }
    return std::min(rate, MaxRate->Get_Value());
}

float vrMKPAreaOfEffectSpawner::Get_Peak_Rate(const vrMKPRenderState &, const vrMKPBufferPluginData *) const
{
    return MaxRate->Get_Value();
}

void vrMKPAreaOfEffectSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime,
                                               float lead, float span) const
{
    vrMKPFilling filling(*buffer.State);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;
    const float heights[] = {MinHeight->Get_Value(), MaxHeight->Get_Value()};
    const int32_t area = AreaShape->Get_Value();
    MK_ASSERT(Velocity->Are_Bounds_Ordered() && (area != AREA_CYLINDER || !(heights[1] < heights[0])), "low <= high");
    filling.Fill(buffer, AreaSource{*Velocity, area, EvenDistribution->Get_Value(), buffer.State->Get_Target_Radius(),
                                    std::min(heights[0], heights[1]), std::max(heights[0], heights[1])});
}
