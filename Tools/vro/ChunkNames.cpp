#include "vro/ChunkNames.h"

namespace vro
{

namespace
{

using enum ChunkPlace;

constexpr struct
{
    ChunkPlace Place;
    uint32_t Id;
    const char *Name;
    ChunkPlace Inside;
} CHUNKS[] = {
    {File, 0x1500, "VR_CHUNK_MKPEMITTER", Emitter},
    {Emitter, 0, "VR_MKPARTICLE_EMITTER_NAME_CHUNK", Leaf},
    {Emitter, 0x1502, "VR_CHUNK_MKPEMITTER_VARS", EmitterVariables},
    {Emitter, 0x1520, nullptr, Group},
    {Emitter, 0x1600, nullptr, Group},
    {Emitter, 0x1780, "VR_CHUNK_MKPARTICLEGROUP", Group},
    {Emitter, 0x1800, "VR_CHUNK_MKPMODEL", Model},
    {Group, 0x1540, "VR_CHUNK_MKPARTICLE", Layer},
    {Group, 0x16a0, "VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL", AttachedModel},
    {Group, 0x16c0, "VR_CHUNK_MKPLIGHT_PLUGINS", Lights},
    {Group, 0x1700, "VR_CHUNK_MKPRENDERABLE", Renderable},
    {Lights, 0x16c1, "VR_CHUNK_MKPLIGHT_PLUGIN", Plugin},
    {Model, 0x1680, "VR_CHUNK_MKPRENDERABLE_PLUGINS", RenderablePlugins},
    {Model, 0x16a0, "VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL", AttachedModel},
    {Model, 0x1700, "VR_CHUNK_MKPRENDERABLE", Renderable},
    {Renderable, 0x1680, "VR_CHUNK_MKPRENDERABLE_PLUGINS", RenderablePlugins},
    {Renderable, 0x1701, "VR_CHUNK_MKPRENDERABLE_VARS", RenderableVariables},
    {RenderablePlugins, 0x1681, "VR_CHUNK_MKPRENDERABLE_PHYSICS", Plugin},
    {RenderablePlugins, 0x1682, "VR_CHUNK_MKPRENDERABLE_KILLER", Plugin},
    {RenderablePlugins, 0x1683, nullptr, Plugin},
    {AttachedModel, 0x16a1, "VR_CHUNK_MKPARTICLEGROUP_ATTACHED_MODEL_VARS", AttachedModelVariables},
    {Layer, 0, "name", Leaf},
    {Layer, 1, "spawner", Plugin},
    {Layer, 2, "transformer", Plugin},
    {Layer, 3, "stomper", Plugin},
    {Layer, 4, "visualizer", Plugin},
    {Layer, 5, "modifier", Plugin},
    {Plugin, 0, "plugin id", Leaf},
    {Plugin, 1, "plugin data", PluginData},
    {PluginData, 0, "parameters", Parameters},
    {Parameters, 0, "parameter id", Leaf},
    {Parameters, 1, "plain value", Unknown},
    {Parameters, 2, "value", ParameterValue},
    {ParameterValue, 0, "CHUNK_SIMPLE_PARAM_VARS or CHUNK_KEYED_PARAM_VARS", ParameterVariables},
    {ParameterValue, 1, "CHUNK_KEYED_PARAM_KEYS", Leaf},
};

constexpr struct
{
    ChunkPlace Place;
    uint32_t Id;
    const char *Name;
} MICRO_CHUNKS[] = {
    {EmitterVariables, 0, "VR_VAR_MKPEMITTER_REMOVE_ON_DEPLETED"},
    {RenderableVariables, 0, "VR_VAR_MKPRENDERABLE_NAME"},
    {RenderableVariables, 1, "VR_VAR_MKPRENDERABLE_ALWAYS_AWAKE"},
    {RenderableVariables, 2, "VR_VAR_MKPRENDERABLE_ALWAYS_SIMULATE_FLAG"},
    {RenderableVariables, 3, "VR_VAR_MKPRENDERABLE_TRANSLATE_OFFSET"},
    {RenderableVariables, 4, "VR_VAR_MKPRENDERABLE_ROTATE_OFFSET"},
    {RenderableVariables, 5, "VR_VAR_MKPRENDERABLE_SCALE_OFFSET"},
    {RenderableVariables, 6, "VR_VAR_MKPRENDERABLE_VELOCITY_ALIGNED"},
    {RenderableVariables, 7, "VR_VAR_MKPRENDERABLE_START_DELAY"},
    {RenderableVariables, 8, "VR_VAR_MKPRENDERABLE_START_DELAY_VARIATION"},
    {RenderableVariables, 9, "VR_VAR_MKPRENDERABLE_BASE_RANDOM_SEED"},
    {RenderableVariables, 10, "VR_VAR_MKPRENDERABLE_SORT_BIAS"},
    {AttachedModelVariables, 0, "VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_NAME"},
    {AttachedModelVariables, 1, "VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ANIMATION"},
    {AttachedModelVariables, 2, "VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ENABLED"},
};

constexpr bool Holds_Micro_Chunks(ChunkPlace place)
{
    return place == EmitterVariables || place == RenderableVariables || place == AttachedModelVariables ||
           place == ParameterVariables;
}

} // namespace

ChunkName Find_Chunk_Name(ChunkPlace place, uint32_t id)
{
    for (const auto &chunk : CHUNKS)
        if (chunk.Place == place && chunk.Id == id) return {chunk.Name, chunk.Inside, Holds_Micro_Chunks(chunk.Inside)};
    return {nullptr, Unknown, false};
}

const char *Find_Micro_Chunk_Name(ChunkPlace place, uint32_t id)
{
    for (const auto &microChunk : MICRO_CHUNKS)
        if (microChunk.Place == place && microChunk.Id == id) return microChunk.Name;
    return nullptr;
}

} // namespace vro
