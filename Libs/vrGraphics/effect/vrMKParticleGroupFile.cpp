#include "vrGraphics/effect/vrMKParticleGroup.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/RenderableChunks.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/renderables/Physics.h"

/// The group's part of an emitter file, with the forms that it has had.

namespace
{

enum GroupChunkEnum : uint32_t // on disk: never renumber
{
    VR_CHUNK_MKPARTICLE = 0x1540,
    VR_CHUNK_MKPLIGHT_PLUGINS = 0x16c0,
    VR_CHUNK_MKPLIGHT_PLUGIN = 0x16c1,
    VR_CHUNK_LEGACY_LAYERS_INFO = 0x1521,
    VR_CHUNK_LEGACY_LAYERS_VARS = 0x1522,
    VR_CHUNK_LEGACY_GROUP_VARS = 0x1601,
    VR_CHUNK_LEGACY_LIGHTS = 0x1640,
    VR_CHUNK_LEGACY_LIGHT = 0x1641,
    VR_CHUNK_LEGACY_PHYSICS_LIST = 0x1660,
    VR_CHUNK_LEGACY_PHYSICS = 0x1661
};

enum LegacyGroupVarEnum : uint32_t // on disk: never renumber
{
    VR_VAR_LEGACY_GROUP_NAME = 0
};

} // namespace

bool vrMKParticleGroup::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    AttachedModels attached;
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader->Open_Chunk();) {
        loaded &= Load_Chunk(*reader, attached, isKnown);
        loaded &= reader->Close_Chunk();
    }
    // A model takes over what the group has, so it waits for all of that to be read.
    for (const auto &parameters : attached) loaded &= Split_Off_Model(parameters.Get());
    Reset();
    return loaded;
}

bool vrMKParticleGroup::Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, AttachedModels &attached, bool &isKnown)
{
    switch (reader.Cur_Chunk_ID()) {
    case VR_CHUNK_MKPRENDERABLE: return Load_Block(reader);
    case VR_CHUNK_MKPLIGHT_PLUGINS: return Load_Lights(reader);
    case VR_CHUNK_MKPARTICLE: return Load_Layer(reader);
    case VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL:
        if (!vrMKPLoadLimit::Take(reader)) return false;
        attached.emplace_back(new vrMKPAttachedModelParameters);
        return attached.back()->Load(reader);
    }
    isKnown = false;
    PluginSlots::Report_Unknown_Chunk(reader, "ends the group: what follows in it is dropped");
    return true;
}

bool vrMKParticleGroup::Load_Layer(ChunkFile::ChunkFileReaderClass &reader)
{
    if (!vrMKPLoadLimit::Take(reader)) return false;
    const LoadReport::Place place("layer", Particle_Count());
    const SmartPtr<vrMKParticle> particle(new vrMKParticle);
    const bool loaded = particle->Load(&reader);
    Add_Particle(particle.Get());
    return loaded;
}

bool vrMKParticleGroup::Load_Lights(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    while (reader.Open_Chunk()) {
        const LoadReport::Place place("light", Light_Count());
        if (reader.Cur_Chunk_ID() == VR_CHUNK_MKPLIGHT_PLUGIN) {
            const auto light =
                PluginSlots::Read<vrMKPLightSourceController>(reader, vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN, "dropped");
            if (light) Add_Light(light.Get());
            loaded &= static_cast<bool>(light);
        } else {
            PluginSlots::Report_Unknown_Chunk(reader, "dropped");
        }
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

bool vrMKParticleGroup::Split_Off_Model(vrMKPAttachedModelParameters *parameters)
{
    vrMKParticleEmitter *const emitter = Get_Emitter();
    if (!emitter) return false;
    const std::string name =
        std::string(Get_Name()) + "_Model_" + std::to_string(emitter->Get_Particle_Renderable_Count());

    const SmartPtr<vrMKPModel> model(new vrMKPModel);
    model->Set_Name(name.substr(0, PluginSlots::MAX_MICRO_CHUNK_TEXT));
    const bool follows = Get_Physics() != nullptr;
    model->Split_From_Group(*this, parameters);
    if (LoadReport::Is_Wanted()) {
        LoadReport::Add("the attached model \"" + std::string(parameters->Get_Name()) + "\" of an old group",
                        "becomes the renderable \"" + name +
                            (follows ? "\", with the group's physics and a killer; the group follows it" : "\""));
    }
    return emitter->Insert_Renderable(model.Get(), emitter->Get_Renderable_Index(this));
}

void vrMKPModel::Split_From_Group(vrMKParticleGroup &group, vrMKPAttachedModelParameters *parameters)
{
    AttachedModel = parameters;
    Copy_Placement_From(group);
    Set_Physics(group.Get_Physics());
    if (Get_Physics()) {
        Killer = PluginSlots::Make<vrMKPRenderableModifier>(kvrMKPRenderableKillerModifier);
        const auto follow = PluginSlots::Make<vrMKPFollowRenderablePhysics>(kvrMKPFollowRenderablePhysics);
        follow->Set_Parent_Name(Get_Name());
        group.Set_Physics(follow.Get());
    }
    Finish_Load();
}

bool vrMKParticleGroup::Load_Legacy_Layers(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader->Open_Chunk();) {
        switch (reader->Cur_Chunk_ID()) {
        case VR_CHUNK_LEGACY_LAYERS_INFO:
        case VR_CHUNK_LEGACY_LAYERS_VARS: break;
        case VR_CHUNK_MKPARTICLE: loaded &= Load_Layer(*reader); break;
        default:
            isKnown = false;
            PluginSlots::Report_Unknown_Chunk(*reader, "ends the old layers: what follows in them is dropped");
        }
        loaded &= reader->Close_Chunk();
    }
    Complete_Definition();
    return loaded;
}

bool vrMKParticleGroup::Load_Legacy_Group(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader->Open_Chunk();) {
        loaded &= Load_Legacy_Chunk(*reader, isKnown);
        loaded &= reader->Close_Chunk();
    }
    Finish_Load();
    return loaded;
}

