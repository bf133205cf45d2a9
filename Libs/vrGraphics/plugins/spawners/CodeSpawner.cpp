#include "vrGraphics/plugins/spawners/CodeSpawner.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/spawners/ShapeSource.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <algorithm>

vrMKPCodeSpawner::vrMKPCodeSpawner()
{
    ParticleLimit = Parameters.Add_Float(109, "#Code Particles", 10.0f, 1.0f, 10000.0f,
                                         "Max# of code particles that can be alive at once.");
    VelocityInLocalSpace =
        Parameters.Add_Bool(100, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    InheritVelocity = Parameters.Add_Bool(101, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    InheritedVelocityScale =
        Parameters.Add_Float(102, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    MaxInheritSpeed =
        Parameters.Add_Float(103, "Max Inherit Speed", 1000.0f, 0.0f, 1000.0f, SpawnerText::MAX_INHERIT_SPEED);
    Position = Parameters.Add_Shape(104, "Position", SHAPE_POINT, SpawnerText::POSITION_SHAPE);
    HollowPosition = Parameters.Add_Bool(105, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Velocity = Parameters.Add_Shape(106, "Velocity", SHAPE_SPHERE, SpawnerText::VELOCITY_SHAPE);
    HollowVelocity = Parameters.Add_Bool(107, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    EvenDistribution = Parameters.Add_Bool(108, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
}

bool vrMKPCodeSpawner::Post_Load()
{
    if (HollowPosition->Get_Value()) Position->Prepare_Surface_Table();
    if (HollowVelocity->Get_Value()) Velocity->Prepare_Surface_Table();
    return true;
}

int vrMKPCodeSpawner::Get_Min_Capacity(const vrMKPBufferPluginData * /*data*/) const
{
    return std::max(Particle::Truncate(ParticleLimit->Get_Value()), 1);
}

void vrMKPCodeSpawner::Spawn_Code_Particle(vrMKPBuffer &buffer, int count) const
{
    buffer.PendingCount = std::max(std::min(count, Particle::Truncate(ParticleLimit->Get_Value())), 0);
}

vrMKPFillRules vrMKPCodeSpawner::Get_Fill_Rules() const
{
    vrMKPFillRules rules = Get_Common_Fill_Rules();
    rules.VelocityInLocalSpace = VelocityInLocalSpace->Get_Value();
    rules.InheritVelocity = InheritVelocity->Get_Value();
    rules.InheritedVelocityScale = InheritedVelocityScale->Get_Value();
    rules.MaxInheritSpeed = MaxInheritSpeed->Get_Value();
    return rules;
}

void vrMKPCodeSpawner::Spawn(vrMKPBuffer &buffer) const
{
    if (buffer.FirstSpawn)
        buffer.FirstSpawn = false;
    else
        buffer.SpawnClock += buffer.State->FrameTime;
    buffer.SpawnerState = SPAWNER_SPAWNING;
    if (buffer.PendingCount == 0) return;

    // Born at the end of the frame, at the emitter's present place.
    vrMKPFilling filling(*buffer.State);
    filling.Rules = Get_Fill_Rules();
    filling.Births.FirstTime = buffer.SpawnClock;
    filling.Count = buffer.Grant_Slots(buffer.PendingCount, filling.First);
    const vrMKPShapeSource shapes{*Position, *Velocity, HollowPosition->Get_Value(), HollowVelocity->Get_Value(),
                                  EvenDistribution->Get_Value()};
    shapes.Check();
    filling.Fill(buffer, shapes);
    buffer.PendingCount = 0;
}
