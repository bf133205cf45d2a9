#pragma once

#include "Code/FormTypes.h"

#include <string>

/// All that the tool remembers between two runs. In the file each field is an element of its name, in this order.
struct ApplicationSettings
{
    ApplicationSettings(); ///< the defaults

    /// Never fails: a file that is missing, unreadable or malformed gives the defaults, and an element that is missing
    /// leaves its field at the default. An element that isn't known is skipped; of two with one name the first counts.
    static ApplicationSettings Load(const std::string &path);
    /// Replaces the file. A failure is told in a message box.
    void Save(const std::string &path) const;

    std::string WorkingDirectory; ///< absolute; at first the parent of the current directory
    bool AutoCheckout = true;     ///< a save checks out without asking
    int ViewMode = 4;             ///< 0 to 4, quarters of full detail
    bool RenderAxes = true;
    bool RenderBackground = true;
    std::string BackgroundImageName; ///< file name without directory
    bool EnableHeat = true;
    bool EnableBloom = true;
    bool MainFormLocationSet = false; ///< the window's placement below is one that a run left
    bool MainFormMaximized = false;
    Point MainFormLocation;
    Size MainFormSize;
    bool ViewFormLocationSet = false;
    bool ViewFormMaximized = false;
    Point ViewFormLocation;
    Size ViewFormSize;
};
