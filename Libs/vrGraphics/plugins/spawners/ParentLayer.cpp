#include "vrGraphics/plugins/spawners/ParentLayer.h"

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

MK_DEFINE_RUN_TIME_TYPE(vrMKPParentPluginData, vrMKPBufferPluginData)
MK_DEFINE_RUN_TIME_TYPE(vrMKPSlavePluginData, vrMKPParentPluginData)

void vrMKPParentPluginData::Find_Parent(const vrMKPRenderState &state, std::string_view name)
{
    ParentLayer = state.Layers ? state.Layers->Find_Layer(name) : nullptr;
    ParentBuffer = ParentLayer ? ParentLayer->Get_Buffer() : nullptr;
}

const vrMKPBuffer *vrMKPSlavePluginData::Match_Parent(vrMKPBuffer &buffer, std::string_view name)
{
    Find_Parent(*buffer.State, name);
    const vrMKPBuffer *parent = ParentBuffer;
    if (!parent || parent == &buffer) return nullptr;
    if (parent->Capacity == buffer.Capacity) return parent;
    if (parent->Capacity == RefusedCapacity) return nullptr;

    const std::string_view layerName = buffer.Layer ? std::string_view(buffer.Layer->Get_Name()) : std::string_view();
    if (buffer.Resize(parent->Capacity, layerName)) return parent;
    RefusedCapacity = parent->Capacity;
    return nullptr;
}

bool Create_Parent_Data(const vrMKPPlugin &spawner, const vrMKPRenderState &state, std::string_view parentName,
                        SmartPtr<vrMKPBufferPluginData> *data)
{
    if (!state.Layers || !data) return false;
    if (!*data) *data = spawner.Create_Buffer_Data(state);
    if (auto *parent = MK_Dynamic_Cast<vrMKPParentPluginData>(data->Get())) parent->Find_Parent(state, parentName);
    return true;
}
