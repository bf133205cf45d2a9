#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "PluginBuilders.h"
#include "common/Reports.h"

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"
#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/MKString.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

using namespace MKTest;

namespace
{

std::string Lower(std::string text)
{
    for (char &letter : text) letter = MK::Lower(letter);
    return text;
}

const ParameterClass &Parameter_At(const vrMKPPlugin &plugin, int index)
{
    return *plugin.Get_Parameters().Get_Parameter(index);
}

class EveryPlugin : public testing::TestWithParam<int>
{
};

std::string Test_Name(const testing::TestParamInfo<int> &info)
{
    return std::string(Find_Plugin_Info(info.param)->ClassName) + "_" + std::to_string(info.param);
}

INSTANTIATE_TEST_SUITE_P(PluginTable, EveryPlugin, testing::ValuesIn(All_Plugin_IDs()), Test_Name);

} // namespace

TEST_P(EveryPlugin, HasParametersWithIdsAndTextsOfTheirOwn)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(GetParam());
    std::set<int> ids;
    std::map<std::string, int> names;
    for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index) {
        const ParameterClass &parameter = Parameter_At(*plugin, index);
        EXPECT_GE(parameter.Get_ID(), 0) << parameter.Get_Name();
        EXPECT_TRUE(ids.insert(parameter.Get_ID()).second)
            << parameter.Get_Name() << " shares id " << parameter.Get_ID();
        EXPECT_STRNE(parameter.Get_Name(), "");
        EXPECT_STRNE(parameter.Get_Description(), "") << parameter.Get_Name();
        ++names[Lower(parameter.Get_Name())];
    }
    for (const auto &[name, count] : names) {
        // "Death" has the layer's probability and its own, under the same name.
        const bool isDouble = GetParam() == kvrMKPDeathSpawner && name == "probability";
        EXPECT_EQ(count, isDouble ? 2 : 1) << name;
    }
}

TEST_P(EveryPlugin, KeepsEveryChangedValueThroughCloneAndFile)
{
    const SmartPtr<vrMKPPlugin> fresh = Make_Plugin(GetParam());
    const SmartPtr<vrMKPPlugin> changed = Make_Plugin(GetParam());
    Change_All(*changed);

    const SmartPtr<vrMKPPlugin> clone = changed->Clone();
    EXPECT_EQ(clone->Get_Plugin_Class(), GetParam());
    EXPECT_EQ(Describe(*clone), Describe(*changed));

    const Bytes saved = Save_Plugin(*changed);
    const SmartPtr<vrMKPPlugin> loaded = Load_Plugin(saved);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->Get_Plugin_Class(), GetParam());
    for (int index = 0; index < changed->Get_Parameters().Get_Parameter_Count(); ++index) {
        const ParameterClass &was = Parameter_At(*changed, index);
        const bool isSaved = !was.Is_Save_Excluded();
        ASSERT_NE(Describe(was), Describe(Parameter_At(*fresh, index))) << "the test didn't change it";
        EXPECT_EQ(Parameter_At(*loaded, index).Was_Loaded(), isSaved) << was.Get_Name();
        EXPECT_EQ(Describe(Parameter_At(*loaded, index)), Describe(isSaved ? was : Parameter_At(*fresh, index)));
    }
    EXPECT_EQ(Save_Plugin(*loaded), saved);
}

TEST_P(EveryPlugin, SurvivesEveryPrefixOfItsFile)
{
    const Reports quiet;
    const SmartPtr<vrMKPPlugin> changed = Make_Plugin(GetParam());
    Change_All(*changed);
    const Bytes saved = Save_Plugin(*changed);
    for (size_t size = 0; size < saved.size(); ++size) {
        RAMFileClass file(saved.data(), static_cast<int64_t>(size));
        ChunkFileReaderClass reader(&file);
        if (!reader.Open_Chunk()) continue;
        const SmartPtr<vrMKPPlugin> loaded = vrMKPPlugin::Read_Plugin(&reader);
        EXPECT_TRUE(!loaded || loaded->Get_Plugin_Class() == GetParam()) << size;
    }
}

TEST(PluginTable, HasNoKindBeyondTheLast)
{
    const Reports reports;
    const SmartPtr<vrMKPPlugin> last = vrMKPPlugin::Create_Plugin(128);
    ASSERT_TRUE(last);
    EXPECT_STREQ(last->Get_Name(), "Keyed Spherical Size");
    EXPECT_EQ(vrMKPPlugin::Create_Plugin(129), nullptr);
    EXPECT_EQ(vrMKPPlugin::Create_Plugin(0xffffffffu), nullptr);
    EXPECT_EQ(reports.Get_Text(), "");
}

