#include "vrGraphics/drivercommon/vrRenderPhase.h"

#include "MKLib/MKString.h"

#include <iterator>

namespace
{

constexpr const char *PHASE_NAMES[] = {
    "Terrain",
    "TerrainMesh",
    "TerrainDecoration",
    "Opaque",
    "OpaqueAlphaTest",
    "Occluded",
    "OpaqueNonOccluding",
    "OpaqueAlphaTestNonOccluding",
    "Water",
    "SemiOpaque",
    "TransparentOverlay",
    "Transparent",
    "Particles",
    "TerrainOutline",
    "Outline",
    "Heat",
};
static_assert(std::size(PHASE_NAMES) == PHASE_COUNT);

} // namespace

const char *Get_Phase_Name(vrRenderPhaseEnum phase)
{
    return PHASE_NAMES[static_cast<int>(phase)];
}

std::optional<vrRenderPhaseEnum> Find_Phase(std::string_view name)
{
    for (int phase = 0; phase < PHASE_COUNT; ++phase)
        if (MK::Equal_Ignoring_Case(name, PHASE_NAMES[phase])) return static_cast<vrRenderPhaseEnum>(phase);
    return std::nullopt;
}
