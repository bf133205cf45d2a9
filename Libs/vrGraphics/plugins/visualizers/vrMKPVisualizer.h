#pragma once

/// The visualizer family: the plugins of a layer that draw its particles. A visualizer turns the visible part of a
/// buffer into vertices for one shader. Where a draw stands in the frame is its shader's matter, never the
/// visualizer's.
///
/// A frame takes two steps. `Pre_Visualize` builds the vertices, in scratch memory that lasts until the driver's frame
/// ends, and may run beside that of other buffers. `Visualize` hands them to the driver, in the same frame and on the
/// thread that owns it. In between they wait in the buffer's data.

#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/drivercommon/vrShaderInstance.h"
#include "vrGraphics/drivercommon/vrTexture.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"
#include "vrGraphics/plugins/visualizers/vrMKPBoundsSum.h"

class vrMKPEmitterFace;
class vrRenderContext;
struct vrBounds;
struct vrPreRenderContext;

class vrMKPVisualizer : public vrMKPPlugin
{
public:
    /// Called when the plugin's parameters were loaded or cloned.
    virtual bool Post_Load() { return true; }
    /// Readies textures and shader. Unless `force` is set, those of `shared` are taken where it is given, and what is
    /// held already stays. A visualizer without assets has nothing to ready.
    virtual void Load_Assets(bool /*force*/, const vrMKPVisualizer * /*shared*/) {}
    /// The text of "Shader Name"; empty for a visualizer that has none.
    virtual std::string_view Get_Shader_Name() const { return {}; }

    /// Measures the layer at the end of its frame: the centroid of the live particles and the box around them as they
    /// will be drawn; then smooths the centroid. Null for no box.
    virtual void Compute_Bounds(vrMKPBuffer &buffer, vrBounds *bounds) const;
    /// Whether `Compute_Bounds` is `Begin_Bounds`, the sum of all live particles, and `End_Bounds`, so that a frame may
    /// add them as it goes.
    virtual bool Has_Plain_Bounds() const { return true; }
    vrMKPBoundsSum Begin_Bounds(const vrMKPBuffer &buffer) const;
    /// Null for no box, which takes no sum either.
    void End_Bounds(vrMKPBuffer &buffer, const vrMKPBoundsSum &sum, vrBounds *bounds) const;
    /// The box that the layer is culled by, made of the bounds of its frame: around whatever a view may show of it.
    virtual vrBounds Get_Cull_Box(const vrMKPBuffer &buffer, const vrBounds &bounds) const;
    /// Fills the channel "Render" with the slots that are drawn in a view, in ring order.
    virtual void Select_Visible_Particles(vrMKPBuffer &buffer, const vrPreRenderContext &context) const;

    /// Takes from the emitter what drawing needs of it. On the main thread, when the layer's buffer is made.
    virtual void Bind_To_Emitter(vrMKPEmitterFace & /*emitter*/) {}
    virtual bool Is_Enabled() const { return true; }
    /// The one that the shader asks for; `Particles` for a visualizer without a shader.
    virtual vrRenderPhaseEnum Get_Render_Phase() const { return vrRenderPhaseEnum::Particles; }
    /// Whether the layer shows in renders of that mode.
    virtual bool Is_Render_Mode_Enabled(vrRenderModeType /*mode*/) const { return false; }
    /// Null until the assets are ready, and for a visualizer that has none.
    virtual vrShaderInstance *Get_Shader() const { return nullptr; }
    void Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
    {
        Do_Pre_Visualize(buffer, context);
    }
    void Visualize(vrMKPBuffer &buffer, vrRenderContext &context) const { Do_Visualize(buffer, context); }

protected:
    vrMKPVisualizer();
    virtual void Do_Pre_Visualize(vrMKPBuffer & /*buffer*/, const vrPreRenderContext & /*context*/) const {}
    virtual void Do_Visualize(vrMKPBuffer & /*buffer*/, vrRenderContext & /*context*/) const {}
    /// The box from `minimum` to `maximum` as it is drawn: mapped where the layer scales at its draw. Asserts that it's
    /// made of numbers.
    static void Set_Bounds(vrBounds &bounds, const vrMKPBuffer &buffer, const Vector3 &minimum, const Vector3 &maximum);
    /// What varies the widths of particles; nothing for a kind without the two parameters.
    virtual vrMKPAspect Get_Aspect() const { return {}; }

private:
    void Smooth_Centroid(vrMKPBuffer &buffer) const;

    RangedFloatParameter *CentroidLag;
};

