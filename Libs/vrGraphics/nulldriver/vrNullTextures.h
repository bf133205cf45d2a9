#pragma once

/// What the null driver makes in place of textures and targets: names and sizes, without texels.

#include "vrGraphics/drivercommon/vrTexture.h"

class vrNullTexture2D : public vrTexture
{
public:
    vrNullTexture2D(MK::String name, int width, int height) : vrTexture(std::move(name), width, height) {}
    bool Is_Valid() const override { return true; }
};

class vrNullTextureCube : public vrTexture
{
public:
    vrNullTextureCube(MK::String name, int side) : vrTexture(std::move(name), side, side) {}
    bool Is_Valid() const override { return true; }
};

class vrNullRenderTarget : public vrRenderTarget
{
public:
    vrNullRenderTarget(MK::String name, int width, int height) : vrRenderTarget(std::move(name), width, height) {}
    bool Is_Valid() const override { return true; }
};

class vrNullDepthBuffer : public vrDepthBuffer
{
public:
    vrNullDepthBuffer(MK::String name, int width, int height) : vrDepthBuffer(std::move(name), width, height) {}
    bool Is_Valid() const override { return true; }
};
