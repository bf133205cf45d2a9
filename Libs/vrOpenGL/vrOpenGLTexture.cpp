#include "vrOpenGL/vrOpenGLTexture.h"

#include "MKLib/MKDebug/Logger.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <utility>

static MKDebug::Logger VorenMissingTexturesLog("VorenMissingTexturesLog");

namespace
{

struct BlockFormat
{
    int BytesEach;
    GLenum Plain;
    GLenum Encoded; ///< with colours that a sampler may decode
};

BlockFormat Get_Block_Format(vrPicture2D::FormatType format)
{
    switch (format) {
    case vrPicture2D::FORMAT_BC1: return {8, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT1_EXT};
    case vrPicture2D::FORMAT_BC2: return {16, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT3_EXT};
    case vrPicture2D::FORMAT_BC3: return {16, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, GL_COMPRESSED_SRGB_ALPHA_S3TC_DXT5_EXT};
    default: return {0, GL_NONE, GL_NONE};
    }
}

size_t Get_Level_Bytes(vrPicture2D::FormatType format, int width, int height)
{
    const auto across = static_cast<size_t>(width), down = static_cast<size_t>(height);
    if (format == vrPicture2D::FORMAT_RGBA8) return across * down * 4;
    return (across + 3) / 4 * ((down + 3) / 4) * static_cast<size_t>(Get_Block_Format(format).BytesEach);
}

bool Check_Picture(const vrPicture2D &picture, std::string &error)
{
    if (picture.Levels.empty()) {
        error = "no levels";
        return false;
    }
    int width = picture.Levels[0].Width, height = picture.Levels[0].Height;
    for (const vrPicture2D::LevelType &level : picture.Levels) {
        const size_t expected =
            level.Width > 0 && level.Height > 0 ? Get_Level_Bytes(picture.Format, level.Width, level.Height) : 0;
        if (level.Width != width || level.Height != height || expected == 0 || level.Bytes.size() < expected) {
            error = "level of " + std::to_string(level.Width) + "x" + std::to_string(level.Height) + " with " +
                    std::to_string(level.Bytes.size()) + " bytes, expected " + std::to_string(width) + "x" +
                    std::to_string(height) + " with " + std::to_string(expected);
            return false;
        }
        width = std::max(1, width / 2);
        height = std::max(1, height / 2);
    }
    return true;
}

/// Half the size, each texel the rounded mean of four.
vrPicture2D::LevelType Halve(const vrPicture2D::LevelType &from)
{
    vrPicture2D::LevelType to{std::max(1, from.Width / 2), std::max(1, from.Height / 2), {}};
    to.Bytes.resize(Get_Level_Bytes(vrPicture2D::FORMAT_RGBA8, to.Width, to.Height));
    const size_t rightStep = from.Width > 1 ? 4 : 0;
    const size_t downStep = from.Height > 1 ? static_cast<size_t>(from.Width) * 4 : 0;
    uint8_t *out = to.Bytes.data();
    for (int y = 0; y < to.Height; ++y) {
        const uint8_t *row = from.Bytes.data() + static_cast<size_t>(y) * 2 * static_cast<size_t>(from.Width) * 4;
        if (from.Height == 1) row = from.Bytes.data();
        for (int x = 0; x < to.Width; ++x, row += rightStep * 2)
            for (size_t c = 0; c < 4; ++c)
                *out++ = static_cast<uint8_t>(
                    (row[c] + row[c + rightStep] + row[c + downStep] + row[c + rightStep + downStep] + 2) / 4);
    }
    return to;
}

unsigned Next_Serial()
{
    static unsigned serial = 0;
    return ++serial;
}

/// Makes storage of one level for something that is drawn into.
GLObject Make_Storage(GLDevice &device, GLint internalFormat, GLenum format, GLenum type, int width, int height)
{
    GLObject texture(device.Life, GLObjectKind::Texture);
    device.State.Bind_Texture_To_Change(GL_TEXTURE_2D, texture.Get());
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, width, height, 0, format, type, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    return texture;
}

} // namespace

vrOpenGLTexture::vrOpenGLTexture(std::shared_ptr<GLDevice> device, std::string_view name,
                                 std::vector<vrPicture2D> pictures)
    : vrTexture(MK::String(name), pictures[0].Levels[0].Width, pictures[0].Levels[0].Height), Device(std::move(device)),
      Pictures(std::move(pictures))
{
}

SmartPtr<vrOpenGLTexture> vrOpenGLTexture::Make(std::shared_ptr<GLDevice> device, std::string_view name,
                                                std::vector<vrPicture2D> pictures, std::string &error)
{
    if (pictures.size() != 1 && pictures.size() != 6) {
        error = std::to_string(pictures.size()) + " pictures, where one or six are needed";
        return nullptr;
    }
    for (const vrPicture2D &picture : pictures)
        if (!Check_Picture(picture, error)) return nullptr;
    const int width = pictures[0].Levels[0].Width, height = pictures[0].Levels[0].Height;
    for (const vrPicture2D &picture : pictures)
        if (picture.Levels[0].Width != width || picture.Levels[0].Height != height ||
            (pictures.size() == 6 && width != height)) {
            error = "faces that are not squares of one size";
            return nullptr;
        }
    return SmartPtr<vrOpenGLTexture>::Of_Fresh(new vrOpenGLTexture(std::move(device), name, std::move(pictures)));
}

