#pragma once

#include "vrGraphics/drivercommon/vrPicture2D.h"
#include "vrGraphics/drivercommon/vrTexture.h"
#include "vrOpenGL/GLDevice.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Texels from a file, one picture or the six faces of a cube. The pictures stay in memory, so that a new context needs
/// no files; block formats go to the device as they are where it takes them, and smaller levels that a file lacks are
/// averaged here, so that they are the same on every device. Any thread makes one; the device has it from its first
/// use.
class vrOpenGLTexture final : public vrTexture, public GLSampled
{
public:
    /// Null, with the reason, for what no device takes. `pictures` is one or six of equal size.
    static SmartPtr<vrOpenGLTexture> Make(std::shared_ptr<GLDevice> device, std::string_view name,
                                          std::vector<vrPicture2D> pictures, std::string &error);

    bool Is_Valid() const override { return static_cast<bool>(Texture); }
    unsigned Get_GL_Texture() override;
    unsigned Get_GL_Target() const override;

private:
    vrOpenGLTexture(std::shared_ptr<GLDevice> device, std::string_view name, std::vector<vrPicture2D> pictures);
    bool Is_Cube() const { return Pictures.size() == 6; }
    bool Fits();
    void Upload();
    void Upload_Face(unsigned target, const vrPicture2D &picture, int &levels);

    std::shared_ptr<GLDevice> Device;
    std::vector<vrPicture2D> Pictures;
    GLObject Texture;
    bool IsTooLarge = false;
};

/// A texture that is drawn into. Its contents go with the context; it is then made anew.
class vrOpenGLRenderTarget final : public vrRenderTarget, public GLSampled
{
public:
    enum FormatType : int
    {
        FORMAT_RGBA8 = 0,
        FORMAT_RGBA16F = 1,
        FORMAT_DEPTH = 2, ///< one channel of 32 bits, for a shadow map
        FORMAT_COUNT
    };

    vrOpenGLRenderTarget(std::shared_ptr<GLDevice> device, std::string_view name, int width, int height,
                         FormatType format);

    bool Is_Valid() const override { return static_cast<bool>(Texture); }
    unsigned Get_GL_Texture() override;
    /// Grows with each making, so that who refers to the object can tell an old one from a new one. 0 for none.
    unsigned Get_Serial() const { return Serial; }
    /// What it showed is gone when the size differs.
    void Resize(int width, int height);
    /// Gives its texture up; it is made anew when it is next needed.
    void Forget() { Texture = GLObject(); }

private:
    std::shared_ptr<GLDevice> Device;
    FormatType Format;
    GLObject Texture;
    unsigned Serial = 0;
};

/// Depth of 24 and stencil of 8 bits, which shaders may sample. Otherwise as a target.
class vrOpenGLDepthBuffer final : public vrDepthBuffer, public GLSampled
{
public:
    vrOpenGLDepthBuffer(std::shared_ptr<GLDevice> device, std::string_view name, int width, int height);

    bool Is_Valid() const override { return static_cast<bool>(Texture); }
    unsigned Get_GL_Texture() override;
    unsigned Get_Serial() const { return Serial; }
    void Resize(int width, int height);
    void Forget() { Texture = GLObject(); }

private:
    std::shared_ptr<GLDevice> Device;
    GLObject Texture;
    unsigned Serial = 0;
};
