#pragma once

#include "MKLib/EnumConverter.h"

/// Where a step of a post-effect reads from.
enum vrPostFxInputMode : int
{
    FROM_MAIN_RT = 0, ///< the main target that was written last; the scene when none was yet
    FROM_IRT0 = 1,
    FROM_IRT1 = 2,
    FROM_ORIGINAL_SCENE = 3, ///< the scene image, or what the run was given in its place
    // The same with more than eight bits a channel, which no driver has.
    FROM_MAIN_HDR_RT = 4,
    FROM_HDR_IRT0 = 5,
    FROM_HDR_IRT1 = 6
};

/// Where it writes to.
enum vrPostFxOutputMode : int
{
    TO_MAIN_RT = 0, ///< the main target that wasn't written last
    TO_IRT0 = 1,
    TO_IRT1 = 2,
    TO_SCENE_IMAGE = 3,
    TO_MAIN_HDR_RT = 4,
    TO_HDR_IRT0 = 5,
    TO_HDR_IRT1 = 6
};

std::span<const EnumConverterClass::Entry> Get_Input_Mode_Table();
std::span<const EnumConverterClass::Entry> Get_Output_Mode_Table();
/// Of `vrPostFx::vrPostFxTypeEnum`.
std::span<const EnumConverterClass::Entry> Get_PostFx_Type_Table();

/// Hands the names of all enums of drawing to `EnumConverterClass`.
void Register_vrGraphics_Enums();
