#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "PluginBuilders.h"
#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <gtest/gtest.h>

#include <set>

using namespace MKTest;

namespace
{

Bytes Save_Parameter(const ParameterClass &parameter)
{
    return Write_Chunks([&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(0u);
        EXPECT_TRUE(parameter.Save(writer));
        writer.Close_Chunk();
    });
}

const ParameterClass &Parameter_At(const vrMKPPlugin &plugin, int index)
{
    return *plugin.Get_Parameters().Get_Parameter(index);
}

} // namespace

TEST(EveryPlugin, KeepsEveryChangedValueThroughCloneAndFileButTheRetiredRate)
{
    const std::set<int> enhanced = {34, 35, 39, 43, 50, 115};
    for (const int id : All_Plugin_IDs()) {
        SCOPED_TRACE(Plugin_Label(id));
        const SmartPtr<vrMKPPlugin> fresh = Make_Plugin(id);
        const SmartPtr<vrMKPPlugin> changed = Make_Plugin(id);
        Change_All(*changed);
        const Bytes saved = Save_Plugin(*changed);
        const SmartPtr<vrMKPPlugin> clone = changed->Clone();
        const SmartPtr<vrMKPPlugin> loaded = Load_Plugin(saved);
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded->Get_Plugin_Class(), id);
        std::set<int> left;
        for (int index = 0; index < changed->Get_Parameters().Get_Parameter_Count(); ++index) {
            const ParameterClass &was = Parameter_At(*changed, index);
            SCOPED_TRACE(was.Get_Name());
            EXPECT_NE(Save_Parameter(was), Save_Parameter(Parameter_At(*fresh, index))) << "the test didn't change it";
            EXPECT_EQ(Save_Parameter(was), Save_Parameter(Parameter_At(*clone, index)));
            const ParameterClass &is = Parameter_At(*loaded, index);
            if (is.Was_Loaded())
                EXPECT_EQ(Save_Parameter(was), Save_Parameter(is));
            else
                left.insert(was.Get_ID());
        }
        EXPECT_EQ(left, enhanced.contains(id) ? (std::set{100, 101, 102}) : std::set<int>());
    }
}

TEST(EveryPlugin, SurvivesEveryPrefixOfItsFile)
{
    const Reports quiet;
    for (const int id : All_Plugin_IDs()) {
        const SmartPtr<vrMKPPlugin> changed = Make_Plugin(id);
        Change_All(*changed);
        const Bytes saved = Save_Plugin(*changed);
        for (size_t size = 0; size < saved.size(); ++size) {
            RAMFileClass file(saved.data(), static_cast<int64_t>(size));
            ChunkFileReaderClass reader(&file);
            if (!reader.Open_Chunk()) continue;
            const SmartPtr<vrMKPPlugin> loaded = vrMKPPlugin::Read_Plugin(&reader);
            EXPECT_TRUE(!loaded || loaded->Get_Plugin_Class() == id) << size;
        }
    }
}

namespace
{

constexpr uint32_t ID = vrMKPPlugin::VR_CHUNK_MKPPLUGIN_ID;

/// The chunk that holds a "Stomp Radius" of 12.5, and what no list knows, if told.
void Write_Radius_Data(ChunkFileWriterClass &writer, bool isDamaged = false)
{
    writer.Open_Chunk(vrMKPPlugin::VR_CHUNK_MKPPLUGIN_DATA);
    writer.Open_Chunk(0u);
    Write_Simple_Value(writer, 100, 12.5f);
    if (isDamaged) Write_Int_Chunk(writer, 9, 0);
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
        {"a second id behind the values",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Radius_Data(w), Write_Int_Chunk(w, ID, 20); }, 20, 100.0f},
        {"an unknown chunk ends it",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Int_Chunk(w, 2, 0), Write_Radius_Data(w); }, 20, 100.0f},
        {"a list that fails keeps what it has",
         [](Writer &w) { Write_Int_Chunk(w, ID, 20), Write_Radius_Data(w, true); }, 20, 12.5f},
        {"an unknown id", [](Writer &w) { Write_Int_Chunk(w, ID, 129), Write_Radius_Data(w); }, -1, 0.0f},
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
