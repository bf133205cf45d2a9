#include "vrGraphics/assets/vrLoadContext.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

namespace
{

MKDebug::Logger VorenAssetsLoadingLog("VorenAssetsLoadingLog");

} // namespace

vrLoadContext::vrLoadContext(const vrAssetManager &manager, const char *name, bool load, bool clone)
    : ShouldClone(clone)
{
    MK_ASSERT(!Is_Main_Thread() || !RenderThread::InParallelSection,
              "(!Is_Main_Thread() || !RenderThread::InParallelSection)");
    if (!name || *name == '\0') return;
    if (std::string_view(name) == DEFAULT_MODEL_NAME) {
        BaseName = DEFAULT_MODEL_NAME;
        return;
    }
    Path = MK::Lowered(name);
    BaseName = MKPlatform::Path_Base_Name(Path).substr(0, MAX_BASE_NAME);
    Extension = MKPlatform::Path_Extension(Path).substr(0, MAX_EXTENSION);
    Prototype = manager.Find_Prototype(BaseName);
    if (!Prototype && load && manager.Is_Loading_Enabled()) Load(manager, name);
}

/// Tries the path as it was given, whose letters also name the emitter, and then the models directory.
void vrLoadContext::Load(const vrAssetManager &manager, const char *name)
{
    if (Extension == ".apf") {
        MK_LOG(VorenAssetsLoadingLog, MKDebug::LogLevel::Warning, "%s: no loader for .apf files", name);
        IsMissing = true;
        return;
    }
    if (Load_File(name) || HasEmitterError) return;
    IsMissing = !Load_File(manager.Get_Models_Directory() + BaseName + ".VRO") && !HasEmitterError;
}

bool vrLoadContext::Load_File(const MK::String &path)
{
    FileClass file(path);
    if (!file.Open(MKPlatform::FILE_OPEN_GENERIC_READ)) return false;
    ChunkFileReaderClass reader(&file);
    if (!reader.Is_Initialized() || !reader.Open_Chunk() || reader.Cur_Chunk_ID() != VR_CHUNK_MKPEMITTER) {
        MK_LOG(VorenAssetsLoadingLog, MKDebug::LogLevel::Warning, "%s: not an emitter file", path.c_str());
        return false;
    }
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    const bool loaded = emitter->Load(&reader);
    if (!reader.Close_Chunk() || !loaded) {
        HasEmitterError = true;
        MK_LOG(VorenAssetsLoadingLog, MKDebug::LogLevel::Error, "%s: the emitter is damaged and can't be used",
               path.c_str());
        return false;
    }
    Prototype = emitter.Get();
    return true;
}
