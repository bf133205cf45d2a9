#include "vrGraphics/nulldriver/vrNullDevice.h"

#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

vrNullDevice::~vrNullDevice()
{
    vrNullDevice::Shutdown();
}

bool vrNullDevice::Init()
{
    IsStarted = vrNullDriverMethods::Init(nullptr, Width, Height);
    return IsStarted;
}

bool vrNullDevice::Create_Device(std::string &error)
{
    if (!IsStarted) error = "the null driver isn't started";
    return IsStarted;
}

bool vrNullDevice::Is_Device_Operational()
{
    return IsStarted;
}

void vrNullDevice::Resize_Back_Buffer(int width, int height)
{
    if (width > 0) Width = width; // the driver's own size is that of the surface, which is kept
    if (height > 0) Height = height;
    if (IsStarted) static_cast<vrNullDriverMethods *>(TheGraphicsDriver)->Set_Size(Width, Height);
}

void vrNullDevice::Shutdown()
{
    if (IsStarted) vrNullDriverMethods::Shutdown();
    IsStarted = false;
}
