#pragma once

#include "MKLib/NameTable.h"
#include "MKLib/RefCount.h"

#include <cstdint>
#include <vector>

/// What a level-of-detail file says. docs/formats/lod-settings.md has the file.
struct vrLODSettings
{
    struct Model
    {
        /// Levels by distance at one global quality.
        struct StaticSetting
        {
            struct Setting
            {
                float Distance = 0.0f; ///< world units from which on the level holds
                int32_t LOD = 0;
            };

            int32_t Quality = 0;           ///< the global quality, 0 to 4
            std::vector<Setting> Settings; ///< by ascending distance
        };

        /// How much of a model's detail is kept as the frame rate asks for less.
        struct DynamicSetting
        {
            float Distance = 0.0f; ///< world units from which on it holds
            float Detail = 1.0f;   ///< part of the detail that is kept at least, 0 to 1
        };

        NameTableRef Name;
        std::vector<StaticSetting> StaticSettings;   ///< by ascending quality
        std::vector<DynamicSetting> DynamicSettings; ///< by ascending distance
    };

    float NearDistance = 100.0f; ///< world units, for what has no distances of its own
    float FarDistance = 500.0f;
    float DistanceBias = 0.0f; ///< world units, added to distances before they are looked up
    std::vector<Model> Models;
};

/// What is known about one model, shared by all that show it.
class ModelLODMapClass final : public RefCountClass
{
public:
    /// Expects a model of the current settings, or null for one that they don't name. Keeps a copy.
    ModelLODMapClass(const vrLODSettings::Model *model, float distanceBias);

    /// The level to show: that of the setting for this quality, or else of the next lower one, at the greatest distance
    /// that is reached. MIN_MODEL_LOD where the settings tell nothing. Always a level that there is.
    int Get_Static_LOD(int quality, float distance) const;
    /// The least part of the detail to keep, 0 to 1; 1 where the settings tell nothing.
    float Get_Dynamic_Detail(float distance) const;

private:
    vrLODSettings::Model Model;
    float DistanceBias;
};

/// The process-wide level-of-detail settings, and four timed fades. All is static. Settings are loaded on the main
/// thread at start-up; fades belong to the thread that renders; models may be looked up from any thread.
class vrLODManager
{
public:
    static constexpr int MIN_MODEL_LOD = 0; ///< all detail
    static constexpr int MAX_MODEL_LOD = 4;
    static constexpr int MAX_MODEL_LOD_COUNT = MAX_MODEL_LOD + 1;

    /// What the fades are for is their users'.
    enum LODFadeType : uint32_t
    {
        LOD_FADE_0,
        LOD_FADE_1,
        LOD_FADE_2,
        LOD_FADE_3,
        LOD_FADE_TYPE_COUNT
    };

    struct FadeRecord
    {
        float Duration = 0.0f; ///< seconds, always above 0 once set
        float T = 2.0f;        ///< part of the duration that has passed; above 1 the fade has ended
        float Start = 1.0f;    ///< 0 to 1
        float End = 1.0f;      ///< 0 to 1
    };

    /// Replaces all settings. False, with the reason in the log and the defaults in force, for a file that can't be
    /// read as a whole.
    static bool Load_LOD_Settings(const char *xmlFilePath);
    static const vrLODSettings &Get_Settings();
    /// Of the file that was read last, in the system's unit; 0 when none was.
    static int64_t Get_Settings_Write_Time();

    /// Starts a fade from `start` to `end`, both cut to 0..1, over so many seconds. One that ends where the present one
    /// does changes nothing. From the first one on the frames of scenes advance the fades.
    static void Set_LOD_Fade(LODFadeType type, float start, float end, float duration);
    /// Where the fade is now, 0 to 1; 1 before the first. An unknown type asserts and yields 1.
    static float Get_LOD_Fade(LODFadeType type);
    static const FadeRecord &Get_Fade_Record(LODFadeType type);
    /// Advances the fades; a frame above half a second, as a load makes it, advances nothing.
    static void On_New_Frame(float step);

    /// The entry of a model, made on first need; null for an empty name. A load of settings starts new ones.
    static SmartPtr<ModelLODMapClass> Get_Model_LOD_Map(const NameTableRef &model);
};
