#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"

#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/scene/vrParticleLight.h"

vrMKPLightSourceController::vrMKPLightSourceController()
    : Name(Parameters.Add_String(0, "Name", "Light", "Name by which particles refer to the light.")),
      LightScene(Parameters.Add_Bool(1, "Light Scene", true,
                                     "Lights models and terrain. When off, the light is there for particles alone.")),
      Offset(Parameters.Add_Vector3(2, "Offset", Vector3(0.0f), "Distance from the point that the light sits on.")),
      InnerRadius(Parameters.Add_Float(3, "Inner Radius", 50.0f, 0.0f, 10000.0f,
                                       "Distance up to which the light is at its strongest.")),
      OuterRadius(Parameters.Add_Float(4, "Outer Radius", 200.0f, 0.0f, 10000.0f, "Distance at which the light ends.")),
      UseParticleCount(
          Parameters.Add_Bool(5, "Use Particle Count", false,
                              "Scale the intensity with the number of particles of the group's contributing layers.")),
      ParticleCount(Parameters.Add_Int(6, "Particle Count", 100, 1, 10000,
                                       "Number of particles at which the light is at full intensity."))
{
}

std::string_view vrMKPLightSourceController::Get_Light_Name() const
{
    return Name->Get_Value();
}

const Vector3 &vrMKPLightSourceController::Get_Offset() const
{
    return Offset->Get_Value();
}

float vrMKPLightSourceController::Get_Count_Scale(int particleCount) const
{
    const int full = ParticleCount->Get_Value();
    if (!UseParticleCount->Get_Value() || full < 1) return 1.0f;
    return Particle::Clamp_01(static_cast<float>(particleCount) / static_cast<float>(full));
}

void vrMKPLightSourceController::Update(vrParticleLight &light, const vrMKPLightContext &context) const
{
    // The name table is asked only when somebody renamed the light.
    if (light.Name.Get_String() != Name->Get_Value()) light.Name = NameTableRef(Name->Get_Value());
    light.LightsScene = LightScene->Get_Value();
    light.Position = context.Transform.Transform(Offset->Get_Value());
    light.InnerRadius = InnerRadius->Get_Value();
    light.OuterRadius = OuterRadius->Get_Value();
    Shine(light, context);

    light.Intensity *= Get_Count_Scale(context.State.LightingParticleCount);
    light.InnerRadius = std::fmax(light.InnerRadius, 0.0f);
    light.OuterRadius = std::fmax(light.OuterRadius, light.InnerRadius);
    light.IsOn = light.IsOn && light.Intensity > 0.0f && Is_Valid(light.Intensity) && Is_Valid(light.Position) &&
                 Is_Valid(light.Color) && Is_Valid(light.OuterRadius);
    if (!light.IsOn) light.Intensity = 0.0f;
}
