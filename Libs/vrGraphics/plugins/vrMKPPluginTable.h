#pragma once

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// The facts about one plugin kind. All texts are static.
struct vrMKPPluginInfo
{
    int Id;
    const char *ClassName;
    vrMKPPlugin *(*Make)();
    vrMKPPlugin::PluginType Family;
    vrMKPPlugin::Category Category;
    bool Obsolete; ///< what `Is_Obsolete` answers; some kinds whose name says so are not marked, and stay so
    uint32_t Reads;
    uint32_t Writes;
    const char *Name;
    const char *Description;
};

/// The row of a plugin id, or null for an id that has none.
const vrMKPPluginInfo *Find_Plugin_Info(int id);
