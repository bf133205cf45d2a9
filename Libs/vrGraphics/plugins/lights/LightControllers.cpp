#include "vrGraphics/plugins/lights/LightControllers.h"

#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPLayer.h"
#include "vrGraphics/scene/vrParticleLight.h"

namespace
{

constexpr const char *COLOR_TEXT = "Color of the light.";
constexpr const char *INTENSITY_TEXT = "Strength of the light; the color is multiplied by it.";

/// Two neighbours of a light's row of random intensities, between which it stands.
class FlickerDataClass final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override { Last = -1.0; }

    double Last = -1.0; ///< number in the row of the one behind; below 0 before the first draw
    float Behind = 0.0f;
    float Ahead = 0.0f;
};
MK_DEFINE_RUN_TIME_TYPE(FlickerDataClass, vrMKPBufferPluginData)

/// The random value of the row at `place`. A step over several of the row draws as if it were over two.
float Walk_Row(FlickerDataClass &data, double place, RandomGeneratorClass &random)
{
    const double last = std::floor(place);
    if (data.Last < 0.0 || last > data.Last + 1.0) {
        data.Behind = random.Get_Float(0.0f, 1.0f);
        data.Ahead = random.Get_Float(0.0f, 1.0f);
    } else if (last > data.Last) {
        data.Behind = data.Ahead;
        data.Ahead = random.Get_Float(0.0f, 1.0f);
    }
    data.Last = last;
    const auto fraction = static_cast<float>(place - last);
    return data.Behind + (data.Ahead - data.Behind) * fraction;
}

/// How far a fade has come after so many seconds of it; a fade without a time is over.
float Fade_Of(float seconds, float fadeTime)
{
    return fadeTime > 0.0f ? Particle::Clamp_01(seconds / fadeTime) : 1.0f;
}

} // namespace

vrMKPSteadyLightSourceController::vrMKPSteadyLightSourceController()
    : Color(Parameters.Add_RGBA(100, "Color", RGBAClass(), COLOR_TEXT)),
      Intensity(Parameters.Add_Float(101, "Intensity", 1.0f, 0.0f, 100.0f, INTENSITY_TEXT)),
      FlickerAmount(Parameters.Add_Float(102, "Flicker Amount", 0.0f, 0.0f, 1.0f,
                                         "Part of the intensity that comes and goes at random.")),
      FlickerRate(
          Parameters.Add_Float(103, "Flicker Rate", 10.0f, 0.0f, 100.0f, "Number of random intensities per second."))
{
}

vrMKPBufferPluginData *vrMKPSteadyLightSourceController::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new FlickerDataClass;
}

float vrMKPSteadyLightSourceController::Get_Flicker(const vrMKPLightContext &context) const
{
    auto *const data = MK_Dynamic_Cast<FlickerDataClass>(context.Data);
    const float amount = FlickerAmount->Get_Value();
    const double place = static_cast<double>(FlickerRate->Get_Value()) * static_cast<double>(context.RunningTime);
    if (!data || !(amount > 0.0f) || !(FlickerRate->Get_Value() > 0.0f) || !std::isfinite(place)) return 1.0f;
    return Particle::Clamp_01(1.0f - amount * Walk_Row(*data, place, context.Random));
}

void vrMKPSteadyLightSourceController::Shine(vrParticleLight &light, const vrMKPLightContext &context) const
{
    light.Color = Color->Get_Value();
    light.Intensity = Intensity->Get_Value() * Get_Flicker(context);
    light.IsOn = true;
}

vrMKPLegacyLightSourceController::vrMKPLegacyLightSourceController()
    : StartDelay(
          Parameters.Add_Float(110, "Start Delay", 0.0f, 0.0f, 300.0f, "Time in seconds before the light comes on.")),
      Duration(Parameters.Add_Float(111, "Duration", 0.0f, 0.0f, 300.0f,
                                    "Time in seconds that the light stays on (0 = As long as the group).")),
      FadeInTime(
          Parameters.Add_Float(112, "Fade In Time", 0.0f, 0.0f, 60.0f, "Time in seconds to reach full intensity.")),
      FadeOutTime(
          Parameters.Add_Float(113, "Fade Out Time", 0.0f, 0.0f, 60.0f, "Time in seconds to go out at the end."))
{
}

void vrMKPLegacyLightSourceController::Shine(vrParticleLight &light, const vrMKPLightContext &context) const
{
    vrMKPSteadyLightSourceController::Shine(light, context);
    const float time = context.RunningTime - StartDelay->Get_Value();
    light.Intensity *= Fade_Of(time, FadeInTime->Get_Value());
    const float duration = Duration->Get_Value();
    if (duration > 0.0f) light.Intensity *= Fade_Of(duration - time, FadeOutTime->Get_Value());
    light.IsOn = time >= 0.0f && !(duration > 0.0f && time >= duration);
}

vrMKPKeyedLightSourceController::vrMKPKeyedLightSourceController()
    : Timing(Add_Keyframe_Timing(Parameters, 100)), Color(Parameters.Add_Keyed_RGBA(102, "Color", COLOR_TEXT)),
      Intensity(Add_Constant_Curve(Parameters, 103, "Intensity", 1.0f, INTENSITY_TEXT)),
      RadiusScale(Add_Constant_Curve(Parameters, 104, "Radius Scale", 1.0f, "Factor for both radii."))
{
    Color->Add_Key(0.0f, RGBAClass());
}

void vrMKPKeyedLightSourceController::Shine(vrParticleLight &light, const vrMKPLightContext &context) const
{
    const float keyTime = Timing.Get_Key_Time(context.RunningTime);
    Color->Evaluate(keyTime, false, light.Color);
    light.Intensity = Evaluate_Curve(*Intensity, keyTime);
    const float radiusScale = Evaluate_Curve(*RadiusScale, keyTime);
    light.InnerRadius *= radiusScale;
    light.OuterRadius *= radiusScale;
    light.IsOn = true;
}

vrMKPCentroidLightSourceController::vrMKPCentroidLightSourceController()
    : LayerName(Parameters.Add_String(
          120, "Layer Name", "", "Name of the particle layer to follow. Without a name, the first layer of the group."))
{
}

const vrMKPLayer *vrMKPCentroidLightSourceController::Find_Layer(const vrMKPLightContext &context) const
{
    const MK::String &name = LayerName->Get_Value();
    if (name.empty()) return context.FirstLayer;
    return context.State.Layers ? context.State.Layers->Find_Layer(name) : nullptr;
}

void vrMKPCentroidLightSourceController::Shine(vrParticleLight &light, const vrMKPLightContext &context) const
{
    vrMKPSteadyLightSourceController::Shine(light, context);
    const vrMKPLayer *const layer = Find_Layer(context);
    const vrMKPBuffer *const buffer = layer ? layer->Get_Buffer() : nullptr;
    light.IsOn = buffer && buffer->ActiveCount > 0;
    if (light.IsOn) light.Position = buffer->SmoothedCentroid + context.Transform.Rotate(Get_Offset());
}
