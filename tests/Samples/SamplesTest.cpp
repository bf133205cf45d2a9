#include "common/TempFiles.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "MKLib/LoadReport.h"
#include "MKLib/MKString.h"
#include "MKLib/MegaFile/MegaFileManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace
{

using vro::Json;

const std::string SAMPLES = MK_SAMPLES;
const std::string MODELS = SAMPLES + "/Art/Models/";
const std::string EFFECTS = SAMPLES + "/Effects/";

/// Base names of the files of a directory that have the extension, sorted.
std::vector<std::string> Base_Names(const std::string &directory, const std::string &extension)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory))
        if (entry.path().extension() == extension) names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

SmartPtr<vrMKParticleEmitter> Load(const std::string &path)
{
    std::string error;
    auto emitter = vro::Load_Effect(path, error);
    EXPECT_TRUE(emitter) << path << ": " << error;
    return emitter;
}

std::string Dump(const vrMKParticleEmitter &emitter)
{
    return vro::To_Text(vro::Effect_To_Json(emitter));
}

std::string Save(vrMKParticleEmitter &emitter, unsigned mode)
{
    std::string bytes;
    std::string error;
    EXPECT_TRUE(vro::Save_Effect(emitter, mode, bytes, error)) << error;
    return bytes;
}

Json Source_Of(const std::string &effect)
{
    return vro::Parse_Json(MKTest::Read_Text_File(EFFECTS + effect + ".json"));
}

/// Calls `visit` with each plugin object of a document.
template <typename Visit>
void Visit_Plugins(const Json &json, const Visit &visit)
{
    if (json.is_object() && json.contains("id") && json.contains("parameters")) visit(json);
    if (json.is_structured())
        for (const Json &part : json) Visit_Plugins(part, visit);
}

const Json &Value_Of(const Json &plugin, const std::string &parameter)
{
    for (const Json &candidate : plugin.at("parameters"))
        if (candidate.at("name") == parameter) return candidate.at("value");
    throw std::runtime_error("no parameter " + parameter);
}

class SampleFile : public testing::TestWithParam<std::string>
{
protected:
    std::string File() const { return MODELS + GetParam() + ".vro"; }
};

INSTANTIATE_TEST_SUITE_P(Models, SampleFile, testing::ValuesIn(Base_Names(MODELS, ".vro")),
                         [](const auto &info) { return info.param; });

TEST_P(SampleFile, IsWhatItsJsonTellsAndNeedsNoMendingUnlessOld)
{
    const LoadReport::Collector report;
    const auto loaded = Load(File());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(report.Get_Findings().empty(), GetParam() != "old_campfire");
    EXPECT_EQ(Dump(*loaded), MKTest::Read_Text_File(EFFECTS + GetParam() + ".json"));
    const auto built = vro::Effect_From_Json(Source_Of(GetParam()));
    EXPECT_TRUE(Save(*built, vro::TOOL_MODE) == Save(*loaded, vro::TOOL_MODE));
}

TEST_P(SampleFile, KeepsItsEffectAndItsBytesInEveryEncoding)
{
    const auto original = Load(File());
    ASSERT_TRUE(original);
    const std::string text = Dump(*original);
    for (const char *base : {"zlib", "binary", "xml", "sectioned", "zlib-sectioned"})
        for (const char *option : {"", "+validated", "+swapped", "+validated+swapped"}) {
            const std::string encoding = std::string(base) + option;
            SCOPED_TRACE(encoding);
            const auto mode = vro::Parse_Encoding(encoding);
            ASSERT_TRUE(mode);
            const std::string once = Save(*original, *mode);
            std::string error;
            const auto reloaded = vro::Load_Effect(once, GetParam() + ".vro", error);
            ASSERT_TRUE(reloaded) << error;
            EXPECT_EQ(Dump(*reloaded), text);
            EXPECT_TRUE(Save(*reloaded, *mode) == once);
        }
}

