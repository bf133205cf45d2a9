#include "vrGraphics/effect/vrMKParticle.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

/// The layer's part of an emitter file.

namespace
{

struct ConversionStruct
{
    vrMKPPluginId Loaded;
    vrMKPPluginId Replacement;
};

/// The visualizers of the time before bump mapping was a switch.
constexpr ConversionStruct CONVERSIONS[] = {
    {kvrMKPBumpMapVisualizer, kvrMKPBillboardVisualizer},
    {kvrMKPObsoleteSphericalBumpVisualizer, kvrMKPSphericalBumpVisualizer},
    {kvrMKPObsoleteCylindricalBumpVisualizer, kvrMKPCylindricalBumpVisualizer},
    {kvrMKPObsoleteCenterToVertBumpVisualizer, kvrMKPCenterToVertBumpVisualizer},
};

/// The visualizer as today's kinds have it; the same one when it is of them.
SmartPtr<vrMKPVisualizer> Convert(SmartPtr<vrMKPVisualizer> visualizer)
{
    for (const ConversionStruct &conversion : CONVERSIONS) {
        if (visualizer->Get_Plugin_Class() != conversion.Loaded) continue;
        auto replacement = PluginSlots::Make<vrMKPVisualizer>(conversion.Replacement);
        replacement->Copy_Parameters_By_Name(*visualizer);
        ParameterClass *enableBump = replacement->Get_Parameter_By_Name("Enable Bump");
        if (MK_VERIFY(enableBump && enableBump->Get_Type() == ParameterType::Boolean, "enable_bump == NULL"))
            static_cast<BoolParameter *>(enableBump)->Set_Value(true);
        if (LoadReport::Is_Wanted()) {
            LoadReport::Add(std::string("\"") + visualizer->Get_Name() + "\"",
                            std::string("becomes \"") + replacement->Get_Name() + "\" with \"Enable Bump\" on");
        }
        return replacement;
    }
    return visualizer;
}

/// Reads a slot; one that can't be had gets a default kind, and the result is false.
template <typename T>
bool Load_Slot(ChunkFileReaderClass &reader, SmartPtr<T> &slot, vrMKPPlugin::PluginType family,
               vrMKPPluginId substitute, const char *place, const char *otherwise)
{
    const LoadReport::Place slotPlace(place);
    slot = PluginSlots::Read<T>(reader, family, otherwise);
    if (slot) return true;
    slot = PluginSlots::Make<T>(substitute);
    return false;
}

} // namespace

bool vrMKParticle::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    Reset_Definition();
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader->Open_Chunk();) {
        const uint32_t id = reader->Cur_Chunk_ID();
        isKnown = id <= VR_CHUNK_MKPARTICLE_MODIFIER;
        if (isKnown)
            loaded &= Load_Chunk(*reader, id);
        else
            PluginSlots::Report_Unknown_Chunk(*reader, "ends the layer: what follows in it is dropped");
        loaded &= reader->Close_Chunk();
    }
    Post_Load(vrMKParticleGroup::Is_Additional_Asset_Loading_Forced(), nullptr);
    return loaded;
}

bool vrMKParticle::Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, uint32_t id)
{
    switch (id) {
    case VR_CHUNK_MKPARTICLE_NAME: return reader.Read_String(Name);
    case VR_CHUNK_MKPARTICLE_SPAWNER:
        return Load_Slot(reader, Spawner, vrMKPPlugin::SPAWNER_PLUGIN, kvrMKPShapeSpawner, "spawner",
                         "a \"Shape\" spawner with its default values stands in");
    case VR_CHUNK_MKPARTICLE_TRANSFORMER:
        return Load_Slot(reader, Transformer, vrMKPPlugin::TRANSFORMER_PLUGIN, kvrMKPWorldTransformer, "transformer",
                         "a \"World Space\" transformer stands in");
    case VR_CHUNK_MKPARTICLE_STOMPER:
        return Load_Slot(reader, Stomper, vrMKPPlugin::STOMPER_PLUGIN, kvrMKPSimpleStomper, "stomper",
                         "an \"Age\" stomper with its default values stands in");
    case VR_CHUNK_MKPARTICLE_VISUALIZER: return Load_Visualizer(reader);
    case VR_CHUNK_MKPARTICLE_MODIFIER: return Load_Modifier(reader);
    }
    return true;
}

bool vrMKParticle::Load_Visualizer(ChunkFile::ChunkFileReaderClass &reader)
{
    const LoadReport::Place place("visualizer");
    Visualizer = PluginSlots::Read<vrMKPVisualizer>(reader, vrMKPPlugin::VISUALIZER_PLUGIN,
                                                    "a \"Billboard\" visualizer with its default values stands in");
    const bool loaded = static_cast<bool>(Visualizer);
    Visualizer = loaded ? Convert(Visualizer) : PluginSlots::Make<vrMKPVisualizer>(kvrMKPBillboardVisualizer);
    return loaded;
}

bool vrMKParticle::Load_Modifier(ChunkFile::ChunkFileReaderClass &reader)
{
    const LoadReport::Place place("modifier", Get_Modifier_Count());
    const auto modifier = PluginSlots::Read<vrMKPModifier>(reader, vrMKPPlugin::MODIFIER_PLUGIN, "dropped");
    if (modifier) Add_Modifier(modifier.Get());
    return static_cast<bool>(modifier);
}

bool vrMKParticle::Save(ChunkFile::ChunkFileWriterClass *writer) const
{
    if (!MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool saved = writer->Open_Chunk("VR_CHUNK_MKPARTICLE_NAME", VR_CHUNK_MKPARTICLE_NAME);
    saved &= writer->Write_String(Get_Name());
    saved &= writer->Close_Chunk();
    const struct
    {
        const char *Name;
        uint32_t Id;
        const vrMKPPlugin *Plugin;
    } slots[] = {
        {"VR_CHUNK_MKPARTICLE_SPAWNER", VR_CHUNK_MKPARTICLE_SPAWNER, Spawner.Get()},
        {"VR_CHUNK_MKPARTICLE_TRANSFORMER", VR_CHUNK_MKPARTICLE_TRANSFORMER, Transformer.Get()},
        {"VR_CHUNK_MKPARTICLE_STOMPER", VR_CHUNK_MKPARTICLE_STOMPER, Stomper.Get()},
        {"VR_CHUNK_MKPARTICLE_VISUALIZER", VR_CHUNK_MKPARTICLE_VISUALIZER, Visualizer.Get()},
    };
    for (const auto &slot : slots)
        if (slot.Plugin) saved &= PluginSlots::Save(*writer, slot.Name, slot.Id, *slot.Plugin);
    for (const auto &modifier : Modifiers)
        saved &= PluginSlots::Save(*writer, "VR_CHUNK_MKPARTICLE_MODIFIER", VR_CHUNK_MKPARTICLE_MODIFIER, *modifier);
    return saved;
}
