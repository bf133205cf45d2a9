#include "vrGraphics/scene/vrInterpolators.h"

#include "MKLib/MKDebug/Assert.h"

#include <glm/common.hpp>
#include <glm/gtc/quaternion.hpp>

#include <algorithm>

Mat3DClass vrTransformInterpolator::To_Transform(const State &state)
{
    Mat3DClass transform = Mat3DClass::From_Quaternion(state.Rotation);
    for (int row = 0; row < 3; ++row) transform.Row[row] *= state.Scale[row];
    transform.Set_Translation(state.Translation);
    return transform;
}

Mat3DClass vrTransformInterpolator::Interpolate(float interpolation_fraction) const
{
    MK_ASSERT((interpolation_fraction >= 0.0f) && (interpolation_fraction <= 1.0f),
              "(interpolation_fraction >= 0.0f) && (interpolation_fraction <= 1.0f)");
    const float fraction = std::clamp(interpolation_fraction, 0.0f, 1.0f);
    return To_Transform({glm::mix(States[0].Translation, States[1].Translation, fraction),
                         glm::slerp(States[0].Rotation, States[1].Rotation, fraction),
                         glm::mix(States[0].Scale, States[1].Scale, fraction)});
}

void vrRenderableInterpolator::Interpolate(float interpolation_fraction)
{
    if (!MK_VERIFY(static_cast<bool>(Renderable), "m_Renderable && \"Renderable is NULL. Call Brem.\"")) return;
    if (ModelFlags & MODEL_HAS_TRANSFORM) Renderable->Set_Transform(Transform.Interpolate(interpolation_fraction));
}
