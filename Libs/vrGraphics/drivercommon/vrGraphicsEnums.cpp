#include "vrGraphics/drivercommon/vrGraphicsEnums.h"

#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrShaderInstance.h"

#include <array>

namespace
{

using Entry = EnumConverterClass::Entry;

constexpr Entry VERTEX_PROCS[] = {
    {"VR_VERTEX_PROC_NONE", VR_VERTEX_PROC_NONE},
    {"VR_VERTEX_PROC_WORLD", VR_VERTEX_PROC_WORLD},
    {"VR_VERTEX_PROC_STRETCH", VR_VERTEX_PROC_STRETCH},
};

constexpr Entry VERTEX_TYPES[] = {
    {"vrPrimVertex", VR_PRIM_VERTEX},
    {"vrLitVertex", VR_LIT_VERTEX},
    {"vrLitBumpVertex", VR_LIT_BUMP_VERTEX},
};

std::array<Entry, PHASE_COUNT> Make_Phase_Table()
{
    std::array<Entry, PHASE_COUNT> table{};
    for (int phase = 0; phase < PHASE_COUNT; ++phase)
        table[static_cast<size_t>(phase)] = {Get_Phase_Name(static_cast<vrRenderPhaseEnum>(phase)), phase};
    return table;
}

} // namespace

std::span<const Entry> Get_Render_Phase_Table()
{
    static const std::array<Entry, PHASE_COUNT> TABLE = Make_Phase_Table();
    return TABLE;
}

std::span<const Entry> Get_Vertex_Proc_Table()
{
    return VERTEX_PROCS;
}

std::span<const Entry> Get_Vertex_Type_Table()
{
    return VERTEX_TYPES;
}

void Register_Driver_Enums()
{
    EnumConverterClass::Register("vrRenderPhaseEnum", Get_Render_Phase_Table());
    EnumConverterClass::Register("vrShaderVertexProcType", Get_Vertex_Proc_Table());
    EnumConverterClass::Register("vrPrimVertexType", Get_Vertex_Type_Table());
}
