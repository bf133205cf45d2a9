#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The order of drawing inside a render. What an effect's annotation says decides where a draw stands.
enum class vrRenderPhaseEnum : int
{
    Terrain = 0,
    TerrainMesh = 1,
    TerrainDecoration = 2,
    Opaque = 3,
    OpaqueAlphaTest = 4,
    Occluded = 5,
    OpaqueNonOccluding = 6,
    OpaqueAlphaTestNonOccluding = 7,
    Water = 8,
    SemiOpaque = 9,
    TransparentOverlay = 10,
    Transparent = 11,
    Particles = 12,
    TerrainOutline = 13,
    Outline = 14,
    Heat = 15
};

constexpr int PHASE_COUNT = 16;

constexpr uint32_t Phase_Bit(vrRenderPhaseEnum phase)
{
    return 1u << static_cast<int>(phase);
}

/// The name that annotations use, "Terrain" for the first.
const char *Get_Phase_Name(vrRenderPhaseEnum phase);
/// Ignores case; nothing for a text that names no phase.
std::optional<vrRenderPhaseEnum> Find_Phase(std::string_view name);
