#include "vrGraphics/effect/PluginSlots.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "MKLib/MKDebug/Logger.h"

#include <cstdio>

namespace
{

MKDebug::Logger ParticleLog("ParticleLog");

thread_local int limitDepth = 0;
thread_local int objectCount = 0;

} // namespace

vrMKPLoadLimit::vrMKPLoadLimit()
{
    if (limitDepth++ == 0) objectCount = 0;
}

vrMKPLoadLimit::~vrMKPLoadLimit()
{
    --limitDepth;
}

bool vrMKPLoadLimit::Take(const ChunkFileReaderClass &reader)
{
    if (Is_Exceeded()) return false;
    if (++objectCount <= MAX_OBJECTS) return true;
    MK_LOG(ParticleLog, MKDebug::LogLevel::Error, "%s: more than %d renderables, layers and plugins",
           reader.Get_File_Name().c_str(), MAX_OBJECTS);
    return false;
}

bool vrMKPLoadLimit::Is_Exceeded()
{
    return objectCount > MAX_OBJECTS;
}

namespace PluginSlots
{

vrMKPPlugin *Read_Family(ChunkFileReaderClass &reader, vrMKPPlugin::PluginType family, const char *otherwise)
{
    if (!vrMKPLoadLimit::Take(reader)) return nullptr;
    SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Read_Plugin(&reader);
    if (plugin && plugin->Get_Plugin_Type() == family) return plugin.Detach();
    if (LoadReport::Is_Wanted()) {
        std::string found = "no plugin of a known kind";
        if (plugin) {
            found = std::string("\"") + plugin->Get_Name() + "\", of the family \"" +
                    vrMKPPlugin::Get_Plugin_Type_Name(plugin->Get_Plugin_Type()) + "\"";
        }
        LoadReport::Add(std::move(found), otherwise);
    }
    return nullptr;
}

bool Save(ChunkFile::ChunkFileWriterClass &writer, const char *name, uint32_t id, const vrMKPPlugin &plugin)
{
    bool saved = writer.Open_Chunk(name, id);
    saved &= vrMKPPlugin::Write_Plugin(&writer, &plugin);
    saved &= writer.Close_Chunk();
    return saved;
}

bool Read_Micro_Chunk_Text(ChunkFileReaderClass &reader, NameTableRef &text)
{
    MK::String whole;
    if (!reader.Read_String(whole)) return false;
    if (whole.size() > MAX_MICRO_CHUNK_TEXT) {
        if (LoadReport::Is_Wanted()) {
            LoadReport::Add("a text of " + std::to_string(whole.size()) + " bytes",
                            "cut to " + std::to_string(MAX_MICRO_CHUNK_TEXT) + ", which is what a save can write");
        }
        whole.resize(MAX_MICRO_CHUNK_TEXT);
    }
    text = NameTableRef(whole);
    return true;
}

size_t Get_Memory_Usage(const vrMKPPlugin *plugin)
{
    return plugin ? plugin->Get_Object_Size() + plugin->Get_Parameter_Memory() : 0;
}

void Report_Unknown_Chunk(const ChunkFileReaderClass &reader, const char *result)
{
    if (!LoadReport::Is_Wanted()) return;
    char found[32];
    std::snprintf(found, sizeof(found), "unknown chunk 0x%x", reader.Cur_Chunk_ID());
    LoadReport::Add(found, result);
}

} // namespace PluginSlots
