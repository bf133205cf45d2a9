#pragma once

#include "vrGraphics/drivercommon/vrDevice.h"

/// The life of the OpenGL driver over a surface, which is borrowed and must outlive it.
class vrOpenGLDevice final : public vrDevice
{
public:
    explicit vrOpenGLDevice(vrSurface &surface) : Surface(surface) {}
    ~vrOpenGLDevice() override;
    vrOpenGLDevice(const vrOpenGLDevice &) = delete;
    vrOpenGLDevice &operator=(const vrOpenGLDevice &) = delete;

    bool Init() override;
    bool Create_Device(std::string &error) override;
    bool Is_Device_Operational() override;
    void Resize_Back_Buffer(int width, int height) override;
    void Shutdown() override;

private:
    vrSurface &Surface;
    bool IsStarted = false;
};