bool vrMKParticleGroup::Load_Legacy_Chunk(ChunkFile::ChunkFileReaderClass &reader, bool &isKnown)
{
    switch (reader.Cur_Chunk_ID()) {
    case VR_CHUNK_LEGACY_GROUP_VARS: Load_Legacy_Variables(reader); return true;
    case VR_CHUNK_LEGACY_LIGHTS: return Load_Legacy_Lights(reader);
    case VR_CHUNK_LEGACY_PHYSICS_LIST: return Load_Legacy_Physics(reader);
    case VR_CHUNK_MKPARTICLE: return Load_Layer(reader);
    }
    isKnown = false;
    PluginSlots::Report_Unknown_Chunk(reader, "ends the old group: what follows in it is dropped");
    return true;
}

/// The numbers of these variables but for the name's are lost, so that guessing at them would do more harm than the
/// defaults.
void vrMKParticleGroup::Load_Legacy_Variables(ChunkFile::ChunkFileReaderClass &reader)
{
    int dropped = 0;
    while (reader.Open_Micro_Chunk()) {
        NameTableRef name;
        if (reader.Cur_Micro_Chunk_ID() != VR_VAR_LEGACY_GROUP_NAME)
            ++dropped;
        else if (PluginSlots::Read_Micro_Chunk_Text(reader, name))
            Set_Name(name.Get_String());
        reader.Close_Micro_Chunk();
    }
    if (dropped > 0 && LoadReport::Is_Wanted())
        LoadReport::Add(std::to_string(dropped) + " variables of an old group", "dropped: defaults stand in");
}

bool vrMKParticleGroup::Load_Legacy_Lights(ChunkFile::ChunkFileReaderClass &reader)
{
    bool closed = true;
    while (reader.Open_Chunk()) {
        if (reader.Cur_Chunk_ID() == VR_CHUNK_LEGACY_LIGHT && vrMKPLoadLimit::Take(reader)) {
            const LoadReport::Place place("light", Light_Count());
            Add_Light(PluginSlots::Make<vrMKPLightSourceController>(kvrMKPLegacyLightSourceController).Get());
            LoadReport::Add("a light of an old group", "becomes a \"Legacy Light\" with its default values");
        }
        closed &= reader.Close_Chunk();
    }
    return closed;
}

bool vrMKParticleGroup::Load_Legacy_Physics(ChunkFile::ChunkFileReaderClass &reader)
{
    bool closed = true;
    while (reader.Open_Chunk()) {
        if (reader.Cur_Chunk_ID() == VR_CHUNK_LEGACY_PHYSICS) {
            const LoadReport::Place place("physics");
            Set_Physics(PluginSlots::Make<vrMKPRenderablePhysics>(kvrMKPWaveAndSpinRenderablePhysics).Get());
            LoadReport::Add("the motion of an old group", "becomes \"Wave and Spin\" with its default values");
        }
        closed &= reader.Close_Chunk();
    }
    return closed;
}

bool vrMKParticleGroup::Save(ChunkFile::ChunkFileWriterClass *writer)
{
    if (!MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool saved = writer->Open_Chunk("VR_CHUNK_MKPARTICLEGROUP", VR_CHUNK_MKPARTICLEGROUP);
    saved &= Save_Block(*writer);
    for (const auto &light : Lights) {
        saved &= writer->Open_Chunk("VR_CHUNK_MKPLIGHT_PLUGINS", VR_CHUNK_MKPLIGHT_PLUGINS);
        saved &= PluginSlots::Save(*writer, "VR_CHUNK_MKPLIGHT_PLUGIN", VR_CHUNK_MKPLIGHT_PLUGIN, *light);
        saved &= writer->Close_Chunk();
    }
    for (const auto &particle : Particles) {
        saved &= writer->Open_Chunk("VR_CHUNK_MKPARTICLE", VR_CHUNK_MKPARTICLE);
        saved &= particle->Save(writer);
        saved &= writer->Close_Chunk();
    }
    saved &= writer->Close_Chunk();
    return saved;
}