/// Every texture and every shader that an effect names is there, whatever its case and extension.
TEST_P(SampleFile, FindsItsPictures)
{
    const auto stem = [](const std::string &name) {
        return std::string(MK::Lowered(std::filesystem::path(name).stem().string()));
    };
    for (const auto &[kind, directory] :
         {std::pair("Texture Name", "/Art/Textures"), {"Shader Name", "/Run/Data/Art/Shaders"}})
    {
        std::set<std::string> there;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(SAMPLES + directory))
            there.insert(stem(entry.path().string()));
        Visit_Plugins(Source_Of(GetParam()), [&](const Json &plugin) {
            for (const Json &parameter : plugin.at("parameters")) {
                if (parameter.at("kind") != kind) continue;
                EXPECT_TRUE(there.contains(stem(parameter.at("value")))) << parameter;
            }
        });
    }
}

TEST(Samples, HaveAnEffectForEachKindThatIsNotRetired)
{
    std::set<int> used;
    for (const std::string &effect : Base_Names(EFFECTS, ".json"))
        Visit_Plugins(Source_Of(effect), [&](const Json &plugin) { used.insert(plugin.at("id").get<int>()); });
    for (int id = 0; const auto *kind = Find_Plugin_Info(id); ++id) {
        if (std::string_view(kind->Name).find("(OBSOLETE)") != std::string_view::npos) continue;
        EXPECT_TRUE(used.contains(id)) << vrMKPPlugin::Get_Plugin_Type_Name(kind->Family) << " " << kind->Name;
    }
}

TEST(OldCampfire, ComesInTodaysForm)
{
    const Json effect = vro::Effect_To_Json(*Load(MODELS + "old_campfire.vro"));
    EXPECT_EQ(effect.at("remove_on_depleted"), true);
    const Json &renderables = effect.at("renderables");
    ASSERT_EQ(renderables.size(), 4u);

    // 60 each 2 seconds, and bursts of 12 each 3 seconds.
    const Json &flames = renderables[0].at("layers")[0];
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Particles / Second"), 30.0);
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Cluster Size"), 1);
    const Json &sparks = renderables[0].at("layers")[1];
    EXPECT_EQ(Value_Of(sparks.at("spawner"), "Particles / Second"), 4.0);
    EXPECT_EQ(Value_Of(sparks.at("spawner"), "Cluster Size"), 12);

    // Values that stood bare, and shapes of both old forms.
    EXPECT_EQ(Value_Of(flames.at("modifiers")[0], "End Color"), Json({0.5, 0.0625, 0.0, 0.0}));
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Velocity").at("sphere"), Json({4.0, 12.0}));
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Position").at("cylinder"), Json({8.0, 0.0, 3.0}));

    EXPECT_EQ(Value_Of(flames.at("visualizer"), "Enable Bump"), true);
    EXPECT_EQ(sparks.at("visualizer").at("id"), 23); // a retired kind that no load converts
    EXPECT_EQ(Value_Of(renderables[1].at("layers")[0].at("visualizer"), "Curvature"), 0.75);

    // The model takes the group's motion and place, and the group follows it.
    EXPECT_EQ(renderables[2].at("scale_offset"), 1.5);
    EXPECT_EQ(Value_Of(renderables[3].at("physics"), "Parent Name"), renderables[2].at("name"));
}

/// From where the game runs, and out of the archives that its list names.
TEST(Samples, TheArchiveServesItsEmittersToTheAssetManager)
{
    const MKTest::CurrentDirectory run(SAMPLES + "/Run");
    MegaFileManagerClass manager;
    TheMegaFileManager = &manager;
    EXPECT_TRUE(manager.Load_Default_Mega_Files(MegaFileClass::MEGAFILE_OPEN_FROM_DISK));
    vrAssetManager assets(false);
    for (const std::string effect : {"ember_drift", "lamp_flicker"}) {
        EXPECT_FALSE(std::filesystem::exists(MODELS + effect + ".vro"));
        const std::string path = "Data\\Art\\Models\\" + effect + ".vro";
        const SmartPtr<vrRenderable> renderable(assets.Create_Renderable(path.c_str(), true, true));
        const auto *emitter = MK_Dynamic_Cast<vrMKParticleEmitter>(renderable.Get());
        EXPECT_EQ(emitter ? Dump(*emitter) : "none", MKTest::Read_Text_File(EFFECTS + effect + ".json")) << effect;
    }
    manager.Close_All();
    TheMegaFileManager = nullptr;
}

} // namespace
