#include "vrGraphics/effect/vrMKPRenderable.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/RenderableChunks.h"

/// The part of an emitter file that groups and models have in common.

namespace
{

enum RenderableChunkEnum : uint32_t // on disk: never renumber
{
    VR_CHUNK_MKPRENDERABLE_VARS = 0x1701,
    VR_CHUNK_MKPRENDERABLE_PHYSICS = 0x1681,
    VR_CHUNK_MKPRENDERABLE_MODIFIER = 0x1683
};

enum RenderableVarEnum : uint32_t // on disk: never renumber
{
    VR_VAR_MKPRENDERABLE_NAME = 0,
    VR_VAR_MKPRENDERABLE_ALWAYS_AWAKE = 1,
    VR_VAR_MKPRENDERABLE_ALWAYS_SIMULATE_FLAG = 2,
    VR_VAR_MKPRENDERABLE_TRANSLATE_OFFSET = 3,
    VR_VAR_MKPRENDERABLE_ROTATE_OFFSET = 4,
    VR_VAR_MKPRENDERABLE_SCALE_OFFSET = 5,
    VR_VAR_MKPRENDERABLE_VELOCITY_ALIGNED = 6,
    VR_VAR_MKPRENDERABLE_START_DELAY = 7,
    VR_VAR_MKPRENDERABLE_START_DELAY_VARIATION = 8,
    VR_VAR_MKPRENDERABLE_BASE_RANDOM_SEED = 9,
    VR_VAR_MKPRENDERABLE_SORT_BIAS = 10
};

} // namespace

bool vrMKPRenderable::Load_Block(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader.Open_Chunk();) {
        switch (reader.Cur_Chunk_ID()) {
        case VR_CHUNK_MKPRENDERABLE_VARS: loaded &= Load_Variables(reader); break;
        case VR_CHUNK_MKPRENDERABLE_PLUGINS: loaded &= Load_Plugins(reader); break;
        default:
            isKnown = false;
            PluginSlots::Report_Unknown_Chunk(reader, "ends the renderable's values: what follows in them is dropped");
        }
        loaded &= reader.Close_Chunk();
    }
    Finish_Load();
    return loaded;
}

bool vrMKPRenderable::Load_Variables(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    while (reader.Open_Micro_Chunk()) {
        loaded &= Load_Variable(reader);
        loaded &= reader.Close_Micro_Chunk();
    }
    return loaded;
}

bool vrMKPRenderable::Load_Variable(ChunkFile::ChunkFileReaderClass &reader)
{
    bool flag = false;
    float number = 0.0f;
    switch (reader.Cur_Micro_Chunk_ID()) {
    case VR_VAR_MKPRENDERABLE_NAME: return PluginSlots::Read_Micro_Chunk_Text(reader, Name);
    case VR_VAR_MKPRENDERABLE_ALWAYS_AWAKE:
        if (!reader.Read_Bool(flag)) return false;
        Set_Always_Awake(flag);
        return true;
    case VR_VAR_MKPRENDERABLE_ALWAYS_SIMULATE_FLAG: return reader.Read_Bool(AlwaysSimulate);
    case VR_VAR_MKPRENDERABLE_TRANSLATE_OFFSET: return reader.Read_Vector3(TranslateOffset);
    case VR_VAR_MKPRENDERABLE_ROTATE_OFFSET: return reader.Read_Vector3(RotateOffset);
    case VR_VAR_MKPRENDERABLE_SCALE_OFFSET: return reader.Read_Float(ScaleOffset);
    case VR_VAR_MKPRENDERABLE_VELOCITY_ALIGNED: return reader.Read_Bool(VelocityAligned);
    case VR_VAR_MKPRENDERABLE_START_DELAY: return reader.Read_Float(StartDelay);
    case VR_VAR_MKPRENDERABLE_START_DELAY_VARIATION: return reader.Read_Float(StartDelayVariation);
    case VR_VAR_MKPRENDERABLE_BASE_RANDOM_SEED: return reader.Read_Int32(BaseRandomSeed);
    case VR_VAR_MKPRENDERABLE_SORT_BIAS:
        if (!reader.Read_Float(number)) return false;
        Set_File_Sort_Bias(number);
        return true;
    }
    if (LoadReport::Is_Wanted())
        LoadReport::Add("unknown variable " + std::to_string(reader.Cur_Micro_Chunk_ID()), "dropped");
    return true;
}

