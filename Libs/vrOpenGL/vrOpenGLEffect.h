#pragma once

#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrEffectSource.h"
#include "vrOpenGL/EngineParameters.h"
#include "vrOpenGL/GLProgram.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A pass of a compiled effect: its program, and where each uniform takes its value from.
struct vrOpenGLEffectPass
{
    struct ValueType
    {
        size_t Uniform;
        int UserIndex = -1; ///< of the effect's parameters; -1 for one of the engine's
        const EngineParameter *Engine = nullptr;
    };

    struct TextureType
    {
        int Unit;
        unsigned Target; ///< OpenGL's kind
        int UserIndex = -1;
        const EngineTexture *Engine = nullptr;
        vrSamplerType Sampler = VR_SAMPLER_LINEAR_CLAMP;
        bool IsColor = true; ///< false for data, whose bytes are never taken for light
    };

    GLProgram Program;
    std::vector<ValueType> Values;
    std::vector<TextureType> Textures;
};

/// An effect as the device has it: every pass of every technique, compiled. It holds its source, so that it can be
/// compiled again in a new context.
class vrOpenGLEffect final : public RefCountClass
{
public:
    /// As `vrEffectManager` wants it. Without a device, and away from the main thread,
    /// compiling waits until the first use.
    static SmartPtr<vrOpenGLEffect> Compile_Shader(std::string_view name, vrEffectSource &&source, std::string &errors);

    const MK::String &Get_Name() const { return Name; }
    const vrEffectSource &Get_Source() const { return Source; }
    /// Compiles what isn't. False, with the reason in the log, when that fails.
    bool Is_Ready();
    /// Expects indices of the source's techniques and passes, and a ready effect.
    vrOpenGLEffectPass &Get_Pass(int technique, int pass);

private:
    vrOpenGLEffect(std::string_view name, vrEffectSource &&source, std::shared_ptr<GLDevice> device);
    bool Compile(std::string &errors);
    bool Compile_Pass(const vrEffectPass &from, vrOpenGLEffectPass &to, std::string &errors);
    bool Bind_Value(const GLUniform &uniform, size_t index, vrOpenGLEffectPass &pass) const;
    bool Bind_Texture(const GLUniform &uniform, vrOpenGLEffectPass &pass, int &engineUnit) const;
    int Get_User_Index(std::string_view name, bool isTexture) const;
    int Get_Texture_Unit(int userIndex) const;
    bool Is_Data(std::string_view parameter) const;

    MK::String Name;
    vrEffectSource Source;
    std::shared_ptr<GLDevice> Device;
    std::vector<std::vector<vrOpenGLEffectPass>> Techniques;
    unsigned CompiledLife = 0; ///< of the device, when it was last tried
    bool IsCompiled = false;
};
