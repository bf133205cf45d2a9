#pragma once

#include <cstdint>

namespace vro
{

/// Where in an emitter file a chunk stands: the same number means different things in different places.
enum class ChunkPlace
{
    Unknown,
    File,
    Emitter,
    EmitterVariables,
    Group,
    Model,
    Lights,
    Renderable,
    RenderableVariables,
    RenderablePlugins,
    AttachedModel,
    AttachedModelVariables,
    Layer,
    Plugin,
    PluginData,
    Parameters,
    ParameterValue,
    ParameterVariables,
    Leaf
};

struct ChunkName
{
    const char *Name;   ///< null when the format gives none
    ChunkPlace Inside; ///< the place that its content is
    bool HasMicroChunks;
};

ChunkName Find_Chunk_Name(ChunkPlace place, uint32_t id);
/// Null when the format gives none.
const char *Find_Micro_Chunk_Name(ChunkPlace place, uint32_t id);

} // namespace vro