TEST(PluginTable, LeavesNothingOutOfFilesButTheRetiredRate)
{
    const std::set<int> enhanced = {34, 35, 39, 43, 50, 115};
    for (const int id : All_Plugin_IDs()) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        std::set<int> excluded;
        for (const int parameter : Parameter_IDs(*plugin))
            if (plugin->Get_Parameters().Find_Parameter_By_ID(parameter)->Is_Save_Excluded())
                excluded.insert(parameter);
        EXPECT_EQ(excluded, enhanced.contains(id) ? (std::set{100, 101, 102}) : std::set<int>()) << Plugin_Label(id);
    }
}

TEST(Plugin, FindsAParameterByItsWholeNameInEitherCase)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPConstantUniformSizeModifier);
    const ParameterClass *found = plugin->Get_Parameter_By_Name("write once");
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->Get_Name(), "Write Once");
    for (const char *name : {"write onc", "write once ", "", "no such name"})
        EXPECT_EQ(plugin->Get_Parameter_By_Name(name), nullptr) << name;
}

TEST(Plugin, CopiesByNameIntoTheFirstOfEqualNames)
{
    const SmartPtr<vrMKPPlugin> source = Make_Plugin(kvrMKPDeathSpawner);
    const SmartPtr<vrMKPPlugin> copy = Make_Plugin(kvrMKPDeathSpawner);
    auto *layers = dynamic_cast<RangedFloatParameter *>(source->Get_Parameters().Find_Parameter_By_ID(14));
    auto *deaths = dynamic_cast<RangedFloatParameter *>(source->Get_Parameters().Find_Parameter_By_ID(113));
    layers->Set_Value(0.5f);
    deaths->Set_Value(0.25f);
    copy->Copy_Parameters_By_Name(*source);
    EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*copy, "Probability").Get_Value(), 0.25f);
    EXPECT_EQ(Describe(*copy->Get_Parameters().Find_Parameter_By_ID(113)),
              Describe(*Make_Plugin(kvrMKPDeathSpawner)->Get_Parameters().Find_Parameter_By_ID(113)));
}

TEST(Plugin, DumpsItselfAsAWikiPage)
{
    RAMFileClass file;
    ASSERT_TRUE(file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE));
    Make_Plugin(kvrMKPWeatherCubeModifier)->Dump_Plugin(file);
    const std::string page(reinterpret_cast<const char *>(file.Get_Buffer()), static_cast<size_t>(file.Get_Size()));
    EXPECT_EQ(page, "---++ Weather Cube\n"
                    "---+++ Description\n"
                    "Wraps particles within a weather cube. (Must be last position/velocity based Modifier!)\n"
                    "---+++ Parameters\n"
                    "|Parameter Name|Parameter Type|Parameter Description|\n"
                    "|Cube Size|Float|Size of weather cube.|\n"
                    "---+++ Attribute Channels\n"
                    "| Attributes | ProjectileStartingPosition | PreviousPosition | Position | "
                    "ProjectileTargetPosition | Velocity | Age | MaxAge | Time | ProjectileFlightDuration | Flags | "
                    "ID | Number | UV | dUV | Color | Size | Rotation | WorldPosition | Render | "
                    "SortingRelativeToGroup | \n"
                    "| Access | | |RW | | | | | | | | | | | | | | | | | |\n"
                    " R = read, W = write\n");
}

namespace
{

constexpr uint32_t ID = vrMKPPlugin::VR_CHUNK_MKPPLUGIN_ID;

/// The chunk that holds a "Stomp Radius" of 12.5.
void Write_Radius_Data(ChunkFileWriterClass &writer)
{
    writer.Open_Chunk(vrMKPPlugin::VR_CHUNK_MKPPLUGIN_DATA);
    writer.Open_Chunk(0u);
    Write_Simple_Value(writer, 100, 12.5f);
    writer.Close_Chunk();
    writer.Close_Chunk();
}

} // namespace

