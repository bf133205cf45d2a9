#include "vrGraphics/plugins/ensembles/Slave.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/spawners/ParentLayer.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <algorithm>
#include <cstring>

namespace
{

StringParameterClass *Add_Parent_Name(ParameterListClass &parameters)
{
    return parameters.Add_String(300, "Parent Name", "", SpawnerText::PARENT_NAME);
}

/// One channel, of all slots.
template <typename T>
void Copy_All(vrMKPBuffer &buffer, const vrMKPBuffer &parent, T *vrMKPBuffer::*channel)
{
    std::memcpy(static_cast<void *>(buffer.*channel), parent.*channel,
                static_cast<size_t>(buffer.Capacity) * sizeof(T));
}

void Copy_All(vrMKPBuffer &buffer, const vrMKPBuffer &parent, vrMKPVectors vrMKPBuffer::*channel)
{
    Particle::Copy(buffer.*channel, parent.*channel, buffer.Capacity);
}

void Copy_Particles(vrMKPBuffer &buffer, const vrMKPBuffer &parent, const Vector3 &offset)
{
    for (auto channel : {&vrMKPBuffer::PreviousPosition, &vrMKPBuffer::Position, &vrMKPBuffer::WorldPosition}) {
        Copy_All(buffer, parent, channel);
        Particle::Add_Vector(buffer.*channel, buffer.Capacity, offset);
    }
    for (auto channel :
         {&vrMKPBuffer::Velocity, &vrMKPBuffer::ProjectileStartingPosition, &vrMKPBuffer::ProjectileTargetPosition})
        Copy_All(buffer, parent, channel);
    for (auto channel : {&vrMKPBuffer::Age, &vrMKPBuffer::MaxAge, &vrMKPBuffer::Time,
                         &vrMKPBuffer::ProjectileFlightDuration, &vrMKPBuffer::SortingRelativeToGroup})
        Copy_All(buffer, parent, channel);
    for (auto channel : {&vrMKPBuffer::Flags, &vrMKPBuffer::ID, &vrMKPBuffer::Number})
        Copy_All(buffer, parent, channel);
    // For the slave modifiers to write.
    std::fill_n(buffer.Rotation, buffer.Capacity, 0u);
    std::fill_n(buffer.Size, buffer.Capacity, Vector2(1.0f));
}

void Copy_Ring(vrMKPBuffer &buffer, const vrMKPBuffer &parent)
{
    buffer.Random.Seed(parent.Random.Get_State());
    buffer.ActiveCount = parent.ActiveCount;
    buffer.Head = parent.Head;
    buffer.Tail = parent.Tail;
    buffer.FirstNew = parent.FirstNew;
    buffer.SpawnedThisFrame = parent.SpawnedThisFrame;
    buffer.HardLifetime = parent.HardLifetime;
    buffer.MayHaveStopped = parent.MayHaveStopped;
    buffer.SpawnerState = parent.SpawnerState;
    buffer.SpawnClock = parent.SpawnClock;
    buffer.FirstSpawn = parent.FirstSpawn;
    buffer.LastSpawnTime = parent.LastSpawnTime;
    buffer.SpawnInterval = parent.SpawnInterval;
    buffer.ClusterSize = parent.ClusterSize;
    buffer.PendingCount = parent.PendingCount;
    buffer.NextSerial = parent.NextSerial;
}

} // namespace

vrMKPSlaveSpawner::vrMKPSlaveSpawner()
{
    ParentName = Add_Parent_Name(Parameters);
    PositionOffset =
        Parameters.Add_Vector3(301, "Position Offset", Vector3(0.0f),
                               "Amount to offset child particle's position.\nBe careful, if you have other slave "
                               "plugins going, they may just override what you enter here.");
}

vrMKPBufferPluginData *vrMKPSlaveSpawner::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPSlavePluginData;
}

bool vrMKPSlaveSpawner::Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const
{
    return Create_Parent_Data(*this, state, ParentName->Get_Value(), data);
}

void vrMKPSlaveSpawner::Spawn(vrMKPBuffer &buffer) const
{
    auto *data = MK_Dynamic_Cast<vrMKPSlavePluginData>(buffer.SpawnerData.Get());
    const vrMKPBuffer *parent = data ? data->Match_Parent(buffer, ParentName->Get_Value()) : nullptr;
    if (!parent) return;
    Copy_Particles(buffer, *parent, PositionOffset->Get_Value());
    Copy_Ring(buffer, *parent);
}

vrMKPSlaveModifier::vrMKPSlaveModifier()
{
    ParentName = Add_Parent_Name(Parameters);
}

vrMKPBufferPluginData *vrMKPSlaveModifier::Create_Buffer_Data(const vrMKPRenderState &state) const
{
    return state.Layers ? new vrMKPSlavePluginData : nullptr;
}

void vrMKPSlaveModifier::Modify(vrMKPBuffer &buffer, int index) const
{
    const auto place = static_cast<size_t>(index);
    if (place >= buffer.ModifierData.size()) return;
    auto *data = MK_Dynamic_Cast<vrMKPSlavePluginData>(buffer.ModifierData[place].Get());
    const vrMKPBuffer *parent = data ? data->Match_Parent(buffer, ParentName->Get_Value()) : nullptr;
    if (parent) Copy_Channels(buffer, *parent);
}

void vrMKPSlaveRotationModifier::Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const
{
    Copy_All(buffer, parent, &vrMKPBuffer::Rotation);
}

void vrMKPSlaveSizeModifier::Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const
{
    Copy_All(buffer, parent, &vrMKPBuffer::Size);
}

void vrMKPSlaveColorModifier::Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const
{
    Copy_All(buffer, parent, &vrMKPBuffer::Color);
}

void vrMKPSlaveUVModifier::Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const
{
    Copy_All(buffer, parent, &vrMKPBuffer::UV);
    Copy_All(buffer, parent, &vrMKPBuffer::DUV);
}
