#include "vrGraphics/scene/vrLightSource.h"

MK_DEFINE_RUN_TIME_TYPE(vrLightSource, vrRenderable)
MK_DEFINE_RUN_TIME_TYPE(vrDirectionalLight, vrLightSource)

vrDirectionalLight *vrDirectionalLight::Clone(vrCloneType) const
{
    return new vrDirectionalLight(*this);
}
