#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include "vrGraphics/particle/MKPAttributes.h"
#include "vrGraphics/plugins/base/SharedTables.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"
#include "MKLib/Parameters/Parameter.h"

#include <atomic>
#include <iterator>
#include <string>

namespace
{

enum : uint32_t
{
    VR_CHUNK_MKPPLUGIN_PARAMETERS = 0
};

struct CategoryStruct
{
    const char *Name;
    const char *Help;
};

constexpr CategoryStruct CATEGORIES[] = {
    {"Creator", "Creator - This determines where and how particles are spawned, their starting speed, and their LOD."},
    {"Size", "Size - Size plugins are used to change the particle's size over time."},
    {"Physics", "Physics - Physics plugins modify a particle's motion."},
    {"Rotation", "Rotation - THese plugins rotate individual particles about their axis."},
    {"Color", "Color - These plugins control the color of a particle over its lifetime."},
    {"UV", "UV - UV plugins specify what portion of a texture map to use, or to animate the particle's texture."},
    {"Killer", "Killer - The killer decides when and how particles should be removed from the scene."},
    {"Translater",
     "Translater - The translator determines whether the particle's motion is in local or world space."},
    {"Renderer", "Renderer - Renderers specify how the particle is drawn on the screen."},
    {"Time", "Time - Advanced controls that can modify a particle's handling of time.\nBe careful to insert these "
             "modifiers into the list BEFORE parameters that depend on it (color, UV, etc.)"},
    {"Physics", "Renderable Physics - Modifies motion of the entire model or group."},
    {"Misc", "Renderable Misc. - Miscellaneous modifiers."},
    {"Killer", "Renderable Kill - Use to control the lifetime of the model or group."},
};
static_assert(std::size(CATEGORIES) == vrMKPPlugin::CATEGORY_COUNT);

/// What the parameters of each kind take, from the first one that was made.
struct ParameterSizeStruct
{
    std::atomic<uint32_t> Count{0};
    std::atomic<uint32_t> Bytes{0};
};
ParameterSizeStruct ParameterSizes[VRMKP_PLUGIN_COUNT];

} // namespace

vrMKPPlugin *vrMKPPlugin::Create_Plugin(uint32_t id)
{
    vrMKPSharedTables::Get();
    if (id >= VRMKP_PLUGIN_COUNT) return nullptr;
    ParameterSizeStruct &size = ParameterSizes[id];
    const ExpectedParameters expected(size.Count.load(std::memory_order_relaxed),
                                      size.Bytes.load(std::memory_order_relaxed));
    vrMKPPlugin *plugin = Find_Plugin_Info(static_cast<int>(id))->Make();
    plugin->PluginClass = static_cast<Plugin>(id);
    size.Count.store(static_cast<uint32_t>(plugin->Parameters.Get_Parameter_Count()), std::memory_order_relaxed);
    size.Bytes.store(static_cast<uint32_t>(plugin->Parameters.Get_Storage_Size()), std::memory_order_relaxed);
    return plugin;
}

bool vrMKPPlugin::Write_Plugin(ChunkFile::ChunkFileWriterClass *writer, const vrMKPPlugin *plugin)
{
    if (!MK_VERIFY(plugin != nullptr, "plugin == NULL") || !MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool written = writer->Open_Chunk("VR_CHUNK_MKPPLUGIN_ID", VR_CHUNK_MKPPLUGIN_ID);
    written &= writer->Write_Int32(plugin->Get_Plugin_Class());
    written &= writer->Close_Chunk();
    written &= writer->Open_Chunk("VR_CHUNK_MKPPLUGIN_DATA", VR_CHUNK_MKPPLUGIN_DATA);
    written &= plugin->Save(writer);
    written &= writer->Close_Chunk();
    return written;
}

vrMKPPlugin *vrMKPPlugin::Read_Plugin(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return nullptr;
    SmartPtr<vrMKPPlugin> plugin;
    for (bool known = true; known && reader->Open_Chunk(); reader->Close_Chunk()) {
        switch (reader->Cur_Chunk_ID()) {
        case VR_CHUNK_MKPPLUGIN_ID: {
            uint32_t id = VRMKP_PLUGIN_COUNT;
            reader->Read_UInt32(id);
            plugin = Create_Plugin(id);
            break;
        }
        case VR_CHUNK_MKPPLUGIN_DATA:
            if (plugin) plugin->Load(reader);
            break;
        default: known = false; break;
        }
    }
    return plugin.Detach();
}

const char *vrMKPPlugin::Get_Plugin_Type_Name(PluginType type)
{
    switch (type) {
    case SPAWNER_PLUGIN: return "Spawner";
    case MODIFIER_PLUGIN: return "Modifier";
    case STOMPER_PLUGIN: return "Stomper";
    case TRANSFORMER_PLUGIN: return "Transformer";
    case VISUALIZER_PLUGIN: return "Visualizer";
    case RENDERABLE_PHYSICS_PLUGIN: return "Renderable physics";
    case RENDERABLE_MODIFIER_PLUGIN: return "Renderable modifier";
    case RENDERABLE_KILLER_PLUGIN: return "Renderable killer";
    case LIGHT_CONTROLLER_PLUGIN: return "Light controller";
    case NO_PLUGIN_TYPE: break;
    }
    return "";
}

const char *vrMKPPlugin::Get_Category_Name(Category category)
{
    return category >= 0 && category < CATEGORY_COUNT ? CATEGORIES[category].Name : "";
}

const char *vrMKPPlugin::Get_Category_Help(Category category)
{
    return category >= 0 && category < CATEGORY_COUNT ? CATEGORIES[category].Help : "";
}

vrMKPPlugin *vrMKPPlugin::Clone() const
{
    vrMKPPlugin *clone = Create_Plugin(static_cast<uint32_t>(PluginClass));
    if (clone) clone->Parameters.Copy_From(Parameters);
    return clone;
}

const char *vrMKPPlugin::Get_Name() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Name : "No name";
}

