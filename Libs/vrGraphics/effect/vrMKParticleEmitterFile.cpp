#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/RenderableChunks.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

/// The root of an emitter file, with the forms that it has had.

namespace
{

enum EmitterChunkEnum : uint32_t // on disk: never renumber
{
    VR_MKPARTICLE_EMITTER_NAME_CHUNK = 0,
    VR_CHUNK_LEGACY_ALWAYS_AWAKE = 1,
    VR_CHUNK_LEGACY_UNUSED_FLAG = 2,
    VR_CHUNK_LEGACY_IGNORED_3 = 3,
    VR_CHUNK_LEGACY_GROUP_4 = 4,
    VR_CHUNK_LEGACY_IGNORED_5 = 5,
    VR_CHUNK_LEGACY_GROUP_6 = 6,
    VR_CHUNK_MKPEMITTER_VARS = 0x1502,
    VR_CHUNK_LEGACY_LAYERS = 0x1520,
    VR_CHUNK_LEGACY_GROUP = 0x1600
};

enum EmitterVarEnum : uint32_t // on disk: never renumber
{
    VR_VAR_MKPEMITTER_REMOVE_ON_DEPLETED = 0
};

constexpr size_t MAX_BASE_NAME = 260;

} // namespace

bool vrMKParticleEmitter::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    const vrMKPLoadLimit limit;
    vrMKParticleGroup *current = nullptr; // of the chunks that don't say which group they are about
    bool loaded = true;
    while (reader->Open_Chunk()) {
        loaded &= Load_Chunk(*reader, current);
        loaded &= reader->Close_Chunk();
    }
    const bool removedInFile = RemoveOnDepleted;
    Finish_Load();
    if (removedInFile != RemoveOnDepleted && LoadReport::Is_Wanted())
        LoadReport::Add("the file's own value of removal when depleted", "replaced by the one that its groups give");
    Set_Name(MKPlatform::Path_Base_Name(reader->Get_File_Name()).substr(0, MAX_BASE_NAME));
    for (const auto &renderable : MKPRenderables)
        if (renderable->Get_Always_Simulate()) Set_Flag(EMITTER_ALWAYS_SIMULATES, true);
    return loaded && !vrMKPLoadLimit::Is_Exceeded();
}

bool vrMKParticleEmitter::Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup *&current)
{
    const uint32_t id = reader.Cur_Chunk_ID();
    switch (id) {
    case VR_MKPARTICLE_EMITTER_NAME_CHUNK:
    case VR_CHUNK_LEGACY_IGNORED_3:
    case VR_CHUNK_LEGACY_IGNORED_5: return true;
    case VR_CHUNK_MKPEMITTER_VARS: return Load_Variables(reader);
    case VR_CHUNK_MKPMODEL: Load_Model(reader); return true;
    case VR_CHUNK_MKPARTICLEGROUP: Load_Group(reader, Add_Group(reader), &vrMKParticleGroup::Load); return true;
    case VR_CHUNK_LEGACY_GROUP:
        LoadReport::Add("a group of the old form", "saved in today's form");
        Load_Group(reader, Add_Group(reader), &vrMKParticleGroup::Load_Legacy_Group);
        return true;
    case VR_CHUNK_LEGACY_ALWAYS_AWAKE:
    case VR_CHUNK_LEGACY_UNUSED_FLAG:
    case VR_CHUNK_LEGACY_GROUP_4:
    case VR_CHUNK_LEGACY_GROUP_6:
    case VR_CHUNK_LEGACY_LAYERS:
        LoadReport::Add("chunk " + std::to_string(id) + " of the old form", "becomes part of a group");
        if (!current) current = Add_Group(reader);
        if (current && id == VR_CHUNK_LEGACY_ALWAYS_AWAKE) Load_Always_Awake(reader, *current);
        if (id == VR_CHUNK_LEGACY_LAYERS) Load_Group(reader, current, &vrMKParticleGroup::Load_Legacy_Layers);
        return true;
    }
    PluginSlots::Report_Unknown_Chunk(reader, "dropped");
    return true;
}

