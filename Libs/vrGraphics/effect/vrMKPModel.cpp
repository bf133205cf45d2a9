#include "vrGraphics/effect/vrMKPModel.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/RenderableChunks.h"
#include "vrGraphics/effect/vrMKPContext.h"
#include "vrGraphics/plugins/renderables/Physics.h"

MK_DEFINE_RUN_TIME_TYPE(vrMKPModel, vrMKPRenderable)

namespace
{

enum ModelChunkEnum : uint32_t // on disk: never renumber
{
    VR_CHUNK_MKPARTICLEGROUP_ATTACHED_MODEL_VARS = 0x16a1,
    VR_CHUNK_MKPRENDERABLE_KILLER = 0x1682
};

enum AttachedModelVarEnum : uint32_t // on disk: never renumber
{
    VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_NAME = 0,
    VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ANIMATION = 1,
    VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ENABLED = 2
};

} // namespace

bool vrMKPAttachedModelParameters::Load(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader.Open_Chunk();) {
        isKnown = reader.Cur_Chunk_ID() == VR_CHUNK_MKPARTICLEGROUP_ATTACHED_MODEL_VARS;
        if (isKnown)
            loaded &= Load_Variables(reader);
        else
            PluginSlots::Report_Unknown_Chunk(reader, "ends the attached model: what follows in it is dropped");
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

bool vrMKPAttachedModelParameters::Load_Variables(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    while (reader.Open_Micro_Chunk()) {
        switch (reader.Cur_Micro_Chunk_ID()) {
        case VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_NAME:
            loaded &= PluginSlots::Read_Micro_Chunk_Text(reader, Name);
            break;
        case VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ANIMATION:
            loaded &= PluginSlots::Read_Micro_Chunk_Text(reader, Animation);
            break;
        case VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ENABLED: loaded &= reader.Read_Bool(Enabled); break;
        }
        loaded &= reader.Close_Micro_Chunk();
    }
    return loaded;
}

bool vrMKPAttachedModelParameters::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL", VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL);
    saved &=
        writer.Open_Chunk("VR_CHUNK_MKPARTICLEGROUP_ATTACHED_MODEL_VARS", VR_CHUNK_MKPARTICLEGROUP_ATTACHED_MODEL_VARS);
    saved &= writer.Open_Micro_Chunk("VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_NAME",
                                     VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_NAME);
    saved &= writer.Write_String(Get_Name());
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Open_Micro_Chunk("VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ANIMATION",
                                     VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ANIMATION);
    saved &= writer.Write_String(Get_Animation());
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Open_Micro_Chunk("VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ENABLED",
                                     VR_VAR_MKPARTICLEGROUP_ATTACHED_MODEL_ENABLED);
    saved &= writer.Write_Bool(Enabled);
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Close_Chunk();
    saved &= writer.Close_Chunk();
    return saved;
}

vrMKPModel::vrMKPModel(const vrMKPModel &other)
    : vrMKPRenderable(other), AttachedModel(other.AttachedModel),
      Killer(PluginSlots::Copy(other.Killer, vrMKPContext::InEditor))
{
    if (vrMKPContext::InEditor && AttachedModel) AttachedModel = new vrMKPAttachedModelParameters(*other.AttachedModel);
}

void vrMKPModel::Start()
{
    vrMKPRenderable::Start();
    KillerData = Killer ? Killer->Create_Buffer_Data(Get_State()) : nullptr;
}

void vrMKPModel::Update_Modifiers(vrMKPRenderableModifierContext context)
{
    vrMKPRenderable::Update_Modifiers(context);
    context.Data = KillerData.Get();
    if (Killer) Killer->Update(Get_Outcome(), context);
}

vrMKPModel *vrMKPModel::Clone(vrCloneType) const
{
    return new vrMKPModel(*this);
}

bool vrMKPModel::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader->Open_Chunk();) {
        loaded &= Load_Chunk(*reader, isKnown);
        loaded &= reader->Close_Chunk();
    }
    return loaded;
}

bool vrMKPModel::Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, bool &isKnown)
{
    switch (reader.Cur_Chunk_ID()) {
    case VR_CHUNK_MKPRENDERABLE: return Load_Block(reader);
    case VR_CHUNK_MKPRENDERABLE_ATTACHED_MODEL: {
        const LoadReport::Place place("attached model");
        AttachedModel = new vrMKPAttachedModelParameters;
        return AttachedModel->Load(reader);
    }
    case VR_CHUNK_MKPRENDERABLE_PLUGINS: return Load_Killer(reader);
    }
    isKnown = false;
    PluginSlots::Report_Unknown_Chunk(reader, "ends the model: what follows in it is dropped");
    return true;
}

bool vrMKPModel::Load_Killer(ChunkFile::ChunkFileReaderClass &reader)
{
    const LoadReport::Place place("killer");
    bool loaded = true;
    for (bool isKnown = true; isKnown && reader.Open_Chunk();) {
        isKnown = reader.Cur_Chunk_ID() == VR_CHUNK_MKPRENDERABLE_KILLER;
        if (isKnown) {
            Killer = PluginSlots::Read<vrMKPRenderableModifier>(reader, vrMKPPlugin::RENDERABLE_KILLER_PLUGIN,
                                                                "the model is left without one");
            loaded &= static_cast<bool>(Killer);
        } else {
            PluginSlots::Report_Unknown_Chunk(reader, "ends the model's plugins: what follows in them is dropped");
        }
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

bool vrMKPModel::Save(ChunkFile::ChunkFileWriterClass *writer)
{
    if (!MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool saved = writer->Open_Chunk("VR_CHUNK_MKPMODEL", VR_CHUNK_MKPMODEL);
    saved &= Save_Block(*writer);
    if (AttachedModel) saved &= AttachedModel->Save(*writer);
    if (Killer) {
        saved &= writer->Open_Chunk("VR_CHUNK_MKPRENDERABLE_PLUGINS", VR_CHUNK_MKPRENDERABLE_PLUGINS);
        saved &= PluginSlots::Save(*writer, "VR_CHUNK_MKPRENDERABLE_KILLER", VR_CHUNK_MKPRENDERABLE_KILLER, *Killer);
        saved &= writer->Close_Chunk();
    }
    saved &= writer->Close_Chunk();
    return saved;
}

size_t vrMKPModel::Get_Memory_Usage(bool includePlugins) const
{
    size_t bytes = vrMKPRenderable::Get_Memory_Usage(includePlugins);
    if (AttachedModel) bytes += sizeof(*AttachedModel);
    return includePlugins ? bytes + PluginSlots::Get_Memory_Usage(Killer.Get()) : bytes;
}

bool vrMKPModel::Is_Same_Definition(const vrMKPRenderable &other) const
{
    if (!vrMKPRenderable::Is_Same_Definition(other)) return false;
    const auto &model = static_cast<const vrMKPModel &>(other);
    return AttachedModel == model.AttachedModel && Killer == model.Killer;
}
