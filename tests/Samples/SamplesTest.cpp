#include "common/TempFiles.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "MKLib/File/File.h"
#include "MKLib/LoadReport.h"
#include "MKLib/MKString.h"
#include "MKLib/MegaFile/MegaFileManager.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace
{

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
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

std::vector<std::string> All_Encodings()
{
    std::vector<std::string> encodings;
    for (const char *base : {"zlib", "binary", "xml", "sectioned", "zlib-sectioned"})
        for (const char *option : {"", "+validated", "+swapped", "+validated+swapped"})
            encodings.push_back(std::string(base).append(option));
    return encodings;
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

TEST_P(SampleFile, DumpsAsItsJson)
{
    const auto emitter = Load(File());
    ASSERT_TRUE(emitter);
    EXPECT_EQ(Dump(*emitter), MKTest::Read_Text_File(EFFECTS + GetParam() + ".json"));
}

TEST_P(SampleFile, IsWhatItsJsonBuilds)
{
    const auto loaded = Load(File());
    ASSERT_TRUE(loaded);
    const auto built = vro::Effect_From_Json(Source_Of(GetParam()));
    const std::string bytes = Save(*built, vro::TOOL_MODE);
    EXPECT_TRUE(bytes == Save(*loaded, vro::TOOL_MODE));
    const auto again = vro::Effect_From_Json(vro::Parse_Json(Dump(*built)));
    EXPECT_TRUE(bytes == Save(*again, vro::TOOL_MODE));
}

TEST_P(SampleFile, KeepsItsEffectAndItsBytesInEveryEncoding)
{
    const auto original = Load(File());
    ASSERT_TRUE(original);
    const std::string text = Dump(*original);
    for (const std::string &encoding : All_Encodings()) {
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

TEST_P(SampleFile, LoadsWithoutAFindingUnlessItIsOfTheOldForm)
{
    const LoadReport::Collector report;
    ASSERT_TRUE(Load(File()));
    EXPECT_EQ(report.Get_Findings().empty(), GetParam() != "old_campfire");
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

TEST(Samples, FillAGridOfAtLeastSixtyRows)
{
    size_t rows = 0;
    for (const std::string &effect : Base_Names(MODELS, ".vro")) {
        const Json source = Source_Of(effect);
        for (const Json &renderable : source.at("renderables"))
            if (renderable.contains("layers")) rows += renderable.at("layers").size();
    }
    EXPECT_GE(rows, 60u);
    EXPECT_GE(Base_Names(MODELS, ".vro").size(), 18u);
}

TEST(Samples, AreEachToldInTheReadme)
{
    const std::string readme = MKTest::Read_Text_File(SAMPLES + "/README.md");
    for (const std::string &effect : Base_Names(EFFECTS, ".json"))
        EXPECT_THAT(readme, HasSubstr(std::string("| `").append(effect).append("` |")));
}

TEST(Samples, HoldAHeatBillboardOfTheOldKind)
{
    int billboards = 0;
    Visit_Plugins(Source_Of("heat_shimmer_old"), [&](const Json &plugin) {
        billboards +=
            plugin.at("id") == 22 &&
            MK::Equal_Ignoring_Case(Value_Of(plugin, "Shader Name").get<std::string>(), "particlebillboardheat.fx");
    });
    EXPECT_EQ(billboards, 2);
}

TEST(OldCampfire, TellsWhatItsLoadMends)
{
    const LoadReport::Collector report;
    ASSERT_TRUE(Load(MODELS + "old_campfire.vro"));
    std::vector<std::string> findings;
    for (const auto &finding : report.Get_Findings()) findings.push_back(finding.Place + ": " + finding.Found);
    for (const char *expected : {
             ": chunk 1 of the old form",
             ": chunk 5408 of the old form", // 0x1520, layers in the root
             "renderable 0 / layer 0 / spawner: retired parameter \"Particles / Interval\"",
             "renderable 0 / layer 1 / spawner: retired parameter \"Enable Bursting\"",
             "renderable 0 / layer 0 / visualizer: \"Bump Map (OBSOLETE)\"",
             ": a group of the old form",
             "renderable 1 / light 0: a light of an old group",
             "renderable 1 / physics: the motion of an old group",
             "renderable 1 / layer 0 / visualizer: \"Spherical Bump (OBSOLETE)\"",
             "renderable 2 / layer 0 / visualizer: \"Center to Vert Bump (OBSOLETE)\"",
             "renderable 2: the attached model \"campfire_logs.vro\" of an old group",
             ": the file's own value of removal when depleted",
         })
        EXPECT_THAT(findings, Contains(expected));
}

TEST(OldCampfire, ComesInTodaysForm)
{
    const Json effect = vro::Effect_To_Json(*Load(MODELS + "old_campfire.vro"));
    EXPECT_EQ(effect.at("remove_on_depleted"), true);
    const Json &renderables = effect.at("renderables");
    ASSERT_EQ(renderables.size(), 4u);
    EXPECT_EQ(renderables[0].at("always_awake"), true);

    // 60 each 2 seconds, and bursts of 12 each 3 seconds.
    const Json &flames = renderables[0].at("layers")[0];
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Particles / Second"), 30.0);
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Cluster Size"), 1);
    const Json &sparks = renderables[0].at("layers")[1];
    EXPECT_EQ(Value_Of(sparks.at("spawner"), "Particles / Second"), 4.0);
    EXPECT_EQ(Value_Of(sparks.at("spawner"), "Cluster Size"), 12);
    EXPECT_EQ(sparks.at("name"), "étincelles");

    // Values that stood bare, and shapes of both old forms.
    EXPECT_EQ(Value_Of(flames.at("modifiers")[0], "End Color"), Json({0.5, 0.0625, 0.0, 0.0}));
    EXPECT_EQ(Value_Of(flames.at("modifiers")[1], "Size").at("keys"), Json({{0.0, 4.0}, {0.25, 11.0}, {1.0, 2.0}}));
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Velocity").at("sphere"), Json({4.0, 12.0}));
    EXPECT_EQ(Value_Of(flames.at("spawner"), "Position").at("cylinder"), Json({8.0, 0.0, 3.0}));

    EXPECT_EQ(flames.at("visualizer").at("id"), 22);
    EXPECT_EQ(Value_Of(flames.at("visualizer"), "Enable Bump"), true);
    EXPECT_EQ(sparks.at("visualizer").at("id"), 23); // a retired kind that no load converts
    const Json &smoke = renderables[1].at("layers")[0];
    EXPECT_EQ(smoke.at("visualizer").at("id"), 112);
    EXPECT_EQ(Value_Of(smoke.at("visualizer"), "Curvature"), 0.75);

    // The model takes the group's motion and place, and the group follows it.
    const Json &model = renderables[2];
    const Json &logs = renderables[3];
    EXPECT_EQ(model.at("kind"), "model");
    EXPECT_EQ(model.at("attached_model"),
              Json({{"name", "campfire_logs.vro"}, {"animation", "smoulder"}, {"enabled", true}}));
    EXPECT_EQ(model.at("physics").at("id"), 84);
    EXPECT_EQ(model.at("killer").at("id"), 119);
    EXPECT_EQ(model.at("scale_offset"), 1.5);
    EXPECT_EQ(logs.at("physics").at("id"), 118);
    EXPECT_EQ(Value_Of(logs.at("physics"), "Parent Name"), model.at("name"));
}

/// Stands where the game runs, with the archives that its list names.
class SampleArchive : public testing::Test
{
protected:
    SampleArchive()
    {
        TheMegaFileManager = &Manager;
        IsLoaded = Manager.Load_Default_Mega_Files(MegaFileClass::MEGAFILE_OPEN_FROM_DISK);
    }
    ~SampleArchive() override
    {
        Manager.Close_All();
        TheMegaFileManager = nullptr;
    }

    MKTest::CurrentDirectory RunDirectory{SAMPLES + "/Run"};
    MegaFileManagerClass Manager;
    bool IsLoaded = false;
};

TEST_F(SampleArchive, ServesItsEmittersToTheAssetManager)
{
    ASSERT_TRUE(IsLoaded);
    vrAssetManager assets(false);
    for (const std::string effect : {"ember_drift", "lamp_flicker"}) {
        SCOPED_TRACE(effect);
        EXPECT_FALSE(std::filesystem::exists(MODELS + effect + ".vro"));
        const std::string path = "Data\\Art\\Models\\" + effect + ".vro";
        const SmartPtr<vrRenderable> renderable(assets.Create_Renderable(path.c_str(), true, true));
        const auto *emitter = MK_Dynamic_Cast<vrMKParticleEmitter>(renderable.Get());
        ASSERT_TRUE(emitter);
        EXPECT_EQ(Dump(*emitter), MKTest::Read_Text_File(EFFECTS + effect + ".json"));
    }
}

TEST_F(SampleArchive, ListsTheTexturesOfTheEffects)
{
    ASSERT_TRUE(IsLoaded);
    FileClass file("Data\\Textures.txt");
    ASSERT_TRUE(file.Open(MKPlatform::FILE_OPEN_GENERIC_READ));
    std::string text(static_cast<size_t>(file.Get_Size()), '\0');
    ASSERT_EQ(file.Read(text.data(), static_cast<int64_t>(text.size())), static_cast<int64_t>(text.size()));

    std::set<std::string> used;
    for (const std::string &effect : Base_Names(EFFECTS, ".json"))
        Visit_Plugins(Source_Of(effect), [&](const Json &plugin) {
            for (const Json &parameter : plugin.at("parameters"))
                if (parameter.at("kind") == "Texture Name") used.insert(parameter.at("value").get<std::string>());
        });
    for (const std::string &texture : used) EXPECT_THAT("\n" + text, HasSubstr("\n" + texture + "\n"));
}

} // namespace
