#pragma once

#include "MKLib/MKString.h"
#include "vrGraphics/assets/vrLoadContext.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <unordered_map>

class vrTexture;

/// Turns names into renderables. Each loaded asset stays as a prototype under its base name, so that a second request
/// doesn't read the file again: two files with one base name are one asset, that of the first one loaded. Any thread
/// may ask, while locking is on.
class vrAssetManager
{
public:
    /// `loadDefaultModel` makes a placeholder stand in for what can't be found.
    explicit vrAssetManager(bool loadDefaultModel);
    vrAssetManager(const vrAssetManager &) = delete;
    vrAssetManager &operator=(const vrAssetManager &) = delete;
    ~vrAssetManager();

    /// The process-wide manager, which has no placeholder.
    static vrAssetManager *Get_Instance();
    /// Process-wide; on at the start.
    static void Enable_Locking(bool enabled) { LockingEnabled = enabled; }

    /// The renderable of a name, which is a path; where there is no such file, its base name is looked for in the
    /// models directory. `load` reads the file unless the prototype is there; `clone` gives a new instance, with a
    /// count of 0, which the caller's SmartPtr takes over, and otherwise the prototype itself, which stays the
    /// manager's. Null when there is none, with the reason in the log; `DefaultModel` is the name of the placeholder.
    vrRenderable *Create_Renderable(const char *name, bool load, bool clone);
    /// Registers what a load context found and gives the result of the request.
    vrRenderable *Register_3D_Asset(vrLoadContext &context);
    /// The texture of a file name, from the driver's texture paths; null when there is none, or no driver. It stays the
    /// driver's, which keeps it until textures are freed or the paths change: who wants it for longer takes a share at
    /// once. Asserts that game and drawing don't run side by side. The arguments behind the name are the game's, for
    /// how textures stream; here all are loaded whole.
    vrTexture *Get_Texture(const char *name, bool, bool, int, bool, bool, int, bool);
    /// Drops all prototypes and, on the thread that owns the driver, the textures that nobody holds. Clones live on.
    void Free_All_Assets();

    /// Off, a request finds only what is there already.
    void Enable_Loading(bool enabled) { LoadingEnabled = enabled; }
    bool Is_Loading_Enabled() const { return LoadingEnabled; }
    /// Where missing files are looked for, with the separator at its end; `..\Art\Models\` at the start.
    void Set_Models_Directory(std::string_view directory) { ModelsDirectory = directory; }
    const MK::String &Get_Models_Directory() const { return ModelsDirectory; }

    /// The prototype of a base name in lower case, or null.
    vrRenderable *Find_Prototype(std::string_view baseName) const;
    int Get_Prototype_Count() const;

private:
    std::unique_lock<std::recursive_mutex> Take_Lock() const;
    void Make_Default_Model();
    vrRenderable *Clone_Default_Model();

    static std::atomic<bool> LockingEnabled;

    mutable std::recursive_mutex Lock;
    std::unordered_map<uint32_t, SmartPtr<vrRenderable>> Prototypes; ///< by the CRC of the base name
    SmartPtr<vrRenderable> DefaultModel;
    MK::String ModelsDirectory;
    bool LoadDefaultModel;
    bool LoadingEnabled = true;
};
