#include "vrGraphics/postfx/vrPostFxModes.h"

#include "vrGraphics/drivercommon/vrGraphicsEnums.h"
#include "vrGraphics/postfx/vrPostFx.h"

namespace
{

using Entry = EnumConverterClass::Entry;

constexpr Entry INPUT_MODES[] = {
    {"FROM_MAIN_RT", FROM_MAIN_RT},
    {"FROM_IRT0", FROM_IRT0},
    {"FROM_IRT1", FROM_IRT1},
    {"FROM_ORIGINAL_SCENE", FROM_ORIGINAL_SCENE},
    {"FROM_MAIN_HDR_RT", FROM_MAIN_HDR_RT},
    {"FROM_HDR_IRT0", FROM_HDR_IRT0},
    {"FROM_HDR_IRT1", FROM_HDR_IRT1},
};

constexpr Entry OUTPUT_MODES[] = {
    {"TO_MAIN_RT", TO_MAIN_RT},
    {"TO_IRT0", TO_IRT0},
    {"TO_IRT1", TO_IRT1},
    {"TO_SCENE_IMAGE", TO_SCENE_IMAGE},
    {"TO_MAIN_HDR_RT", TO_MAIN_HDR_RT},
    {"TO_HDR_IRT0", TO_HDR_IRT0},
    {"TO_HDR_IRT1", TO_HDR_IRT1},
};

constexpr Entry POSTFX_TYPES[] = {
    {"VR_POSTFX_TYPE_ENGINE_BLOOM", vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM},
    {"VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION", vrPostFx::VR_POSTFX_TYPE_ENGINE_HEAT_DISTORTION},
    {"VR_POSTFX_TYPE_ENGINE_DOF", vrPostFx::VR_POSTFX_TYPE_ENGINE_DOF},
    {"VR_POSTFX_TYPE_ENGINE_HDR", vrPostFx::VR_POSTFX_TYPE_ENGINE_HDR},
    {"VR_POSTFX_TYPE_GAME", vrPostFx::VR_POSTFX_TYPE_GAME},
    {"VR_POSTFX_TYPE_GAME_LPPR_ONLY", vrPostFx::VR_POSTFX_TYPE_GAME_LPPR_ONLY},
};

} // namespace

std::span<const Entry> Get_Input_Mode_Table()
{
    return INPUT_MODES;
}

std::span<const Entry> Get_Output_Mode_Table()
{
    return OUTPUT_MODES;
}

std::span<const Entry> Get_PostFx_Type_Table()
{
    return POSTFX_TYPES;
}

void Register_vrGraphics_Enums()
{
    Register_Driver_Enums();
    EnumConverterClass::Register("vrPostFxInputMode", INPUT_MODES);
    EnumConverterClass::Register("vrPostFxOutputMode", OUTPUT_MODES);
    EnumConverterClass::Register("vrPostFx::vrPostFxTypeEnum", POSTFX_TYPES);
}
