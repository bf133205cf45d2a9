#pragma once

#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/nulldriver/vrNullTextures.h"
#include "vrGraphics/postfx/vrPostFxManager.h"
#include "vrGraphics/scene/vrScene.h"

#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace MKTest
{

/// An instance with one pass, whose parameters are whatever is asked for, "Unknown" apart; it writes what happens to it
/// down in the driver's lines.
class RecordingShader final : public vrShaderInstance
{
public:
    RecordingShader(std::string name, std::vector<std::string> &lines, bool isMissing)
        : Name(std::move(name)), Lines(lines), IsMissing(isMissing)
    {
    }

    vrShaderInstance *Clone() const override { return nullptr; }
    bool Is_Missing_Effect() const override { return IsMissing; }
    int Begin(const vrRenderContext *, uint32_t, int) override { return 1; }
    void Begin_Pass(int) override { Lines.push_back("draw " + Name); }
    void End_Pass() override {}
    void End() override {}
    void Commit() override {}
    int Get_Parameter_Count() const override { return static_cast<int>(Names.size()); }
    vrShaderParamType Get_Parameter_Type(int) const override { return SHADER_PARAMS_FLOAT; }
    const char *Get_Parameter_Name(int index) const override { return Names[static_cast<size_t>(index)].c_str(); }
    int Get_Parameter_Index(std::string_view name) const override
    {
        if (name == "Unknown") return -1;
        Names.emplace_back(name);
        return static_cast<int>(Names.size()) - 1;
    }
    void Set_Bool(int, bool) override {}
    void Set_Float(int index, float value) override { Set(index, {value}); }
    void Set_Vector2(int index, const float *value) override { Set(index, {value[0], value[1]}); }
    void Set_Vector3(int index, const float *value) override { Set(index, {value[0], value[1], value[2]}); }
    void Set_Vector4(int, const float *) override {}
    void Set_Texture(int index, vrTexture *texture) override
    {
        Lines.push_back(std::string("set ") + Get_Parameter_Name(index) + " " + texture->Get_Name().c_str());
    }
    bool Get_Bool(int, bool &) const override { return false; }
    bool Get_Float(int, float &) const override { return false; }
    bool Get_Vector2(int, float *) const override { return false; }
    bool Get_Vector3(int, float *) const override { return false; }
    bool Get_Vector4(int, float *) const override { return false; }
    vrTexture *Get_Texture(int) const override { return nullptr; }

private:
    void Set(int index, std::initializer_list<float> values)
    {
        std::string line = std::string("set ") + Get_Parameter_Name(index);
        for (const float value : values) line += " " + std::to_string(value).substr(0, 4);
        Lines.push_back(line);
    }

    std::string Name;
    std::vector<std::string> &Lines;
    bool IsMissing;
    mutable std::vector<std::string> Names;
};

/// A driver with full-screen targets, which writes down what post-effects ask of it.
class RecordingDriver final : public vrGraphicsDriver
{
public:
    std::vector<std::string> Lines;
    std::set<std::string, std::less<>> MissingShaders;
    vrRendererTypeEnum Renderer = VR_RENDERER_FORWARD;
    vrRenderModeType Mode = VR_RENDER_MODE_NORMAL;
    vrViewport Viewport{0, 0, 64, 32};
    vrLitVertex Vertices[4] = {};

    RecordingDriver()
    {
        GenericTexture = new vrNullTexture2D("white", 1, 1);
        for (const char *name : {"Scene", "Heat", "Main0", "Main1", "IRT0", "IRT1"})
            Targets.push_back(new vrNullRenderTarget(name, 64, 32));
    }

    void Page_Flip(bool) override {}
    void Set_Renderer_Type(vrRendererTypeEnum type, bool) override { Renderer = type; }
    vrRendererTypeEnum Get_Renderer_Type() const override { return Renderer; }
    bool Is_Renderer_Supported(vrRendererTypeEnum) const override { return true; }
    void Set_Render_Mode(vrRenderModeType mode, vrRenderContext *) override { Mode = mode; }
    vrRenderModeType Get_Render_Mode() const override { return Mode; }
    void Render_Tasks(vrRenderContext &) override {}
    vrDriverType Get_Driver_Type() const override { return VR_DRIVER_NULL; }
    void Begin_Event(const char *name, vrColor) override { Lines.push_back(std::string("{ ") + name); }
    void End_Event() override { Lines.push_back("}"); }

    void Clear(bool color, bool depth, bool stencil, const RGBAClass *, const RGBAClass *, float, int) override
    {
        Lines.push_back(color && !depth && !stencil ? "clear color" : "clear");
    }
    void Flush_State() override {}
    void Set_Render_Target(int, vrRenderTarget *target, int) override
    {
        Target = target;
        Lines.push_back(std::string("to ") + target->Get_Name().c_str());
    }
    void Reset_Render_Target() override
    {
        Target = nullptr;
        Lines.push_back("to default");
    }
    vrRenderTarget *Get_Render_Target() const override { return Target; }
    SmartPtr<vrRenderTarget> Create_Render_Target(const char *, int, int, int, int, int) override { return nullptr; }
    void Set_Depth_Buffer(vrDepthBuffer *) override { Lines.push_back("no depth"); }
    void Reset_Depth_Buffer() override { Lines.push_back("depth"); }
    SmartPtr<vrDepthBuffer> Create_Depth_Buffer(int, int, int, int, int) override { return nullptr; }
    vrRenderTarget *Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum) override { return nullptr; }
    vrDepthBuffer *Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum) override { return nullptr; }
    vrRenderTarget *Get_Full_Screen_Target(vrFullScreenRTEnum target) override { return Targets[target].Get(); }
    void Update_Light_Field(const vrLightField &field, const std::vector<const vrLightSource *> &lights,
                            const vrBounds &bounds) override
    {
        std::ostringstream line;
        line << "light field " << field.SIZE << ":";
        for (const vrLightSource *light : lights) line << " " << light->Get_Intensity();
        line << ", " << bounds.Center.x << " +- " << bounds.Extent.x;
        Lines.push_back(line.str());
    }
    void Set_PostFx_Input(vrTexture *texture) override
    {
        Lines.push_back(std::string("from ") + (texture ? texture->Get_Name().c_str() : "nothing"));
    }
    void Copy_Target_To(vrRenderTarget *) override {}
    void Set_Viewport(const vrViewport &viewport) override { Viewport = viewport; }
    vrViewport Get_Viewport() const override { return Viewport; }
    int Get_Width() const override { return 64; }
    int Get_Height() const override { return 32; }
    void Set_Camera(vrCamera *) override {}
    void Set_World_Transform(const Mat3DClass *) override {}
    void Set_Texture(int, vrTexture *, vrSamplerType) override {}

    void Begin_Primitive_State(int, int, int) override {}
    void End_Primitive_State() override {}

    SmartPtr<vrShaderInstance> Create_Shader_Instance(std::string_view name) override
    {
        return new RecordingShader(std::string(name), Lines, MissingShaders.contains(name));
    }

protected:
    SmartPtr<vrTexture> Make_Texture(std::string_view, const vrPicture2D &, std::string &) override { return nullptr; }
    void Apply_Render_State_Block(const vrRenderStateBlock &) override {}
    void *Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int count, int, uint16_t **) override
    {
        const bool isQuad = type == VR_LIT_VERTEX && kind == VR_PRIMITIVE_QUADS && count == 4;
        return isQuad ? Vertices : nullptr;
    }
    void End_Draw(vrPrimVertexType) override {}

private:
    std::vector<SmartPtr<vrRenderTarget>> Targets;
    vrRenderTarget *Target = nullptr;
};

} // namespace MKTest
