// The textures, the light and the shader of billboards.

#include "vrGraphics/plugins/visualizers/Billboards.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/vrMKPEmitterFace.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrParticleLight.h"

#include <algorithm>

namespace
{

/// The values of "Lighting Source".
enum LightingSources : int
{
    LIT_BY_SUN = 0,
    LIT_BY_PARTICLE_LIGHT = 1
};

constexpr float SUN_DISTANCE = 1000000.0f;
constexpr float LEAST_LIGHT_WRAP = 0.01f; ///< stands in for 0

RGBAClass To_Light(const RGBAClass &color)
{
    return vrGraphicsDriver::Get_Gamma_Table(0).Convert(color);
}

} // namespace

void vrMKPBillboardVisualizer::Bind_To_Emitter(vrMKPEmitterFace &emitter)
{
    if (!Has_Bump()) return;
    LightIndex = std::max(emitter.Find_Light_Source(Lighting.LightSourceName->Get_Value().c_str()), 0);
}

void vrMKPBillboardVisualizer::Share_Assets(const vrMKPSimpleVisualizer &from)
{
    vrMKPSimpleVisualizer::Share_Assets(from);
    const auto *billboard = dynamic_cast<const vrMKPBillboardVisualizer *>(&from);
    if (!billboard) return;
    BumpTexture = billboard->BumpTexture;
    LightPosParameter = billboard->LightPosParameter;
    LightDiffuseParameter = billboard->LightDiffuseParameter;
    EmissiveParameter = billboard->EmissiveParameter;
}

void vrMKPBillboardVisualizer::Load_Textures(bool force)
{
    vrMKPSimpleVisualizer::Load_Textures(force);
    if (Has_Bump() && (force || !BumpTexture)) BumpTexture = Load_Texture(BumpTextureName->Get_Value());
}

void vrMKPBillboardVisualizer::Set_Shader_Parameters()
{
    vrMKPSimpleVisualizer::Set_Shader_Parameters();
    if (!Has_Bump()) return;
    const vrShaderInstance &shader = *Get_Shader();
    const auto withoutAlpha = [](const RGBAClass &color) { return Vector4(color.R, color.G, color.B, 0.0f); };
    Set_Shader_Texture("NormalTexture", BumpTexture.Get());
    Set_Shader_Vector(shader.Get_Parameter_Index("Specular"), withoutAlpha(To_Light(Lighting.Specular->Get_Value())));
    EmissiveParameter = shader.Get_Parameter_Index("Emissive");
    Set_Shader_Vector(EmissiveParameter, withoutAlpha(To_Light(Lighting.Emissive->Get_Value())));
    const float wrap = Lighting.LightWrap->Get_Value();
    Set_Shader_Float("LightWrap", 1.0f / (wrap == 0.0f ? LEAST_LIGHT_WRAP : wrap));
    Set_Shader_Float("NormalScale", Lighting.NormalScale->Get_Value());
    LightPosParameter = shader.Get_Parameter_Index("ParticleLightPos");
    LightDiffuseParameter = shader.Get_Parameter_Index("ParticleLightDiffuse");
}

void vrMKPBillboardVisualizer::Set_Lighting(const vrMKPBuffer &buffer, const vrRenderContext &context) const
{
    if (!Has_Bump()) return;
    const vrMKPEmitterFace *emitter = buffer.State->Emitter;
    if (Lighting.LightingSource->Get_Value() == LIT_BY_PARTICLE_LIGHT && emitter &&
        LightIndex < emitter->Get_Light_Source_Count())
        Light_By_Source(buffer);
    else
        Light_By_Sun(buffer);
    if (!Lighting.SceneLighting->Get_Value()) return;
    const RGBAClass emissive = To_Light(Lighting.Emissive->Get_Value());
    Set_Shader_Vector(EmissiveParameter,
                      {Vector3(emissive.R, emissive.G, emissive.B) + context.ParticleEmissiveAdder, 0.0f});
}

void vrMKPBillboardVisualizer::Light_By_Source(const vrMKPBuffer &buffer) const
{
    const vrParticleLight &light = buffer.State->Emitter->Get_Light_Source(LightIndex);
    Set_Light(buffer, light.Position, light.Color, light.IsOn ? light.Intensity : 0.0f);
}

/// Without a sun the shader keeps what it has.
void vrMKPBillboardVisualizer::Light_By_Sun(const vrMKPBuffer &buffer) const
{
    const vrLightContext *lights = TheGraphicsDriver->Get_Light_Context();
    const vrDirectionalLight *sun = lights ? lights->Get_Sun_Light() : nullptr;
    if (!sun) return;
    Set_Light(buffer, sun->Get_Direction() * SUN_DISTANCE, To_Light(sun->Get_Diffuse()), sun->Get_Intensity());
}

void vrMKPBillboardVisualizer::Set_Light(const vrMKPBuffer &buffer, const Vector3 &position, const RGBAClass &color,
                                         float intensity) const
{
    Set_Shader_Vector(LightPosParameter, {position, 1.0f});
    const Vector3 diffuse = Vector3(color.R, color.G, color.B) * intensity * buffer.State->LightScale;
    Set_Shader_Vector(LightDiffuseParameter, {diffuse, 1.0f});
}
