// How hardware particles are drawn: quads in the renderable's frame, written right into the driver's room.

#include "vrGraphics/plugins/ensembles/vrHWParticles.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/VectorPlanes.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/ensembles/Hardware.h"
#include "vrGraphics/plugins/visualizers/ParticleColors.h"
#include "vrGraphics/plugins/visualizers/ParticleDraw.h"
#include "vrGraphics/plugins/visualizers/VelocityQuads.h"

#include <algorithm>

namespace
{

using Plane = float[vrMKPQuadBlock::SIZE];

constexpr int MAX_DRAW_QUADS = MAX_DRAW_VERTICES / 4;

/// How a mode names its own form of a shader, and what it blends by.
struct ModeInfo
{
    const char *Suffix;
    vrRenderStateCode Blend;
};
constexpr ModeInfo MODES[] = {{"", VR_BLEND_ALPHA}, {"Additive", VR_BLEND_ADDITIVE}, {"Modulate", VR_BLEND_MODULATE}};

MK_SIMD void Find_Shares(float *__restrict shares, const float *__restrict ages, int count, float life)
{
    for (int at = 0; at < count; ++at) shares[at] = Particle::Clamp_01(ages[at] / life);
}

/// What each of three keys has of a value. They add up to 1.
struct KeyWeights
{
    float Start;
    float Mid;
    float End;
};

MK_INLINE KeyWeights Weigh(float share, float midTime)
{
    // Beside a key at an end there's nothing to go through.
    const float before = midTime > 0.0f ? Particle::Clamp_01(1.0f - share / midTime) : 0.0f;
    const float after = midTime < 1.0f ? Particle::Clamp_01((share - midTime) / (1.0f - midTime)) : 0.0f;
    return {before, 1.0f - before - after, after};
}

MK_SIMD void Find_Sizes(float *__restrict sizes, const float *__restrict shares, int count, vrHWKeys<float> keys)
{
    for (int at = 0; at < count; ++at) {
        const KeyWeights weights = Weigh(shares[at], keys.MidTime);
        sizes[at] = keys.Start * weights.Start + keys.Mid * weights.Mid + keys.End * weights.End;
    }
}

MK_SIMD void Find_Colors(vrColor *__restrict colors, const float *__restrict shares, int count,
                         vrHWKeys<RGBAClass> keys)
{
    const RGBAClass a = keys.Start;
    const RGBAClass b = keys.Mid;
    const RGBAClass c = keys.End;
    for (int at = 0; at < count; ++at) {
        const KeyWeights w = Weigh(shares[at], keys.MidTime);
        colors[at] = Particle::Color_Byte(Particle::Clamp_01(a.R * w.Start + b.R * w.Mid + c.R * w.End)) |
                     Particle::Color_Byte(Particle::Clamp_01(a.G * w.Start + b.G * w.Mid + c.G * w.End)) << 8 |
                     Particle::Color_Byte(Particle::Clamp_01(a.B * w.Start + b.B * w.Mid + c.B * w.End)) << 16 |
                     Particle::Color_Byte(Particle::Clamp_01(a.A * w.Start + b.A * w.Mid + c.A * w.End)) << 24;
    }
}

/// Adds how fast particles are carried about an axis.
MK_SIMD void Add_Rotation(Particle::Planes &__restrict sums, vrMKPConstVectors velocities, vrMKPConstVectors positions,
                          int count, Vector3 axis, float speed)
{
    for (int at = 0; at < count; ++at) {
        const Vector3 carried = Particle::Times(Particle::Unit(Particle::Cross(axis, positions[at])), speed);
        sums.Put(at, Particle::Plus(velocities[at], carried));
    }
}

RGBAClass Get_Multiplier(const vrMKPRenderState &state)
{
    RGBAClass multiplier = state.ColorMultiplier;
    multiplier.A *= state.TintAlpha;
    return multiplier;
}

/// "Particle.mks" and "Additive" give "ParticleAdditive.mks".
std::string Get_Form_Name(std::string_view name, const char *suffix)
{
    const size_t dot = std::min(name.rfind('.'), name.size());
    return std::string(name.substr(0, dot)) + suffix + std::string(name.substr(dot));
}

} // namespace