TEST(PluginFile, IsReadInTheOrderOfItsChunks)
{
    using Writer = ChunkFileWriterClass;
    const struct
    {
        const char *what;
        void (*write)(Writer &);
        int id; ///< of the plugin that comes out, -1 for none
        float radius;
    } cases[] = {
        {"id, then values", [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Radius_Data(w); }, 20, 12.5f},
        {"values ahead of the id", [](Writer &w) { Write_Radius_Data(w), Write_Int_Chunk(w, ID, 20); }, 20, 100.0f},
        {"a second id", [](Writer &w) { Write_Int_Chunk(w, ID, 19), Write_Int_Chunk(w, ID, 20), Write_Radius_Data(w); },
         20, 12.5f},
        {"a second id behind the values",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Radius_Data(w), Write_Int_Chunk(w, ID, 20); }, 20, 100.0f},
        {"an unknown chunk ends it",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Int_Chunk(w, 2, 0), Write_Radius_Data(w); }, 20, 100.0f},
        {"an unknown id", [](Writer &w) { Write_Int_Chunk(w, ID, 129), Write_Radius_Data(w); }, -1, 0.0f},
        {"a negative id", [](Writer &w) { Write_Int_Chunk(w, ID, -1), Write_Radius_Data(w); }, -1, 0.0f},
        {"an unknown id takes the plugin away",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Int_Chunk(w, ID, 4000); }, -1, 0.0f},
        {"no chunk", [](Writer &) {}, -1, 0.0f},
    };
    for (const auto &row : cases) {
        const Reports reports(MKDebug::LogLevel::Info);
        const SmartPtr<vrMKPPlugin> plugin = Load_Plugin(Write_Chunks([&](Writer &writer) {
            writer.Open_Chunk(7u);
            row.write(writer);
            writer.Close_Chunk();
        }));
        EXPECT_EQ(plugin ? plugin->Get_Plugin_Class() : -1, row.id) << row.what;
        if (plugin) {
            EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*plugin, "Stomp Radius").Get_Value(), row.radius) << row.what;
        }
        EXPECT_EQ(reports.Get_Text(), "") << row.what;
    }
}

TEST(PluginFile, LoadGoesOnlyByTheClosingOfItsChunks)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPRadiusStomper);
    const Bytes file = Write_Chunks([](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(7u);
        writer.Open_Chunk(0u);
        Write_Simple_Value(writer, 100, 12.5f);
        Write_Int_Chunk(writer, 9, 0); // fails the list
        writer.Close_Chunk();
        Write_Int_Chunk(writer, 1, 0); // ends the plugin
        writer.Open_Chunk(0u);
        Write_Simple_Value(writer, 100, 99.0f);
        writer.Close_Chunk();
        writer.Close_Chunk();
    });
    Read_Chunks(file, [&](ChunkFileReaderClass &reader) {
        ASSERT_TRUE(reader.Open_Chunk());
        EXPECT_TRUE(plugin->Load(&reader));
    });
    EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*plugin, "Stomp Radius").Get_Value(), 12.5f);
}

TEST(PluginFile, AssertsWhatIsMissing)
{
    const Reports reports;
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPSimpleStomper);
    Write_Chunks([](ChunkFileWriterClass &writer) { EXPECT_FALSE(vrMKPPlugin::Write_Plugin(&writer, nullptr)); });
    EXPECT_FALSE(vrMKPPlugin::Write_Plugin(nullptr, plugin.Get()));
    EXPECT_EQ(vrMKPPlugin::Read_Plugin(nullptr), nullptr);
    EXPECT_EQ(reports.Get_Asserts(), (std::vector<std::string>{"plugin == NULL", "writer == NULL", "reader == NULL"}));
}

TEST(Visualizers, LoseNothingAsAnOldBumpKindBecomesItsSuccessor)
{
    const struct
    {
        int old;
        int now;
    } cases[] = {
        {kvrMKPBumpMapVisualizer, kvrMKPBillboardVisualizer},
        {kvrMKPObsoleteSphericalBumpVisualizer, kvrMKPSphericalBumpVisualizer},
        {kvrMKPObsoleteCylindricalBumpVisualizer, kvrMKPCylindricalBumpVisualizer},
        {kvrMKPObsoleteCenterToVertBumpVisualizer, kvrMKPCenterToVertBumpVisualizer},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> old = Make_Plugin(row.old);
        const SmartPtr<vrMKPPlugin> now = Make_Plugin(row.now);
        Change_All(*old);
        now->Copy_Parameters_By_Name(*old);
        for (int index = 0; index < old->Get_Parameters().Get_Parameter_Count(); ++index) {
            const ParameterClass &was = *old->Get_Parameters().Get_Parameter(index);
            const ParameterClass *is = now->Get_Parameter_By_Name(was.Get_Name());
            ASSERT_NE(is, nullptr) << Plugin_Label(row.now) << " lacks " << was.Get_Name();
            EXPECT_EQ(is->Get_Type(), was.Get_Type()) << was.Get_Name();
            EXPECT_EQ(Describe(*is), Describe(was)) << Plugin_Label(row.now);
        }
        // What the successor has beyond it is the switch alone, which the load turns on.
        EXPECT_FALSE(old->Get_Parameter_By_Name("Enable Bump"));
        EXPECT_FALSE(Parameter_Of<BoolParameter>(*now, "Enable Bump").Get_Value());
        EXPECT_EQ(now->Get_Parameters().Get_Parameter_Count(), old->Get_Parameters().Get_Parameter_Count() + 1);
    }
}