/// A new group at the end of the list, or null when there may be no more.
vrMKParticleGroup *vrMKParticleEmitter::Add_Group(const ChunkFile::ChunkFileReaderClass &reader)
{
    if (!vrMKPLoadLimit::Take(reader)) return nullptr;
    auto *group = new vrMKParticleGroup;
    Add_Renderable(group);
    return group;
}

/// What a renderable lost doesn't make the emitter's load a failure.
void vrMKParticleEmitter::Load_Group(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup *group,
                                     bool (vrMKParticleGroup::*load)(ChunkFile::ChunkFileReaderClass *))
{
    if (!group) return;
    const LoadReport::Place place("renderable", Get_Renderable_Index(group));
    (group->*load)(&reader);
}

void vrMKParticleEmitter::Load_Model(ChunkFile::ChunkFileReaderClass &reader)
{
    if (!vrMKPLoadLimit::Take(reader)) return;
    const LoadReport::Place place("renderable", Get_Particle_Renderable_Count());
    auto *model = new vrMKPModel;
    Add_Renderable(model);
    model->Load(&reader);
}

void vrMKParticleEmitter::Load_Always_Awake(ChunkFile::ChunkFileReaderClass &reader, vrMKParticleGroup &group)
{
    bool alwaysAwake = false;
    if (reader.Read_Bool(alwaysAwake)) group.Set_Always_Awake(alwaysAwake);
}

bool vrMKParticleEmitter::Load_Variables(ChunkFile::ChunkFileReaderClass &reader)
{
    bool loaded = true;
    while (reader.Open_Micro_Chunk()) {
        if (reader.Cur_Micro_Chunk_ID() == VR_VAR_MKPEMITTER_REMOVE_ON_DEPLETED)
            loaded &= reader.Read_Bool(RemoveOnDepleted);
        loaded &= reader.Close_Micro_Chunk();
    }
    return loaded;
}

void vrMKParticleEmitter::Finish_Load()
{
    RemoveOnDepleted = true; // whatever the file said
    for (const auto &renderable : MKPRenderables) {
        renderable->Complete_Definition();
        const uint8_t state = renderable->Get_Renderable_State();
        if (renderable->Get_Marker()) Set_Flag(EMITTER_HAS_MARKED_RENDERABLE, true);
        if (state & vrMKPRenderable::STATE_TELLS_EMITTER) Set_Flag(EMITTER_HAS_TELLING_RENDERABLE, true);
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get());
        if (!group)
            Set_Flag(EMITTER_LAST_GROUP_TELLS, false);
        else if (group->Get_Group_States() & vrMKParticleGroup::GROUP_STATE_TELLS_EMITTER)
            Set_Flag(EMITTER_LAST_GROUP_TELLS, true);
        if (state & vrMKPRenderable::STATE_OUTLIVES_DEPLETION) RemoveOnDepleted = false;
    }
}

bool vrMKParticleEmitter::Save(ChunkFile::ChunkFileWriterClass *writer)
{
    if (!MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool saved = writer->Open_Chunk("VR_CHUNK_MKPEMITTER", VR_CHUNK_MKPEMITTER);
    saved &= writer->Open_Chunk("VR_MKPARTICLE_EMITTER_NAME_CHUNK", VR_MKPARTICLE_EMITTER_NAME_CHUNK);
    saved &= writer->Write_String(Get_Name());
    saved &= writer->Close_Chunk();
    for (const auto &renderable : MKPRenderables) saved &= renderable->Save(writer);
    saved &= Save_Variables(*writer);
    saved &= writer->Close_Chunk();
    return saved;
}

bool vrMKParticleEmitter::Save_Variables(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("VR_CHUNK_MKPEMITTER_VARS", VR_CHUNK_MKPEMITTER_VARS);
    saved &= writer.Open_Micro_Chunk("VR_VAR_MKPEMITTER_REMOVE_ON_DEPLETED", VR_VAR_MKPEMITTER_REMOVE_ON_DEPLETED);
    saved &= writer.Write_Bool(RemoveOnDepleted);
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Close_Chunk();
    return saved;
}