bool vrMKPRenderable::Load_Plugins(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader.Open_Chunk();) {
        switch (reader.Cur_Chunk_ID()) {
        case VR_CHUNK_MKPRENDERABLE_PHYSICS: {
            const LoadReport::Place place("physics");
            Physics = PluginSlots::Read<vrMKPRenderablePhysics>(reader, vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN,
                                                                "\"Null\" physics stand in");
            loaded &= static_cast<bool>(Physics);
            break;
        }
        case VR_CHUNK_MKPRENDERABLE_MODIFIER: {
            const LoadReport::Place place("renderable modifier", Get_Modifier_Count());
            const auto modifier =
                PluginSlots::Read<vrMKPRenderableModifier>(reader, vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN, "dropped");
            if (modifier) Add_Modifier(modifier.Get());
            loaded &= static_cast<bool>(modifier);
            break;
        }
        default:
            isKnown = false;
            PluginSlots::Report_Unknown_Chunk(reader, "ends the renderable's plugins: what follows in them is dropped");
        }
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

bool vrMKPRenderable::Save_Block(ChunkFile::ChunkFileWriterClass &writer)
{
    Set_Always_Simulate(AlwaysSimulate);
    bool saved = writer.Open_Chunk("VR_CHUNK_MKPRENDERABLE", VR_CHUNK_MKPRENDERABLE);
    saved &= Save_Variables(writer);
    // A file without physics gets the default ones at its load: modifiers need the chunk all the same.
    if (Physics || !Modifiers.empty()) saved &= Save_Plugins(writer);
    saved &= writer.Close_Chunk();
    return saved;
}

bool vrMKPRenderable::Save_Variables(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("VR_CHUNK_MKPRENDERABLE_VARS", VR_CHUNK_MKPRENDERABLE_VARS);
    const auto save = [&](const char *name, uint32_t id, auto &&write) {
        saved &= writer.Open_Micro_Chunk(name, id);
        saved &= write();
        saved &= writer.Close_Micro_Chunk();
    };
    save("VR_VAR_MKPRENDERABLE_NAME", VR_VAR_MKPRENDERABLE_NAME, [&] { return writer.Write_String(Get_Name()); });
    save("VR_VAR_MKPRENDERABLE_ALWAYS_SIMULATE_FLAG", VR_VAR_MKPRENDERABLE_ALWAYS_SIMULATE_FLAG,
         [&] { return writer.Write_Bool(AlwaysSimulate); });
    save("VR_VAR_MKPRENDERABLE_ALWAYS_AWAKE", VR_VAR_MKPRENDERABLE_ALWAYS_AWAKE,
         [&] { return writer.Write_Bool(Get_Always_Awake()); });
    save("VR_VAR_MKPRENDERABLE_SORT_BIAS", VR_VAR_MKPRENDERABLE_SORT_BIAS,
         [&] { return writer.Write_Float(Get_File_Sort_Bias()); });
    save("VR_VAR_MKPRENDERABLE_TRANSLATE_OFFSET", VR_VAR_MKPRENDERABLE_TRANSLATE_OFFSET,
         [&] { return writer.Write_Vector3(TranslateOffset); });
    save("VR_VAR_MKPRENDERABLE_ROTATE_OFFSET", VR_VAR_MKPRENDERABLE_ROTATE_OFFSET,
         [&] { return writer.Write_Vector3(RotateOffset); });
    save("VR_VAR_MKPRENDERABLE_SCALE_OFFSET", VR_VAR_MKPRENDERABLE_SCALE_OFFSET,
         [&] { return writer.Write_Float(ScaleOffset); });
    save("VR_VAR_MKPRENDERABLE_START_DELAY", VR_VAR_MKPRENDERABLE_START_DELAY,
         [&] { return writer.Write_Float(StartDelay); });
    save("VR_VAR_MKPRENDERABLE_START_DELAY_VARIATION", VR_VAR_MKPRENDERABLE_START_DELAY_VARIATION,
         [&] { return writer.Write_Float(StartDelayVariation); });
    save("VR_VAR_MKPRENDERABLE_BASE_RANDOM_SEED", VR_VAR_MKPRENDERABLE_BASE_RANDOM_SEED,
         [&] { return writer.Write_Int32(BaseRandomSeed); });
    save("VR_VAR_MKPRENDERABLE_VELOCITY_ALIGNED", VR_VAR_MKPRENDERABLE_VELOCITY_ALIGNED,
         [&] { return writer.Write_Bool(VelocityAligned); });
    saved &= writer.Close_Chunk();
    return saved;
}

bool vrMKPRenderable::Save_Plugins(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("VR_CHUNK_MKPRENDERABLE_PLUGINS", VR_CHUNK_MKPRENDERABLE_PLUGINS);
    if (Physics)
        saved &= PluginSlots::Save(writer, "VR_CHUNK_MKPRENDERABLE_PHYSICS", VR_CHUNK_MKPRENDERABLE_PHYSICS, *Physics);
    for (const auto &modifier : Modifiers)
        saved &=
            PluginSlots::Save(writer, "VR_CHUNK_MKPRENDERABLE_MODIFIER", VR_CHUNK_MKPRENDERABLE_MODIFIER, *modifier);
    saved &= writer.Close_Chunk();
    return saved;
}
