#pragma once

#include "vrGraphics/drivercommon/vrDevice.h"

/// The null driver as a device that is always there.
class vrNullDevice final : public vrDevice
{
public:
    vrNullDevice(int width, int height) : Width(width), Height(height) {}
    ~vrNullDevice() override;
    vrNullDevice(const vrNullDevice &) = delete;
    vrNullDevice &operator=(const vrNullDevice &) = delete;

    bool Init() override;
    bool Create_Device(std::string &error) override;
    bool Is_Device_Operational() override;
    void Resize_Back_Buffer(int width, int height) override;
    void Shutdown() override;

private:
    int Width;
    int Height;
    bool IsStarted = false;
};
