#include "vrGraphics/plugins/renderables/KillerAndLightScale.h"

#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

vrMKPRenderableKillerModifier::vrMKPRenderableKillerModifier()
{
    Parameters.Add_Float(100, "Lifetime", 0.0f, 0.0f, 300.0f,
                         "Time in seconds after its start at which the renderable is removed (0 = Never).");
    Parameters.Add_Float(101, "Lifetime Variation", 0.0f, 0.0f, 100.0f,
                         "Variation of the lifetime, in per cent of it.");
    Parameters.Add_Float(102, "Fade Out Time", 0.0f, 0.0f, 60.0f,
                         "Time in seconds over which the renderable fades out before it is removed.");
    Parameters.Add_Bool(103, "Kill With Projectile", false, "Remove the renderable as the projectile hits its target.");
}

vrMKPKeyedLightScaleRenderableModifier::vrMKPKeyedLightScaleRenderableModifier()
{
    Add_Keyframe_Timing(Parameters, 100);
    Add_Constant_Curve(Parameters, 102, "Light Scale R", 1.0f, "Factor for the red part of the light.");
    Add_Constant_Curve(Parameters, 103, "Light Scale G", 1.0f, "Factor for the green part of the light.");
    Add_Constant_Curve(Parameters, 104, "Light Scale B", 1.0f, "Factor for the blue part of the light.");
}
