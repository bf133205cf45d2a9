#include "vrOpenGL/vrOpenGLEffect.h"

#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrOpenGL/vrOpenGLDriver.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <utility>

static MKDebug::Logger VorenLog("VorenLog");

namespace
{

int Get_Count(vrShaderParamType type)
{
    switch (type) {
    case SHADER_PARAMS_BOOL:
    case SHADER_PARAMS_FLOAT: return 1;
    case SHADER_PARAMS_VECTOR2: return 2;
    case SHADER_PARAMS_VECTOR3: return 3;
    case SHADER_PARAMS_VECTOR4: return 4;
    default: return 0;
    }
}

} // namespace

vrOpenGLEffect::vrOpenGLEffect(std::string_view name, vrEffectSource &&source, std::shared_ptr<GLDevice> device)
    : Name(name), Source(std::move(source)), Device(std::move(device))
{
}

SmartPtr<vrOpenGLEffect> vrOpenGLEffect::Compile_Shader(std::string_view name, vrEffectSource &&source,
                                                        std::string &errors)
{
    vrOpenGLDriver *driver = vrOpenGLDriver::Get_Instance();
    if (!driver || source.Is_Empty()) {
        errors = driver ? "no technique" : "no driver";
        return nullptr;
    }
    auto effect = SmartPtr<vrOpenGLEffect>::Of_Fresh(new vrOpenGLEffect(name, std::move(source), driver->Get_Device()));
    if (Is_Main_Thread() && driver->Take_Context() && !effect->Compile(errors)) return nullptr;
    return effect;
}

bool vrOpenGLEffect::Is_Ready()
{
    if (!Device->Is_Alive()) return false;
    if (CompiledLife == Device->Life->Get_Life()) return IsCompiled;
    std::string errors;
    if (!Compile(errors))
        MK_LOG(VorenLog, MKDebug::LogLevel::Error, " Shader %s failed to compile!\r\nErrors: %s", Name.c_str(),
               errors.c_str());
    return IsCompiled;
}

vrOpenGLEffectPass &vrOpenGLEffect::Get_Pass(int technique, int pass)
{
    return Techniques[static_cast<size_t>(technique)][static_cast<size_t>(pass)];
}

bool vrOpenGLEffect::Compile(std::string &errors)
{
    CompiledLife = Device->Life->Get_Life();
    IsCompiled = true;
    Techniques.clear();
    for (const vrEffectTechnique &technique : Source.Get_Techniques()) {
        auto &passes = Techniques.emplace_back();
        for (const vrEffectPass &pass : technique.Passes)
            if (!Compile_Pass(pass, passes.emplace_back(), errors)) IsCompiled = false;
    }
    if (!IsCompiled) errors = Source.Name_Files(errors);
    return IsCompiled;
}

bool vrOpenGLEffect::Compile_Pass(const vrEffectPass &from, vrOpenGLEffectPass &to, std::string &errors)
{
    if (!to.Program.Build(*Device, Source.Get_Stage_Text(from, vrEffectStage::Vertex),
                          Source.Get_Stage_Text(from, vrEffectStage::Fragment), errors))
        return false;
    // The users' textures come first, each at its place among the effect's, which is the stage that it is known by.
    int engineUnit = Get_Texture_Unit(static_cast<int>(Source.Get_Parameters().size()));
    const std::vector<GLUniform> &uniforms = to.Program.Get_Uniforms();
    Device->State.Use_Program(to.Program.Get());
    for (size_t i = 0; i < uniforms.size(); ++i) {
        const bool isBound =
            uniforms[i].IsTexture ? Bind_Texture(uniforms[i], to, engineUnit) : Bind_Value(uniforms[i], i, to);
        if (!isBound)
            MK_LOG(VorenLog, MKDebug::LogLevel::Warning,
                   "Shader %s: nothing fills in the uniform %s, by this name and type", Name.c_str(),
                   uniforms[i].Name.c_str());
    }
    return true;
}

int vrOpenGLEffect::Get_User_Index(std::string_view name, bool isTexture) const
{
    const std::vector<vrEffectParameter> &parameters = Source.Get_Parameters();
    for (size_t i = 0; i < parameters.size(); ++i)
        if (parameters[i].Name == name && (parameters[i].Type == SHADER_PARAMS_TEXTURE) == isTexture)
            return static_cast<int>(i);
    return -1;
}

int vrOpenGLEffect::Get_Texture_Unit(int userIndex) const
{
    const std::vector<vrEffectParameter> &parameters = Source.Get_Parameters();
    return static_cast<int>(
        std::count_if(parameters.begin(), parameters.begin() + userIndex,
                      [](const vrEffectParameter &parameter) { return parameter.Type == SHADER_PARAMS_TEXTURE; }));
}

/// Normals and displacements aren't colours, whatever they look like.
bool vrOpenGLEffect::Is_Data(std::string_view parameter) const
{
    return Source.Get_Render_Phase() == vrRenderPhaseEnum::Heat || parameter.find("Normal") != parameter.npos;
}

bool vrOpenGLEffect::Bind_Value(const GLUniform &uniform, size_t index, vrOpenGLEffectPass &pass) const
{
    const int user = Get_User_Index(uniform.Name, false);
    if (user >= 0) {
        if (Get_Count(Source.Get_Parameters()[static_cast<size_t>(user)].Type) != uniform.Count) return false;
        pass.Values.push_back({index, user, nullptr});
        return true;
    }
    const EngineParameter *engine = Find_Engine_Parameter(uniform.Name);
    // A shader may take the first three of four.
    if (!engine || uniform.Count == 0 || uniform.Count > engine->Count ||
        (engine->Count == 16) != (uniform.Count == 16))
        return false;
    pass.Values.push_back({index, -1, engine});
    return true;
}

bool vrOpenGLEffect::Bind_Texture(const GLUniform &uniform, vrOpenGLEffectPass &pass, int &engineUnit) const
{
    vrOpenGLEffectPass::TextureType texture;
    texture.Target = uniform.Type == GL_SAMPLER_CUBE ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D;
    texture.UserIndex = Get_User_Index(uniform.Name, true);
    if (texture.UserIndex >= 0) {
        texture.Unit = Get_Texture_Unit(texture.UserIndex);
        texture.Sampler = Source.Get_Parameters()[static_cast<size_t>(texture.UserIndex)].Sampler;
        texture.IsColor = !Is_Data(uniform.Name);
    } else {
        texture.Unit = engineUnit++;
        texture.Engine = Find_Engine_Texture(uniform.Name);
        if (texture.Engine) texture.IsColor = texture.Engine->IsColor;
    }
    if (texture.Unit >= GLState::MAX_UNITS) return false;
    // One that nothing is bound to has a unit too: textures of two kinds on one are an error of every draw.
    glUniform1i(uniform.Location, texture.Unit);
    if (texture.UserIndex < 0 && !texture.Engine) return false;
    pass.Textures.push_back(texture);
    return true;
}