const char *vrMKPPlugin::Get_Description() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Description : "No description";
}

vrMKPPlugin::PluginType vrMKPPlugin::Get_Plugin_Type() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Family : NO_PLUGIN_TYPE;
}

vrMKPPlugin::Category vrMKPPlugin::Get_Category() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Category : CATEGORY_RENDERABLE_KILLER;
}

uint32_t vrMKPPlugin::Get_Read_Attributes() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Reads : 0;
}

uint32_t vrMKPPlugin::Get_Write_Attributes() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info ? info->Writes : 0;
}

bool vrMKPPlugin::Is_Obsolete() const
{
    const vrMKPPluginInfo *info = Find_Plugin_Info(PluginClass);
    return info && info->Obsolete;
}

bool vrMKPPlugin::Save(ChunkFile::ChunkFileWriterClass *writer) const
{
    bool written = writer->Open_Chunk("VR_CHUNK_MKPPLUGIN_PARAMETERS", VR_CHUNK_MKPPLUGIN_PARAMETERS);
    written &= Parameters.Save(writer);
    written &= writer->Close_Chunk();
    return written;
}

bool vrMKPPlugin::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    bool closed = true;
    for (bool known = true; known && reader->Open_Chunk();) {
        known = reader->Cur_Chunk_ID() == VR_CHUNK_MKPPLUGIN_PARAMETERS;
        if (known) Parameters.Load(reader);
        closed &= reader->Close_Chunk();
    }
    return closed;
}

ParameterClass *vrMKPPlugin::Get_Parameter_By_Name(std::string_view name) const
{
    return Parameters.Get_Parameter(Parameters.Find_Parameter(name));
}

void vrMKPPlugin::Copy_Parameters_By_Name(const vrMKPPlugin &source)
{
    for (int index = 0; index < source.Parameters.Get_Parameter_Count(); ++index) {
        const ParameterClass *from = source.Parameters.Get_Parameter(index);
        if (ParameterClass *to = Get_Parameter_By_Name(from->Get_Name())) to->Copy_From(*from);
    }
}

void vrMKPPlugin::Dump_Plugin(FileClass &file) const
{
    const auto print = [&file](const std::string &text) { file.Write(text.data(), static_cast<int64_t>(text.size())); };
    print(std::string("---++ ") + Get_Name() + "\n");
    print(std::string("---+++ Description\n") + Get_Description() + "\n---+++ Parameters\n");
    Parameters.Dump_Table(file);
    std::string channels = "---+++ Attribute Channels\n| Attributes | ";
    for (const char *name : MKP_ATTRIBUTE_NAMES) channels += std::string(name) + " | ";
    channels += "\n| Access |";
    for (uint32_t channel = 0; channel < MKP_ATTRIBUTE_COUNT; ++channel) {
        if (Get_Read_Attributes() >> channel & 1u) channels += "R";
        if (Get_Write_Attributes() >> channel & 1u) channels += "W";
        channels += " |";
    }
    print(channels + "\n R = read, W = write\n");
}
