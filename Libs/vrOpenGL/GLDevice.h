#pragma once

/// What the objects of one driver share: the life of its context, what the device is set to, and what it can do.

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrOpenGL/GLObjects.h"
#include "vrOpenGL/GLState.h"

#include <array>
#include <memory>
#include <string>

struct GLCapabilities
{
    int MaxTextureSize = 0; ///< texels
    bool HasBlockTextures = false;
    bool HasColorSpaces = false; ///< samplers may choose whether sRGB textures are decoded
    bool HasMarkers = false;
    bool HasResetStatus = false;
};

/// A texture as shaders see it. What is drawn with is made when it is first needed, and anew in a new context.
class GLSampled
{
public:
    /// 0 when it can't be had. Expects the context to be current.
    virtual unsigned Get_GL_Texture() = 0;
    virtual unsigned Get_GL_Target() const;

protected:
    ~GLSampled() = default;
};

class GLDevice
{
public:
    GLDevice();
    GLDevice(const GLDevice &) = delete;
    GLDevice &operator=(const GLDevice &) = delete;

    /// Takes the current context over. False, with the reason, for one that can't do what is needed.
    bool Begin(std::string &error);
    void End();
    bool Is_Alive() const { return Life->Is_Alive(); }
    /// The name of a sampler that reads an sRGB texture as light, or its bytes as they are.
    unsigned Get_Sampler(vrSamplerType type, bool decodes);

    std::shared_ptr<GLContextLife> Life;
    GLState State;
    GLCapabilities Capabilities;
    std::string Renderer;

private:
    static constexpr int SAMPLER_KINDS = 4;

    std::array<GLObject, SAMPLER_KINDS * 2> Samplers;
};

/// Whether colours are worked with as linear light.
inline bool Uses_Gamma()
{
    return vrGraphicsDriver::Get_Gamma() != 1.0f;
}