/// The base of all visualizers that draw, with the render modes, the depth switches, the shader and the step that hands
/// built vertices to the driver.
class vrMKPSimpleVisualizer : public vrMKPVisualizer
{
public:
    /// The values of "Sort Type".
    enum SortTypes : int
    {
        SORT_NORMAL = 0,
        SORT_STOP_AFTER_MAX_AGE = 1 ///< particles past "Max Sort Age" keep their place relative to the group
    };

    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    /// Larger by the depth offset, which lets a view see past its edges.
    vrBounds Get_Cull_Box(const vrMKPBuffer &buffer, const vrBounds &bounds) const override;
    std::string_view Get_Shader_Name() const override { return ShaderName->Get_Value(); }
    /// A kind without "Texture Name" has no assets. A texture that isn't there is white. Without a driver nothing is
    /// loaded, and a later call makes up for it.
    void Load_Assets(bool force, const vrMKPVisualizer *shared) override;
    vrRenderPhaseEnum Get_Render_Phase() const override;
    /// The two modes that draw a scene for itself go by "Normal Render Mode", and each of the others by its own.
    bool Is_Render_Mode_Enabled(vrRenderModeType mode) const override;
    vrShaderInstance *Get_Shader() const override { return Shader.Get(); }
    vrTexture *Get_Base_Texture() const { return BaseTexture.Get(); } ///< null until the assets are ready

protected:
    /// `usesAspectRatio` adds the two parameters that stretch each particle at random.
    explicit vrMKPSimpleVisualizer(bool usesAspectRatio);
    vrMKPAspect Get_Aspect() const override;

    /// Draws what is pending in the buffer's data, and leaves nothing pending. A draw that is too large for the driver
    /// goes in several.
    void Do_Visualize(vrMKPBuffer &buffer, vrRenderContext &context) const override;
    /// The layout that the kind's vertices have.
    virtual vrPrimVertexType Get_Vertex_Type() const { return VR_LIT_VERTEX; }
    /// Gives the shader the light of this draw. Expects a shader and a driver.
    virtual void Set_Lighting(const vrMKPBuffer & /*buffer*/, const vrRenderContext & /*context*/) const {}

    // What `Load_Assets` consists of. Each goes on from its base's.
    virtual void Share_Assets(const vrMKPSimpleVisualizer &from);
    virtual void Load_Textures(bool force);
    /// Tells a new shader what doesn't change from draw to draw. Expects a shader.
    virtual void Set_Shader_Parameters();
    /// By name, or white. Expects a driver.
    static SmartPtr<vrTexture> Load_Texture(std::string_view name);
    // Skip a parameter that the shader doesn't have.
    void Set_Shader_Float(const char *name, float value) const;
    void Set_Shader_Texture(const char *name, vrTexture *texture) const;
    /// As three or four floats, as the shader has them.
    void Set_Shader_Vector(int parameter, const Vector4 &value) const;

    // The forms in which the derived kinds have these. Until a kind adds its shader's name it is "Unknown", and is
    // neither saved nor shown.
    void Add_Texture_Name(int32_t id, std::string_view value);
    void Set_Texture_Name(std::string_view value) { TextureName->Set_Value(value); }
    void Add_Shader_Name(int32_t id, std::string_view value);
    void Set_Shader_Name(std::string_view value) { ShaderName->Set_Value(value); }
    EnumParameterClass *Add_Anchor_Point(int32_t id);
    EnumParameterClass *Add_Texture_Rotation(int32_t id);

    // Sets of the kinds that draw one lit quad a particle, with the same ids in each.
    struct SortingParameters
    {
        BoolParameter *Sort;
        EnumParameterClass *SortType;
        RangedFloatParameter *MaxSortAge;
    };
    struct LightingParameters
    {
        RGBAParameter *Specular;
        RGBAParameter *Emissive;
        RangedFloatParameter *LightWrap;
        RangedFloatParameter *NormalScale;
        EnumParameterClass *LightingSource;
        StringParameterClass *LightSourceName;
        BoolParameter *SceneLighting;
    };
    TextureNameParameterClass *Add_Bump_Texture_Name();
    SortingParameters Add_Sorting();
    LightingParameters Add_Lighting();

    bool Ignores_Depth() const;
    float Get_Depth_Offset() const; ///< world units, away from the camera

private:
    BoolParameter *NormalRenderMode;
    BoolParameter *ReflectionRenderMode;
    BoolParameter *RefractionRenderMode;
    BoolParameter *ShadowMapRenderMode;
    BoolParameter *DisableDepthTest;
    RangedFloatParameter *DepthOffset;
    SmartPtr<StringParameterClass> ShaderName;
    TextureNameParameterClass *TextureName = nullptr; ///< null in a kind that has no texture
    RangedFloatParameter *MinAspectRatio = nullptr;   ///< null, like the other, in a kind that doesn't use them
    RangedFloatParameter *MaxAspectRatio = nullptr;
    SmartPtr<vrTexture> BaseTexture;
    SmartPtr<vrShaderInstance> Shader;
};
