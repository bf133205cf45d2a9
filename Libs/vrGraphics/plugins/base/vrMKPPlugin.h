#pragma once

/// The base of all particle behaviours. A plugin is pure definition, parameters and code: everything that changes at run
/// time lives in a buffer or in per-buffer data, so that one plugin serves every instance of an effect. Plugins are
/// written on the main thread or the asset loader and are read-only for the threads that simulate.

#include "MKLib/Parameters/ParameterList.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/plugins/base/vrMKPPluginIds.h"

#include <cstdint>

class vrMKPBuffer;
class vrMKPBufferPluginData;
struct vrMKPPluginInfo;
struct vrMKPRenderState;

class vrMKPPlugin : public RefCountClass
{
public:
    /// The family of a kind.
    enum PluginType : int
    {
        NO_PLUGIN_TYPE = 0,
        SPAWNER_PLUGIN = 1,
        MODIFIER_PLUGIN = 2,
        STOMPER_PLUGIN = 3,
        TRANSFORMER_PLUGIN = 4,
        VISUALIZER_PLUGIN = 5,
        RENDERABLE_PHYSICS_PLUGIN = 7,
        RENDERABLE_MODIFIER_PLUGIN = 8,
        RENDERABLE_KILLER_PLUGIN = 9,
        LIGHT_CONTROLLER_PLUGIN = 11
    };

    /// The group in an editor's list.
    enum Category : int
    {
        CATEGORY_CREATOR,
        CATEGORY_SIZE,
        CATEGORY_PHYSICS,
        CATEGORY_ROTATION,
        CATEGORY_COLOR,
        CATEGORY_UV,
        CATEGORY_KILLER,
        CATEGORY_TRANSLATER,
        CATEGORY_RENDERER,
        CATEGORY_TIME,
        CATEGORY_RENDERABLE_PHYSICS,
        CATEGORY_RENDERABLE_MISC,
        CATEGORY_RENDERABLE_KILLER,
        CATEGORY_COUNT
    };

    using Plugin = vrMKPPluginId;
    using enum vrMKPPluginId;

    /// Chunks of a plugin in a file.
    enum PluginChunkEnum : uint32_t
    {
        VR_CHUNK_MKPPLUGIN_ID = 0,
        VR_CHUNK_MKPPLUGIN_DATA = 1
    };

    vrMKPPlugin() = default;
    vrMKPPlugin(const vrMKPPlugin &) = delete;
    vrMKPPlugin &operator=(const vrMKPPlugin &) = delete;

    /// A new plugin of a kind with its default parameters and a count of 0, which the caller's SmartPtr takes over; null
    /// for an unknown id.
    static vrMKPPlugin *Create_Plugin(uint32_t id);
    /// Writes the id and the parameters into the current chunk. A null plugin or writer asserts and yields false.
    static bool Write_Plugin(ChunkFile::ChunkFileWriterClass *writer, const vrMKPPlugin *plugin);
    /// Makes the plugin that the current chunk holds, with a count of 0; null when it holds none of a known kind.
    static vrMKPPlugin *Read_Plugin(ChunkFile::ChunkFileReaderClass *reader);

    static const char *Get_Plugin_Type_Name(PluginType type); ///< "Spawner", "Renderable physics"; "" for none
    static const char *Get_Category_Name(Category category);
    static const char *Get_Category_Help(Category category);

    /// A new plugin of the same kind with the same parameter values; count 0.
    virtual vrMKPPlugin *Clone() const;
    const char *Get_Name() const;
    const char *Get_Description() const;
    PluginType Get_Plugin_Type() const;
    Plugin Get_Plugin_Class() const { return PluginClass; }
    Category Get_Category() const;
    /// One chunk with the parameter list. `Load` reads the same; what the parameters' own load answers doesn't count.
    bool Save(ChunkFile::ChunkFileWriterClass *writer) const;
    bool Load(ChunkFile::ChunkFileReaderClass *reader);
    /// Channels of the buffer that the plugin reads and writes, bit n for channel n. For documentation alone.
    uint32_t Get_Read_Attributes() const;
    uint32_t Get_Write_Attributes() const;
    size_t Get_Parameter_Memory() const { return Parameters.Get_Memory_Usage(); }
    virtual size_t Get_Object_Size() const = 0;
    bool Is_Obsolete() const;
    /// What the plugin keeps for one buffer, with a count of 0; null for a kind that keeps nothing. Before a frame, on
    /// the thread that owns the scene.
    virtual vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState & /*state*/) const { return nullptr; }

    ParameterListClass &Get_Parameters() { return Parameters; }
    const ParameterListClass &Get_Parameters() const { return Parameters; }
    /// Ignores case; null when there is none of the name.
    ParameterClass *Get_Parameter_By_Name(std::string_view name) const;
    /// For each parameter of `source`, the first parameter here of an equal name takes its value.
    void Copy_Parameters_By_Name(const vrMKPPlugin &source);
    /// Writes a wiki page about the plugin.
    void Dump_Plugin(FileClass &file) const;

protected:
    ParameterListClass Parameters;

private:
    Plugin PluginClass = VRMKP_PLUGIN_NONE; ///< set by the factory
};
