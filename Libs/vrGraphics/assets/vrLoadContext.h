#pragma once

#include "MKLib/MKString.h"
#include "vrGraphics/scene/vrRenderable.h"

class vrAssetManager;

/// One request to the asset manager: the parts of the name, and what a look-up or a load found. Lives on the stack of
/// the request.
class vrLoadContext
{
public:
    static constexpr const char *DEFAULT_MODEL_NAME = "DefaultModel";
    static constexpr size_t MAX_BASE_NAME = 260;
    static constexpr size_t MAX_EXTENSION = 256;

    /// Looks the name up in the manager and, when it isn't there and `load` is set, loads it.
    vrLoadContext(const vrAssetManager &manager, const char *name, bool load, bool clone);

    bool Should_Clone_Renderable() const { return ShouldClone; }
    bool Is_Default_Model() const { return BaseName == DEFAULT_MODEL_NAME; }

    MK::String Path;     ///< the full name, in lower case
    MK::String BaseName; ///< without directory and extension; empty for an empty name
    MK::String Extension;
    SmartPtr<vrRenderable> Prototype; ///< what was found
    bool IsMissing = false;           ///< a load was tried and found nothing
    bool HasBadNormal = false;        ///< the load marked bad data
    bool HasEmitterError = false;     ///< there is an emitter file, and it is damaged

private:
    void Load(const vrAssetManager &manager, const char *name);
    bool Load_File(const MK::String &path);

    bool ShouldClone;
};
