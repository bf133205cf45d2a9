#include "vrGraphics/effect/vrLODManager.h"

#include "MKLib/File/File.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Files.h"
#include "vrGraphics/effect/LODSettingsFile.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/scene/vrScene.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <unordered_map>

namespace
{

MKDebug::Logger VorenLog("VorenLog");

constexpr float LONGEST_FRAME = 0.5f;     ///< seconds; what takes longer is a load and no frame
constexpr float EQUAL_ENDS = 0.0001f;     ///< fades whose ends differ by less go to the same one
constexpr float LEAST_DURATION = 0.0001f; ///< added to every duration, so that none is 0

/// Handles of one text share their string.
struct NameHash
{
    size_t operator()(const NameTableRef &name) const { return std::hash<const void *>()(&name.Get_String()); }
};

struct ManagerState
{
    vrLODSettings Settings;
    std::array<vrLODManager::FadeRecord, vrLODManager::LOD_FADE_TYPE_COUNT> Fades;
    int64_t SettingsWriteTime = 0;
    std::mutex MapLock; ///< for the map and, against a load, the settings
    std::unordered_map<NameTableRef, SmartPtr<ModelLODMapClass>, NameHash> ModelMap;
};

ManagerState &Manager()
{
    static ManagerState state;
    return state;
}

/// The last entry that stands at or below `distance`, or null.
template <typename Entry>
const Entry *Find_Reached(const std::vector<Entry> &entries, float distance)
{
    const auto beyond =
        std::find_if(entries.begin(), entries.end(), [&](const Entry &entry) { return !(entry.Distance <= distance); });
    return beyond == entries.begin() ? nullptr : &*(beyond - 1);
}

/// 0 for a file that the system doesn't have by itself, as one in an archive.
int64_t Write_Time_Of(std::string_view name)
{
    std::error_code error;
    const auto time = std::filesystem::last_write_time(MKPlatform::To_System_Path(name), error);
    return error ? 0 : static_cast<int64_t>(time.time_since_epoch().count());
}

} // namespace

ModelLODMapClass::ModelLODMapClass(const vrLODSettings::Model *model, float distanceBias) : DistanceBias(distanceBias)
{
    if (model) Model = *model;
}

int ModelLODMapClass::Get_Static_LOD(int quality, float distance) const
{
    const vrLODSettings::Model::StaticSetting *chosen = nullptr;
    for (const auto &setting : Model.StaticSettings)
        if (setting.Quality <= quality) chosen = &setting;
    const auto *const reached = chosen ? Find_Reached(chosen->Settings, distance + DistanceBias) : nullptr;
    return reached
               ? std::clamp(static_cast<int>(reached->LOD), vrLODManager::MIN_MODEL_LOD, vrLODManager::MAX_MODEL_LOD)
               : vrLODManager::MIN_MODEL_LOD;
}

float ModelLODMapClass::Get_Dynamic_Detail(float distance) const
{
    const auto *const reached = Find_Reached(Model.DynamicSettings, distance + DistanceBias);
    return reached ? Particle::Clamp_01(reached->Detail) : 1.0f;
}

bool vrLODManager::Load_LOD_Settings(const char *xmlFilePath)
{
    if (!MK_VERIFY(xmlFilePath, "xml_file_path")) return false;
    vrLODSettings loaded;
    const bool isLoaded = Read_LOD_Settings(xmlFilePath, loaded);
    if (!isLoaded) {
        MK_LOG(VorenLog, MKDebug::LogLevel::Warning, "Failed to load Voren LOD settings from %s", xmlFilePath);
        loaded = vrLODSettings();
    }

    ManagerState &state = Manager();
    {
        const std::lock_guard lock(state.MapLock);
        state.Settings = std::move(loaded);
        state.ModelMap.clear();
    }
    FileClass file;
    file.Open(xmlFilePath, MKPlatform::FILE_OPEN_GENERIC_READ);
    MK_ASSERT(file.Is_Open(), "file.Is_Open()");
    state.SettingsWriteTime = file.Is_Open() ? Write_Time_Of(file.Get_Name()) : 0;
    if (state.SettingsWriteTime == 0 && isLoaded) state.SettingsWriteTime = 1;
    return isLoaded;
}

const vrLODSettings &vrLODManager::Get_Settings()
{
    return Manager().Settings;
}

int64_t vrLODManager::Get_Settings_Write_Time()
{
    return Manager().SettingsWriteTime;
}

// Rendering has no thread of its own, so a fade is set where it is asked for.
void vrLODManager::Set_LOD_Fade(LODFadeType type, float start, float end, float duration)
{
    if (!MK_VERIFY(type < LOD_FADE_TYPE_COUNT, "type < LOD_FADE_TYPE_COUNT")) return;
    FadeRecord &fade = Manager().Fades[type];
    const float clampedEnd = Particle::Clamp_01(end);
    if (!(std::abs(clampedEnd - fade.End) > EQUAL_ENDS)) return;
    fade.Duration = (duration > 0.0f ? duration : 0.0f) + LEAST_DURATION;
    fade.Start = Particle::Clamp_01(start);
    fade.End = clampedEnd;
    fade.T = 0.0f;
    vrScene::Set_Frame_Call(&vrLODManager::On_New_Frame);
}

const vrLODManager::FadeRecord &vrLODManager::Get_Fade_Record(LODFadeType type)
{
    static const FadeRecord NONE;
    if (!MK_VERIFY(type < LOD_FADE_TYPE_COUNT, "type < LOD_FADE_TYPE_COUNT")) return NONE;
    return Manager().Fades[type];
}

float vrLODManager::Get_LOD_Fade(LODFadeType type)
{
    const FadeRecord &fade = Get_Fade_Record(type);
    return fade.T >= 1.0f ? fade.End : fade.Start + (fade.End - fade.Start) * fade.T;
}

void vrLODManager::On_New_Frame(float step)
{
    if (!(step >= 0.0f && step <= LONGEST_FRAME)) return;
    for (uint32_t type = 0; type < LOD_FADE_TYPE_COUNT; ++type) {
        FadeRecord &fade = Manager().Fades[type];
        if (fade.T > 1.0f) continue;
        const float before = fade.T;
        fade.T += step / fade.Duration;
        MK_LOG(VorenLog, MKDebug::LogLevel::Debug,
               "vrLODManager::On_Page_Flip type=%u dt=%.2f duration=%.2f cur_t=%.2f new_t=%.2f", type,
               static_cast<double>(step), static_cast<double>(fade.Duration), static_cast<double>(before),
               static_cast<double>(fade.T));
    }
}

SmartPtr<ModelLODMapClass> vrLODManager::Get_Model_LOD_Map(const NameTableRef &model)
{
    if (model.Is_Empty()) return nullptr;
    ManagerState &state = Manager();
    const std::lock_guard lock(state.MapLock);
    SmartPtr<ModelLODMapClass> &entry = state.ModelMap[model];
    if (!entry) {
        const auto &models = state.Settings.Models;
        const auto found = std::find_if(models.begin(), models.end(), [&](const vrLODSettings::Model &candidate) {
            return MK::Equal_Ignoring_Case(candidate.Name.Get_String(), model.Get_String());
        });
        entry = new ModelLODMapClass(found == models.end() ? nullptr : &*found, state.Settings.DistanceBias);
    }
    MK_ASSERT(entry, "model_lod_map != NULL");
    return entry;
}
