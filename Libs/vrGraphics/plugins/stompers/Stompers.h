#pragma once

/// The stompers that stand by themselves: each kills by age, and all but the first by a condition too.

#include "MKLib/Parameters/ParametersFwd.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

class vrMKPSimpleStomper final : public vrMKPStomper
{
public:
    bool Has_Condition() const override { return false; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Kills beyond a distance from the layer's centre.
class vrMKPRadiusStomper final : public vrMKPStomper
{
public:
    vrMKPRadiusStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    RangedFloatParameter *StompRadius;
    BoolParameter *UseTargetRadius;
};

/// Kills below the terrain.
class vrMKPTerrainStomper final : public vrMKPStomper
{
public:
    vrMKPTerrainStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }

    /// The height of the ground in a world without terrain, -60 at the start. Of the whole process; not while frames
    /// run.
    static float Get_Default_Height();
    static void Set_Default_Height(float height);

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    Vector3Parameter *IntersectionOffset;
};

/// Kills within a distance of a target.
class vrMKPTargetStomper final : public vrMKPStomper
{
public:
    vrMKPTargetStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    EnumParameterClass *TargetPosition;
    StringParameterClass *BoneName;
    RangedFloatParameter *TargetRadius;
    BoolParameter *UseDynamicRadius;
};

/// Kills past a value on one axis of the world.
class vrMKPAxisStomper final : public vrMKPStomper
{
public:
    vrMKPAxisStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    EnumParameterClass *StompAxis;
    EnumParameterClass *KillIf;
    RangedFloatParameter *StompValue;
};
