#include "vrGraphics/assets/vrAssetManager.h"

#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/assets/vrDefaultModel.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <cinttypes>
#include <utility>
#include <zlib.h>

MK_DEFINE_RUN_TIME_TYPE(vrDefaultModel, vrRenderable)

std::atomic<bool> vrAssetManager::LockingEnabled{true};

namespace
{

MKDebug::Logger VorenAssetsLoadingLog("VorenAssetsLoadingLog");
MKDebug::Logger VorenMissingModelsLog("VorenMissingModelsLog");

using MKDebug::LogLevel;

uint32_t Key_Of(std::string_view baseName)
{
    return static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(baseName.data()), static_cast<uInt>(baseName.size())));
}

} // namespace

vrAssetManager::vrAssetManager(bool loadDefaultModel)
    : ModelsDirectory("..\\Art\\Models\\"), LoadDefaultModel(loadDefaultModel)
{
}

vrAssetManager::~vrAssetManager() = default;

vrAssetManager *vrAssetManager::Get_Instance()
{
    static vrAssetManager manager(false);
    return &manager;
}

std::unique_lock<std::recursive_mutex> vrAssetManager::Take_Lock() const
{
    std::unique_lock<std::recursive_mutex> lock(Lock, std::defer_lock);
    if (LockingEnabled) lock.lock();
    return lock;
}

/// One request at a time, loading included, so that two for one name read its file once.
vrRenderable *vrAssetManager::Create_Renderable(const char *name, bool load, bool clone)
{
    const auto lock = Take_Lock();
    vrLoadContext context(*this, name, load, clone);
    return Register_3D_Asset(context);
}

vrRenderable *vrAssetManager::Register_3D_Asset(vrLoadContext &context)
{
    const auto lock = Take_Lock();
    if (LoadDefaultModel) Make_Default_Model();
    if (context.BaseName.empty()) return nullptr;
    if (context.Is_Default_Model()) {
        MK_ASSERT(context.Should_Clone_Renderable(), "context.Should_Clone_Renderable()");
        MK_LOG(VorenAssetsLoadingLog, LogLevel::Info,
               "vrAssetManager::Register_3D_Asset() -> model in load context is the DefaultModel. Returning a "
               "DefaultModel clone...");
        return Clone_Default_Model();
    }
    if (context.HasBadNormal) {
        MK_LOG(VorenAssetsLoadingLog, LogLevel::Warning, "%s had a bad normal, please re-export.",
               context.Path.c_str());
    }
    if (context.HasEmitterError) return nullptr;
    MK_LOG(VorenAssetsLoadingLog, LogLevel::Info,
           "vrAssetManager::Register_3D_Asset() -> Attempting to register/add %s (thread %" PRIu64 ", main %" PRIu64
           ", render %" PRIu64 ")",
           context.Path.c_str(), Get_Current_Thread_Number(), Get_Main_Thread_Number(), Get_Render_Thread_Number());
    if (context.Prototype) {
        Prototypes.try_emplace(Key_Of(context.BaseName), context.Prototype);
        return context.Should_Clone_Renderable() ? context.Prototype->Clone(VR_CLONE_COPY) : context.Prototype.Get();
    }
    if (!context.IsMissing || !LoadDefaultModel) return nullptr;
    MK_LOG(VorenMissingModelsLog, LogLevel::Warning, "Missing asset detected: name = %s path = %s",
           context.BaseName.c_str(), context.Path.c_str());
    return Clone_Default_Model();
}

void vrAssetManager::Make_Default_Model()
{
    if (!DefaultModel) DefaultModel = new vrDefaultModel;
}

vrRenderable *vrAssetManager::Clone_Default_Model()
{
    Make_Default_Model();
    return DefaultModel->Clone(VR_CLONE_COPY);
}

vrTexture *vrAssetManager::Get_Texture(const char *name, bool, bool, int, bool, bool, int, bool)
{
    MK_ASSERT(!Is_Main_Thread() || !RenderThread::InParallelSection,
              "(!Is_Main_Thread() || !RenderThread::InParallelSection)");
    if (!name || !TheGraphicsDriver) return nullptr;
    return TheGraphicsDriver->Load_Texture(name).Get();
}

void vrAssetManager::Free_All_Assets()
{
    const auto lock = Take_Lock();
    Prototypes.clear();
    DefaultModel = nullptr;
    if (TheGraphicsDriver && TheGraphicsDriver->Get_Main_Thread_Id() == Get_Current_Thread_Number())
        TheGraphicsDriver->Free_Unused_Textures();
}

vrRenderable *vrAssetManager::Find_Prototype(std::string_view baseName) const
{
    const auto lock = Take_Lock();
    const auto found = Prototypes.find(Key_Of(baseName));
    return found == Prototypes.end() ? nullptr : found->second.Get();
}

int vrAssetManager::Get_Prototype_Count() const
{
    const auto lock = Take_Lock();
    return static_cast<int>(Prototypes.size());
}
