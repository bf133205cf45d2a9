#pragma once

#include "vrGraphics/plugins/renderables/KeyframeTiming.h"
#include "vrGraphics/plugins/renderables/vrMKPRenderablePhysics.h"

/// Ends a whole renderable after a time.
class vrMKPRenderableKillerModifier final : public vrMKPRenderableModifier
{
public:
    vrMKPRenderableKillerModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    void Update(vrMKPRenderableOutcome &outcome, const vrMKPRenderableModifierContext &context) const override;

private:
    /// Seconds that this instance lives; the variation is drawn once.
    float Get_Instance_Lifetime(const vrMKPRenderableModifierContext &context) const;

    RangedFloatParameter *Lifetime;
    RangedFloatParameter *LifetimeVariation;
    RangedFloatParameter *FadeOutTime;
    BoolParameter *KillWithProjectile;
};

/// Dims or tints the light that falls on a renderable through keyframes.
class vrMKPKeyedLightScaleRenderableModifier final : public vrMKPRenderableModifier
{
public:
    vrMKPKeyedLightScaleRenderableModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Update(vrMKPRenderableOutcome &outcome, const vrMKPRenderableModifierContext &context) const override;

private:
    KeyframeTiming Timing;
    KeyedFloatParameterClass *ScaleR;
    KeyedFloatParameterClass *ScaleG;
    KeyedFloatParameterClass *ScaleB;
};
