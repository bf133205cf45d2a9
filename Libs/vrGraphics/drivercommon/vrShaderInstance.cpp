#include "vrGraphics/drivercommon/vrShaderInstance.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKString.h"

#include <algorithm>

MK_DEFINE_RUN_TIME_TYPE_ROOT(vrShaderInstance)

namespace
{

void Copy_Param(vrShaderInstance &to, const vrShaderInstance &from, int index)
{
    float values[4] = {};
    bool truth = false;
    switch (from.Get_Parameter_Type(index)) {
    case SHADER_PARAMS_BOOL:
        if (from.Get_Bool(index, truth)) to.Set_Bool(index, truth);
        break;
    case SHADER_PARAMS_FLOAT:
        if (from.Get_Float(index, values[0])) to.Set_Float(index, values[0]);
        break;
    case SHADER_PARAMS_VECTOR2:
        if (from.Get_Vector2(index, values)) to.Set_Vector2(index, values);
        break;
    case SHADER_PARAMS_VECTOR3:
        if (from.Get_Vector3(index, values)) to.Set_Vector3(index, values);
        break;
    case SHADER_PARAMS_VECTOR4:
        if (from.Get_Vector4(index, values)) to.Set_Vector4(index, values);
        break;
    case SHADER_PARAMS_TEXTURE: to.Set_Texture(index, from.Get_Texture(index)); break;
    case SHADER_PARAMS_NONE: break;
    }
}

} // namespace

int vrShaderInstance::Get_Parameter_Index(std::string_view name) const
{
    const int count = Get_Parameter_Count();
    for (int index = 0; index < count; ++index)
        if (MK::Equal_Ignoring_Case(Get_Parameter_Name(index), name)) return index;
    return -1;
}

void vrShaderInstance::Copy_Params(vrShaderInstance *to, const vrShaderInstance *from)
{
    if (!MK_VERIFY(to && from, "shader0 && shader1 && \"Both shaders have to be not NULL. Call Brem.\"")) return;
    const int count = std::min(to->Get_Parameter_Count(), from->Get_Parameter_Count());
    MK_ASSERT(to->Get_Parameter_Count() == from->Get_Parameter_Count(), "both shaders must have as many parameters");
    for (int index = 0; index < count; ++index)
        if (MK_VERIFY(to->Get_Parameter_Type(index) == from->Get_Parameter_Type(index),
                      "(shader0_param_type == shader1->Get_Parameter_Type(i)) && ..."))
            Copy_Param(*to, *from, index);
}