unsigned vrOpenGLTexture::Get_GL_Target() const
{
    return Is_Cube() ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D;
}

unsigned vrOpenGLTexture::Get_GL_Texture()
{
    if (!Texture && Device->Is_Alive() && Fits()) Upload();
    return Texture.Get();
}

bool vrOpenGLTexture::Fits()
{
    const int limit = Device->Capabilities.MaxTextureSize;
    if (std::max(Width, Height) <= limit) return true;
    if (!IsTooLarge)
        MK_LOG(VorenMissingTexturesLog, MKDebug::LogLevel::Warning,
               "Missing texture: %s has %dx%d texels, where the device takes %d along a side", Name.c_str(), Width,
               Height, limit);
    IsTooLarge = true;
    return false;
}

void vrOpenGLTexture::Upload()
{
    Texture = GLObject(Device->Life, GLObjectKind::Texture);
    const GLenum target = Get_GL_Target();
    Device->State.Bind_Texture_To_Change(target, Texture.Get());
    int levels = 0;
    if (Is_Cube())
        for (unsigned face = 0; face < 6; ++face)
            Upload_Face(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, Pictures[face], levels);
    else
        Upload_Face(GL_TEXTURE_2D, Pictures[0], levels);
    glTexParameteri(target, GL_TEXTURE_MAX_LEVEL, levels - 1);
}

void vrOpenGLTexture::Upload_Face(unsigned target, const vrPicture2D &picture, int &levels)
{
    const bool hasColorSpaces = Device->Capabilities.HasColorSpaces;
    const int count = static_cast<int>(picture.Levels.size());
    const bool lacksLevels = count == 1 && std::max(Width, Height) > 1;
    if (picture.Format != vrPicture2D::FORMAT_RGBA8 && Device->Capabilities.HasBlockTextures && !lacksLevels) {
        const BlockFormat format = Get_Block_Format(picture.Format);
        for (int i = 0; i < count; ++i) {
            const vrPicture2D::LevelType &level = picture.Levels[static_cast<size_t>(i)];
            glCompressedTexImage2D(target, i, hasColorSpaces ? format.Encoded : format.Plain, level.Width, level.Height,
                                   0, static_cast<GLsizei>(Get_Level_Bytes(picture.Format, level.Width, level.Height)),
                                   level.Bytes.data());
        }
        levels = count;
        return;
    }

    const GLint format = hasColorSpaces ? GL_SRGB8_ALPHA8 : GL_RGBA8;
    const auto set = [&](int i, const vrPicture2D::LevelType &level) {
        glTexImage2D(target, i, format, level.Width, level.Height, 0, GL_RGBA, GL_UNSIGNED_BYTE, level.Bytes.data());
    };
    vrPicture2D::LevelType level{Width, Height, {}};
    if (picture.Format == vrPicture2D::FORMAT_RGBA8 && !lacksLevels) {
        for (int i = 0; i < count; ++i) set(i, picture.Levels[static_cast<size_t>(i)]);
        levels = count;
        return;
    }
    level.Bytes = Decode_Picture(picture);
    set(0, level);
    for (levels = 1; level.Width > 1 || level.Height > 1; ++levels) {
        level = Halve(level);
        set(levels, level);
    }
}

vrOpenGLRenderTarget::vrOpenGLRenderTarget(std::shared_ptr<GLDevice> device, std::string_view name, int width,
                                           int height, FormatType format)
    : vrRenderTarget(MK::String(name), width, height), Device(std::move(device)), Format(format)
{
}

unsigned vrOpenGLRenderTarget::Get_GL_Texture()
{
    if (!Texture && Device->Is_Alive()) {
        const GLint color = Device->Capabilities.HasColorSpaces ? GL_SRGB8_ALPHA8 : GL_RGBA8;
        switch (Format) {
        case FORMAT_RGBA16F: Texture = Make_Storage(*Device, GL_RGBA16F, GL_RGBA, GL_HALF_FLOAT, Width, Height); break;
        case FORMAT_DEPTH: Texture = Make_Storage(*Device, GL_R32F, GL_RED, GL_FLOAT, Width, Height); break;
        default: Texture = Make_Storage(*Device, color, GL_RGBA, GL_UNSIGNED_BYTE, Width, Height); break;
        }
        Serial = Next_Serial();
    }
    return Texture.Get();
}

void vrOpenGLRenderTarget::Resize(int width, int height)
{
    if (Width == width && Height == height) return;
    Width = width;
    Height = height;
    Texture = GLObject();
}

vrOpenGLDepthBuffer::vrOpenGLDepthBuffer(std::shared_ptr<GLDevice> device, std::string_view name, int width, int height)
    : vrDepthBuffer(MK::String(name), width, height), Device(std::move(device))
{
}

unsigned vrOpenGLDepthBuffer::Get_GL_Texture()
{
    if (!Texture && Device->Is_Alive()) {
        Texture = Make_Storage(*Device, GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, Width, Height);
        Serial = Next_Serial();
    }
    return Texture.Get();
}

void vrOpenGLDepthBuffer::Resize(int width, int height)
{
    if (Width == width && Height == height) return;
    Width = width;
    Height = height;
    Texture = GLObject();
}
