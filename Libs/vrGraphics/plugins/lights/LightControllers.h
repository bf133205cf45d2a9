#pragma once

#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"
#include "vrGraphics/plugins/renderables/KeyframeTiming.h"

/// A light without keys: one colour and intensity, which may flicker.
class vrMKPSteadyLightSourceController : public vrMKPLightSourceController
{
public:
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;

protected:
    vrMKPSteadyLightSourceController();

    /// Sets colour and intensity, and whether the light is on by them.
    void Shine(vrParticleLight &light, const vrMKPLightContext &context) const override;

private:
    float Get_Flicker(const vrMKPLightContext &context) const;

    RGBAParameter *Color;
    RangedFloatParameter *Intensity;
    RangedFloatParameter *FlickerAmount;
    RangedFloatParameter *FlickerRate;
};

/// One colour for a span of time, with fades and flicker: the light of old groups.
class vrMKPLegacyLightSourceController final : public vrMKPSteadyLightSourceController
{
public:
    vrMKPLegacyLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Shine(vrParticleLight &light, const vrMKPLightContext &context) const override;

private:
    RangedFloatParameter *StartDelay;
    RangedFloatParameter *Duration;
    RangedFloatParameter *FadeInTime;
    RangedFloatParameter *FadeOutTime;
};

/// Runs colour, intensity and reach through keyframes.
class vrMKPKeyedLightSourceController final : public vrMKPLightSourceController
{
public:
    vrMKPKeyedLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Shine(vrParticleLight &light, const vrMKPLightContext &context) const override;

private:
    KeyframeTiming Timing;
    KeyedRGBAParameter *Color;
    KeyedFloatParameterClass *Intensity;
    KeyedFloatParameterClass *RadiusScale;
};

/// Sits on the smoothed centroid of one layer's particles. It is off while the layer has none.
class vrMKPCentroidLightSourceController final : public vrMKPSteadyLightSourceController
{
public:
    vrMKPCentroidLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Shine(vrParticleLight &light, const vrMKPLightContext &context) const override;

private:
    const vrMKPLayer *Find_Layer(const vrMKPLightContext &context) const;

    StringParameterClass *LayerName;
};
