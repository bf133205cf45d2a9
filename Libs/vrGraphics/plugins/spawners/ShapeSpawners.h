#pragma once

/// The spawners that draw positions and velocities from shapes.

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "MKLib/MKMath/Mat3D.h"

class vrCarrierModel;
struct vrMKPShapeSource;

class vrMKPShapeSpawner : public vrMKPEnhancedSpawner
{
public:
    vrMKPShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    /// Works out the surfaces of the shapes, too.
    bool Post_Load() override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;

protected:
    vrMKPShapeSource Get_Shapes() const;

private:
    ShapeParameterClass *Position;
    BoolParameter *HollowPosition;
    ShapeParameterClass *Velocity;
    BoolParameter *HollowVelocity;
    BoolParameter *EvenDistribution;
};

class vrMKPOutwardVelocityShapeSpawnerPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override { LastPosition = Vector3(0.0f); }

    Vector3 LastPosition{0.0f}; ///< as drawn, in the spawner's local frame
};

/// Adds a velocity away from the origin of the position's shape.
class vrMKPOutwardVelocityShapeSpawner final : public vrMKPShapeSpawner
{
public:
    vrMKPOutwardVelocityShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;

private:
    RangedFloatParameter *OutwardSpeed;
};

/// How the shapes of a buffer lie in this frame.
class vrMKPAlignedShapeSpawnerPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override;

    const vrCarrierModel *Model = nullptr; ///< where the bone was looked up; only ever compared
    int Bone = -1;                         ///< -1 when it wasn't found
    Vector3 LastPosition{0.0f};            ///< as drawn and aligned, in the spawner's local frame
    Mat3DClass Alignment;                  ///< of positions
    Vector3 Target{0.0f};                  ///< of velocities, in the spawner's local frame
    // Once set, they stay so until a reset.
    bool IsPositionAway = false;
    bool IsVelocityAway = false;
};

/// Turns its shapes towards, or away from, a bone or a target.
class vrMKPAlignedShapeSpawner final : public vrMKPShapeSpawner
{
public:
    vrMKPAlignedShapeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;

private:
    void Align(const vrMKPRenderState &state, vrMKPAlignedShapeSpawnerPluginData &data) const;
    /// In the world: the bone, or the target where a bone isn't asked for or there is none of that name.
    Vector3 Get_Aim(const vrMKPRenderState &state, vrMKPAlignedShapeSpawnerPluginData &data, bool atBone) const;

    EnumParameterClass *PositionAlignmentDirection;
    EnumParameterClass *PositionAlignment;
    EnumParameterClass *VelocityAlignmentDirection;
    EnumParameterClass *VelocityAlignment;
    StringParameterClass *BoneName;
};

/// Fills an area whose radius comes from game logic, at a rate that is a density: per thousand units of area or volume.
class vrMKPAreaOfEffectSpawner final : public vrMKPEnhancedSpawner
{
public:
    vrMKPAreaOfEffectSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    float Get_Spawn_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    /// "Max Spawn Per Second"
    float Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const override;
    void Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime, float lead,
                         float span) const override;

private:
    EnumParameterClass *AreaShape;
    ShapeParameterClass *Velocity;
    BoolParameter *EvenDistribution;
    RangedFloatParameter *MinHeight;
    RangedFloatParameter *MaxHeight;
    RangedFloatParameter *MaxRate;
};
