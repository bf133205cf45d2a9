#pragma once

/// What shaders sample and what a driver draws into. Each driver has classes of its own; counted, and released on the
/// thread that owns the driver.

#include "MKLib/MKString.h"
#include "MKLib/RefCount.h"

class vrTexture : public RefCountClass
{
public:
    const MK::String &Get_Name() const { return Name; } ///< the file's, or that of who made it
    int Get_Width() const { return Width; }             ///< texels
    int Get_Height() const { return Height; }
    /// False for one that lost its contents with the device, or that couldn't be made.
    virtual bool Is_Valid() const = 0;

protected:
    vrTexture(MK::String name, int width, int height) : Name(std::move(name)), Width(width), Height(height) {}

    MK::String Name;
    int Width;
    int Height;
};

/// A texture that can be drawn into.
class vrRenderTarget : public vrTexture
{
protected:
    using vrTexture::vrTexture;
};

/// Depth and stencil beside a render target of the same size.
class vrDepthBuffer : public vrTexture
{
protected:
    using vrTexture::vrTexture;
};
