#pragma once

/// How a plugin finds the layer that its own layer follows.

#include "vrGraphics/particle/vrMKPBufferPluginData.h"

#include <string_view>

class vrMKPBuffer;
class vrMKPLayer;
class vrMKPPlugin;
struct vrMKPRenderState;

/// The layer that a plugin follows, as of this frame. It is looked up by its name each time that it is needed: the
/// parent may be prepared after its child, and an editor may rename or remove it while both play.
class vrMKPParentPluginData : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    /// Takes the first layer of the group with that name, ignoring case, and its buffer.
    void Find_Parent(const vrMKPRenderState &state, std::string_view name);

    vrMKPLayer *ParentLayer = nullptr;   ///< null where there is no layer of that name
    vrMKPBuffer *ParentBuffer = nullptr; ///< null until that one has been prepared, too
};

/// What the slave plugins keep. A ring is as large as its parent's; where the memory for that can't be had, they wait
/// for a parent of another size instead of asking again in each frame.
class vrMKPSlavePluginData final : public vrMKPParentPluginData
{
public:
    MK_RUN_TIME_TYPE

    /// The parent's buffer, with `buffer` at the same capacity; a resize loses what `buffer` held. Null where there is
    /// no parent, where the layer is its own, and where the memory can't be had.
    const vrMKPBuffer *Match_Parent(vrMKPBuffer &buffer, std::string_view name);

private:
    int RefusedCapacity = -1;
};

/// `Create_Spawn_Data` of the spawners that follow a parent: what `spawner` keeps, unless `data` holds it already, with
/// the parent looked up. False without a place for it, and in a renderable without layers.
bool Create_Parent_Data(const vrMKPPlugin &spawner, const vrMKPRenderState &state, std::string_view parentName,
                        SmartPtr<vrMKPBufferPluginData> *data);
