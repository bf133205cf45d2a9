#pragma once

#include "MKLib/EnumConverter.h"

// The names by which data files know the enums of drawing.
std::span<const EnumConverterClass::Entry> Get_Render_Phase_Table();
std::span<const EnumConverterClass::Entry> Get_Vertex_Proc_Table(); ///< `vrShaderVertexProcType`
std::span<const EnumConverterClass::Entry> Get_Vertex_Type_Table(); ///< `vrPrimVertexType`, by the layouts' names

/// Hands the tables above to `EnumConverterClass`.
void Register_Driver_Enums();
