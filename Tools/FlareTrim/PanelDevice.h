#pragma once

#include "vrGraphics/drivercommon/vrDevice.h"

#include <memory>
#include <string>

class DesktopApplication;
class ViewPanel;

/// The device that draws into the view window's panel; null, with the reason in `error`, where there is none to be had.
/// Both must outlive it.
std::unique_ptr<vrDevice> Make_Panel_Device(const DesktopApplication &application, const ViewPanel &panel,
                                            std::string &error);
