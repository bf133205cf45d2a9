#pragma once

#include <cstdint>

/// Chunks that stand in more than one kind of renderable. On disk: never renumber.
enum vrMKPRenderableChunkEnum : uint32_t
{
    VR_CHUNK_MKPRENDERABLE_PLUGINS = 0x1680,
    VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL = 0x16a0,
    VR_CHUNK_MKPRENDERABLE = 0x1700,
    VR_CHUNK_MKPARTICLEGROUP = 0x1780,
    VR_CHUNK_MKPMODEL = 0x1800
};
