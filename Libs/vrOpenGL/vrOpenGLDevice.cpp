#include "vrOpenGL/vrOpenGLDevice.h"

#include "vrOpenGL/vrOpenGLDriver.h"

#include "MKLib/MKDebug/Logger.h"

static MKDebug::Logger VorenLog("VorenLog");

vrOpenGLDevice::~vrOpenGLDevice()
{
    Shutdown();
}

bool vrOpenGLDevice::Init()
{
    if (!vrOpenGLDriver::Init()) return false;
    IsStarted = true;
    return true;
}

bool vrOpenGLDevice::Create_Device(std::string &error)
{
    if (!IsStarted) {
        error = "the driver isn't started";
        return false;
    }
    if (vrOpenGLDriver::Get_Instance()->Set_Surface(&Surface, error)) return true;
    MK_LOG(VorenLog, MKDebug::LogLevel::Error, "No graphics device: %s", error.c_str());
    return false;
}

bool vrOpenGLDevice::Is_Device_Operational()
{
    return IsStarted && vrOpenGLDriver::Get_Instance()->Check_Device();
}

void vrOpenGLDevice::Resize_Back_Buffer(int width, int height)
{
    if (IsStarted) vrOpenGLDriver::Get_Instance()->Resize_Back_Buffer(width, height);
}

void vrOpenGLDevice::Shutdown()
{
    if (!IsStarted) return;
    IsStarted = false;
    vrOpenGLDriver::Shutdown();
}