/// Turns runs of particles into vertices, for one look and one view.
class vrHWQuadWriter
{
public:
    /// `camera` in the frame of the particles.
    vrHWQuadWriter(const vrMKPBuffer &particles, const vrHWParticleLook &look, const vrHWForces &forces,
                   const vrMKPRenderState &state, const Mat3DClass &camera, float life)
        : Particles(particles), Look(look), Forces(forces), Life(life), SizeMultiplier(state.RenderSizeMultiplier),
          Quads(look.TextureRotation)
    {
        Colors.Begin(Get_Multiplier(state));
        View.CameraPosition = camera.Get_Translation();
        View.CameraX = camera.Get_Axis(0);
        View.CameraY = camera.Get_Axis(1);
        View.Anchor = ANCHORS[look.AnchorPoint];
        const Vector4 &texture = look.TexCoords;
        std::fill_n(Quads.U[0], vrMKPQuadBlock::SIZE, texture.x);
        std::fill_n(Quads.V[0], vrMKPQuadBlock::SIZE, texture.y);
        std::fill_n(Quads.U[1], vrMKPQuadBlock::SIZE, texture.x + texture.z);
        std::fill_n(Quads.V[1], vrMKPQuadBlock::SIZE, texture.y + texture.w);
        // A billboard is a quad that moves up the screen.
        for (int at = 0; at < vrMKPQuadBlock::SIZE; ++at) Velocities.Put(at, Vector3(0.0f, 1.0f, 0.0f));
    }

    void Write(vrLitVertex *vertices, vrMKPSpan span)
    {
        for (int done = 0; done < span.Count; done += vrMKPQuadBlock::SIZE) {
            Write_Block(vertices, {span.First + done, std::min(span.Count - done, vrMKPQuadBlock::SIZE)});
            vertices += 4 * Quads.Count;
        }
    }

private:
    void Write_Block(vrLitVertex *vertices, vrMKPSpan block)
    {
        const int count = block.Count;
        Quads.Count = count;
        Quads.Position = Particles.Position + block.First;
        Find_Shares(Shares, Particles.Age + block.First, count, Life);
        Find_Sizes(Sizes, Shares, count, Look.Size);
        Particle::Multiply(Quads.Height, Sizes, count, SizeMultiplier);
        Particle::Multiply(Quads.Width, Quads.Height, count, Look.AspectRatio);
        Find_Colors(KeyColors, Shares, count, Look.Color);
        Colors.Convert(Quads.Color, KeyColors, count);
        if (Look.GeometryMode == VR_HW_VELOCITY_ALIGNED) {
            Add_Rotation(Velocities, Particles.Velocity + block.First, Quads.Position, count, Forces.Axis,
                         Forces.Rotation);
            VelocityQuads::Align(vrMKPAlignment::CAMERA, Quads, Velocities, Shares, View);
        } else {
            VelocityQuads::Align(vrMKPAlignment::SCREEN, Quads, Velocities, Shares, View);
        }
        Quads.Write(vertices);
    }

    const vrMKPBuffer &Particles;
    const vrHWParticleLook &Look;
    const vrHWForces &Forces;
    float Life;
    float SizeMultiplier;
    vrMKPVelocityView View;
    vrMKPColorPath Colors;
    alignas(64) Plane Shares;
    alignas(64) Plane Sizes;
    alignas(64) vrColor KeyColors[vrMKPQuadBlock::SIZE];
    Particle::Planes Velocities;
    vrMKPQuadBlock Quads;
};

bool vrHWParticles::Ready_Shader(const vrHWParticleLook &look)
{
    if (Shader && ShaderName == look.ShaderName && ShaderMode == look.RenderMode) return true;
    ShaderName = look.ShaderName;
    ShaderMode = look.RenderMode;
    Shader = TheGraphicsDriver->Create_Shader_Instance(Get_Form_Name(look.ShaderName, MODES[look.RenderMode].Suffix));
    // An effect without a form for the mode still has its blending changed.
    if (look.RenderMode != VR_HW_ALPHA_BLEND && (!Shader || Shader->Is_Missing_Effect()))
        Shader = TheGraphicsDriver->Create_Shader_Instance(look.ShaderName);
    return Shader.Get() != nullptr;
}

void vrHWParticles::Render(vrRenderContext &context, const vrHWParticleLook &look)
{
    if (!TheGraphicsDriver || Particles->ActiveCount == 0 || !Ready_Shader(look)) return;
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    const int texture = Shader->Get_Parameter_Index("BaseTexture");
    if (texture >= 0) Shader->Set_Texture(texture, look.Texture);

    const Mat3DClass camera = context.Camera ? context.Camera->Get_Transform() : context.PreRender.Camera;
    const vrHWForces forces = Spawner->Get_Forces();
    vrHWQuadWriter writer(*Particles, look, forces, State, State.InverseTransform * camera, Life);
    const vrMKPPassScope pass(*Shader, context, look.IgnoresDepth);
    vrRenderStateBlock block = driver.Get_Render_State_Block();
    block.m_blendState = MODES[look.RenderMode].Blend;
    driver.Set_Render_State_Block(block);
    for (const vrMKPSpan span : Particles->Live_Spans())
        for (int done = 0; done < span.Count; done += MAX_DRAW_QUADS) {
            const vrMKPSpan part{span.First + done, std::min(span.Count - done, MAX_DRAW_QUADS)};
            vrLitVertex *room = nullptr;
            if (!driver.Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4 * part.Count, &room)) return;
            if (room) writer.Write(room, part);
            driver.End_Lit_Vertices();
        }
}
