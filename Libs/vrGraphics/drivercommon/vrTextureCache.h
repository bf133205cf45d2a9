#pragma once

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <map>
#include <mutex>

/// What was asked for by name, what isn't to be had included: that is told once, until the paths change. Under its
/// lock, since emitters load on a scan's thread too.
struct vrGraphicsDriver::TextureCache
{
    std::mutex Lock;
    std::map<MK::String, SmartPtr<vrTexture>> ByName;
    unsigned PathGeneration = 0;
};
