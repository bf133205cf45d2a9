#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "MKLib/File/RAMFile.h"
#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "vrGraphics/effect/vrMKPRenderablePool.h"
#include "vrGraphics/plugins/ensembles/Bullet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace MKTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// "0x1500{0 0x1780{..}}": the ids of a file's chunks, those of plugins left out.
std::string Describe_Tree(const Bytes &file)
{
    RAMFileClass memory(file.data(), static_cast<int64_t>(file.size()));
    ChunkFileReaderClass reader(&memory);
    std::string text;
    const auto walk = [&](auto &&self) -> void {
        for (bool first = true; reader.Open_Chunk(); first = false, reader.Close_Chunk()) {
            char id[16];
            std::snprintf(id, sizeof(id), first ? "%x" : " %x", reader.Cur_Chunk_ID());
            text += id;
            const uint32_t chunk = reader.Cur_Chunk_ID();
            const bool isOwner = chunk >= 0x1500 && chunk != 0x1681 && chunk != 0x1683 && chunk != 0x16c1 &&
                                 chunk != 0x1682 && chunk != 0x1540;
            if (!isOwner || !reader.Contains_Chunks()) continue;
            text += "{";
            self(self);
            text += "}";
        }
    };
    walk(walk);
    return text;
}

TEST(Emitter, ASaveWritesTheChunksInTheirFixedOrder)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Model({Parent(0x1680, {Plugin(0x1682, 119)}), Attached_Model("a", "b", false), Block("m")}), Leaf(0x1502, 1),
         Group({Layer("x", 34, 27, 19, 22), Parent(0x16c0, {Plugin(0x16c1, 107), Plugin(0x16c1, 108)}),
                Block("g", {}, {Plugin(0x1683, 120), Plugin(0x1681, 83)})}),
         Leaf(0, std::string("old name"))})));
    EXPECT_EQ(Describe_Tree(Save_Emitter(*loaded.emitter)),
              "1500{0 1800{1700{1701 1680{1681}} 16a0{16a1} 1680{1682}} "
              "1780{1700{1701 1680{1681 1683}} 16c0{16c1} 16c0{16c1} 1540} 1502}");
}

TEST(Emitter, ASavedFileSavesToTheSameBytesInEveryForm)
{
    const std::string reference = Describe_Tree(Rich_File());
    for (const uint32_t mode : All_Emitter_Modes()) {
        SCOPED_TRACE(mode);
        const Bytes saved = Rich_File(mode);
        const LoadedEmitter loaded = Load_Emitter(saved);
        EXPECT_TRUE(loaded.result);
        EXPECT_THAT(loaded.findings, IsEmpty()) << loaded.Describe_Findings();
        EXPECT_EQ(Save_Emitter(*loaded.emitter, mode), saved);
        EXPECT_EQ(Describe_Tree(Save_Emitter(*loaded.emitter)), reference);
    }
}

TEST(Emitter, ALayerHasTheBytesThatItsFormatPageShows)
{
    const SmartPtr<vrMKParticle> layer(new vrMKParticle);
    layer->Set_Name("ash");
    layer->Set_Transformer(static_cast<vrMKPTransformer *>(vrMKPPlugin::Create_Plugin(27)));
    RAMFileClass file;
    ChunkFile::ChunkFileWriterClass writer(&file, 0, 6, false);
    writer.Open_Chunk(0x1540);
    EXPECT_TRUE(layer->Save(&writer));
    writer.Close_Chunk();
    EXPECT_TRUE(writer.Close());
    constexpr size_t FILE_HEADER = 36;
    const Bytes bytes(file.Get_Buffer() + FILE_HEADER, file.Get_Buffer() + file.Get_Size());
    EXPECT_THAT(bytes, testing::ElementsAreArray<int>({
                           0x40, 0x15, 0, 0, 0x02, 0, 0, 0x80,                       // layer, two sub-chunks
                           0,    0,    0, 0, 5,    0, 0, 0,    3,  0, 'a', 's', 'h', // name
                           0x02, 0,    0, 0, 2,    0, 0, 0x80,                       // transformer
                           0,    0,    0, 0, 4,    0, 0, 0,    27, 0, 0,   0,        // its kind
                           0x01, 0,    0, 0, 1,    0, 0, 0x80,                       // its data
                           0,    0,    0, 0, 0,    0, 0, 0,                          // no parameters
                       }));
}

TEST(Emitter, TheNameIsThatOfTheFileAndNotTheOneInIt)
{
    const Bytes file = Build(Emitter({Leaf(0, std::string("old"))}));
    const struct
    {
        const char *path;
        const char *name;
    } rows[] = {
        {"Art\\Models\\Fire Burst.vro", "Fire Burst"},
        {"/game/art/models/a.b.vro", "a.b"},
        {"smoke", "smoke"},
        {"", ""},
    };
    for (const auto &row : rows) EXPECT_EQ(Load_Emitter(file, row.path)->Get_Name(), row.name) << row.path;
    EXPECT_EQ(Load_Emitter(file, "dir/" + std::string(300, 'x') + ".vro")->Get_Name().size(), 260u);

    const Bytes saved = Save_Emitter(*Load_Emitter(file, "new.vro").emitter);
    const std::string text(saved.begin(), saved.end());
    EXPECT_NE(text.find("new"), std::string::npos);
    EXPECT_EQ(text.find("old"), std::string::npos);
}

TEST(Emitter, RemovalWhenDepletedIsComputedWhateverTheFileSays)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter({Micros(0x1502, {{0, false}, {1, 4.0f}})})));
    EXPECT_TRUE(loaded.result);
    EXPECT_TRUE(loaded->Get_Remove_On_Depleted());
    EXPECT_TRUE(loaded.Has_Finding("", "removal when depleted", "replaced"));
    EXPECT_EQ(loaded->Get_Particle_Renderable_Count(), 0);
}

TEST(Emitter, UnknownChunksOfTheRootAreSkipped)
{
    const LoadedEmitter loaded = Load_Emitter(
        Build(Emitter({Leaf(7, 1), Parent(0x9999, {Leaf(1, true), Group({Block("hidden")})}), Group({Block("a")})})));
    EXPECT_TRUE(loaded.result);
    ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 1);
    EXPECT_EQ(loaded.Group_At(0).Get_Name(), "a");
    EXPECT_TRUE(loaded.Has_Finding("", "unknown chunk 0x7", "dropped"));
    EXPECT_TRUE(loaded.Has_Finding("", "unknown chunk 0x9999", "dropped"));
}

TEST(Emitter, AnUnknownChunkEndsItsGroupAndNotTheNext)
{
    const LoadedEmitter loaded = Load_Emitter(
        Build(Emitter({Group({Block("a"), Leaf(1, 1), Layer("lost", 34, 27, 19, 22)}),
                       Model({Leaf(1, 1), Block("unread")}), Group({Block("b"), Layer("kept", 34, 27, 19, 22)})})));
    ASSERT_EQ(loaded->Get_Particle_Renderable_Count(), 3);
    EXPECT_EQ(loaded.Group_At(0).Particle_Count(), 0);
    EXPECT_EQ(loaded.Get<vrMKPModel>(1).Get_Name(), "");
    EXPECT_EQ(loaded.Layer_At(2, 0).Get_Name(), "kept");
}

TEST(Emitter, LightsOfOneChunkAreSavedInOneEach)
{
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(
        {Group({Parent(0x16c0, {Plugin(0x16c1, 108), Plugin(0x16c1, 34), Leaf(3, 1), Plugin(0x16c1, 107)})})})));
    const vrMKParticleGroup &group = loaded.Group_At(0);
    ASSERT_EQ(group.Light_Count(), 2);
    EXPECT_EQ(Plugin_ID(group.Get_Light(0)), 108);
    EXPECT_EQ(Plugin_ID(group.Get_Light(1)), 107);
    EXPECT_TRUE(loaded.Has_Finding("renderable 0 / light 1", "\"Shape\"", "dropped")) << loaded.Describe_Findings();
}

TEST(Emitter, IndicesOutOfRangeGiveNull)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    for (const int index : {-1, 2, 1000}) {
        EXPECT_FALSE(loaded->Get_Particle_Renderable(index));
        EXPECT_EQ(loaded.Group_At(0).Get_Particle(index), nullptr);
        EXPECT_EQ(loaded.Group_At(0).Get_Light(index), nullptr);
        EXPECT_EQ(loaded.Group_At(0).Get_Modifier(index), nullptr);
    }
}

TEST(Emitter, RenderablesAreAddedAndRemovedInPlace)
{
    const EditorMode mode(true);
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    emitter->Set_Scale_Enabled(true);
    const SmartPtr<vrMKPRenderable> a(new vrMKPModel);
    const SmartPtr<vrMKPRenderable> b(new vrMKPModel);
    const SmartPtr<vrMKPRenderable> c(new vrMKPModel);
    a->Set_Renderable_State(vrMKPRenderable::STATE_STARTED, true);
    EXPECT_TRUE(emitter->Add_Renderable(a.Get()));
    EXPECT_TRUE(emitter->Insert_Renderable(b.Get(), 0));
    EXPECT_TRUE(emitter->Insert_Renderable(c.Get(), 99));
    EXPECT_EQ(emitter->Get_Particle_Renderable(0), b);
    EXPECT_EQ(emitter->Get_Particle_Renderable(1), a);
    EXPECT_EQ(emitter->Get_Particle_Renderable(2), c);
    EXPECT_TRUE(a->Get_Scale_Enabled());
    EXPECT_EQ(a->Get_Renderable_State(), 0) << "adding puts it back to the time before its start";

    EXPECT_TRUE(emitter->Remove_Renderable(a.Get()));
    EXPECT_FALSE(emitter->Remove_Renderable(a.Get()));
    EXPECT_EQ(a->Get_Emitter(), nullptr);
    EXPECT_EQ(emitter->Get_Particle_Renderable(1), c);
    EXPECT_EQ(emitter->Get_Pool()->Get_Count(), 0u) << "in the editor nothing goes to the pool";
}

TEST(Emitter, ACopyOwnsItsRenderablesAndSharesPluginsUnlessEdited)
{
    const LoadedEmitter loaded = Load_Emitter(Rich_File());
    const Bytes saved = Save_Emitter(*loaded.emitter);
    for (const bool inEditor : {false, true}) {
        SCOPED_TRACE(inEditor);
        const EditorMode mode(inEditor);
        const SmartPtr<vrMKParticleEmitter> clone(loaded->Clone(VR_CLONE_COPY));
        EXPECT_EQ(Save_Emitter(*clone), saved);
        EXPECT_EQ(clone->Get_Instance_Count(), 2);
        EXPECT_EQ(clone->Get_Pool(), loaded->Get_Pool());
        ASSERT_EQ(clone->Get_Particle_Renderable_Count(), 2);
        auto &group = *MK_Dynamic_Cast<vrMKParticleGroup>(clone->Get_Particle_Renderable(0).Get());
        EXPECT_NE(&group, &loaded.Group_At(0));
        EXPECT_EQ(group.Get_Emitter(), clone.Get());
        EXPECT_EQ(group.Get_Particle(0)->Get_Group(), &group);
        EXPECT_EQ(group.Get_Physics() == loaded.Group_At(0).Get_Physics(), !inEditor);
        EXPECT_EQ(group.Get_Modifier(0) == loaded.Group_At(0).Get_Modifier(0), !inEditor);
        EXPECT_EQ(group.Get_Light(0) == loaded.Group_At(0).Get_Light(0), !inEditor);
        auto &model = *MK_Dynamic_Cast<vrMKPModel>(clone->Get_Particle_Renderable(1).Get());
        EXPECT_EQ(model.Get_Killer() == loaded.Get<vrMKPModel>(1).Get_Killer(), !inEditor);
        EXPECT_EQ(model.Get_Attached_Model() == loaded.Get<vrMKPModel>(1).Get_Attached_Model(), !inEditor);
    }
    EXPECT_EQ(loaded->Get_Instance_Count(), 1);
}

TEST(Emitter, AReleasedInstancesRenderablesServeTheNext)
{
    const EditorMode mode(false);
    const LoadedEmitter loaded = Load_Emitter(Small_File());
    const vrMKPRenderable *address = nullptr;
    {
        const SmartPtr<vrMKParticleEmitter> clone(loaded->Clone(VR_CLONE_COPY));
        address = clone->Get_Particle_Renderable(0).Get();
    }
    EXPECT_EQ(loaded->Get_Pool()->Get_Count(), 1u);
    const SmartPtr<vrMKParticleEmitter> next(loaded->Clone(VR_CLONE_COPY));
    EXPECT_EQ(next->Get_Particle_Renderable(0).Get(), address);
    EXPECT_EQ(next->Get_Particle_Renderable(0)->Get_Emitter(), next.Get());
    EXPECT_EQ(loaded->Get_Pool()->Get_Count(), 0u);

    const SmartPtr<vrMKParticleEmitter> kept(loaded->Clone(VR_CLONE_COPY));
    kept->Get_Particle_Renderable(0)->Set_Renderable_State(vrMKPRenderable::STATE_IN_SCENE, true);
    {
        const SmartPtr<vrMKParticleEmitter> last(loaded->Clone(VR_CLONE_COPY));
        last->Set_Keep_Renderables(true);
    }
    EXPECT_TRUE(kept->Remove_Renderable(kept->Get_Particle_Renderable(0).Get()));
    EXPECT_EQ(loaded->Get_Pool()->Get_Count(), 0u) << "neither what plays in a scene nor what is kept goes to the pool";
}

TEST(Emitter, AnInstanceCloneTakesTheProjectileAlone)
{
    const struct
    {
        const char *what;
        std::vector<Chunk> renderables;
        bool hasPhysics;
        bool hasProjectile;
    } rows[] = {
        {"projectile physics",
         {Group({Block("a", {}, {Plugin(0x1681, 84)})}), Model({Block("b", {}, {Plugin(0x1681, 85)})})},
         true,
         false},
        {"a bullet layer",
         {Group({Block("a"), Layer("x", 34, 27, 19, 22), Layer("y", 34, 27, 88, 22, {10, 87})})},
         false,
         true},
        {"neither", {Group({Block("a", {}, {Plugin(0x1681, 84)}), Layer("x", 34, 27, 19, 22, {10})})}, false, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const LoadedEmitter loaded = Load_Emitter(Build(Emitter(row.renderables)));
        const SmartPtr<vrMKParticleEmitter> instance(loaded->Clone(VR_CLONE_INSTANCE));
        const SmartPtr<vrMKParticleEmitter> second(instance->Clone(VR_CLONE_INSTANCE));
        for (const vrMKParticleEmitter *clone : {instance.Get(), second.Get()}) {
            EXPECT_TRUE(clone->Is_Instance_Clone());
            EXPECT_EQ(clone->Get_Particle_Renderable_Count(), 0);
            EXPECT_EQ(clone->Get_Shared_Physics() != nullptr, row.hasPhysics);
            EXPECT_EQ(clone->Get_Shared_Projectile() != nullptr, row.hasProjectile);
        }
        if (row.hasPhysics) {
            EXPECT_NE(instance->Get_Shared_Physics(), second->Get_Shared_Physics()) << "cloned";
        }
        EXPECT_EQ(instance->Get_Shared_Projectile(), second->Get_Shared_Projectile()) << "shared";
        EXPECT_EQ(loaded->Get_Instance_Count(), 3);
    }
}

TEST(Emitter, ManyInstancesAreWarnedOfFromTheFiveThousandAndFirstOn)
{
    const SmartPtr<vrMKParticleEmitter> prototype(new vrMKParticleEmitter);
    prototype->Set_Name("rain");
    std::vector<SmartPtr<vrMKParticleEmitter>> clones;
    const Reports reports;
    for (int count = 2; count <= 5000; ++count) clones.emplace_back(prototype->Clone(VR_CLONE_INSTANCE));
    EXPECT_THAT(reports.Get_Logs(), IsEmpty());
    clones.emplace_back(prototype->Clone(VR_CLONE_INSTANCE));
    EXPECT_THAT(reports.Get_Logs(), ElementsAre(testing::HasSubstr("WARNING: Extremely large number of instances of "
                                                                   "particle emitter: rain created (5001)")));
}

TEST(Emitter, MisuseIsAsserted)
{
    const LoadedEmitter loaded = Load_Emitter(Small_File());
    const Reports reports;
    EXPECT_FALSE(loaded->Load(nullptr));
    EXPECT_FALSE(loaded->Save(nullptr));
    EXPECT_FALSE(loaded->Add_Renderable(nullptr));
    EXPECT_FALSE(loaded->Copy_Renderables_From(nullptr));
    EXPECT_FALSE(loaded->Copy_Renderables_From(loaded.emitter.Get()));
    EXPECT_FALSE(loaded.Group_At(0).Load(nullptr));
    EXPECT_FALSE(loaded.Group_At(0).Save(nullptr));
    EXPECT_EQ(reports.Get_Asserts(),
              (std::vector<std::string>{"reader == NULL", "writer == NULL", "pg != NULL", "other != NULL",
                                        "MKPRenderables.size() == 0", "reader == NULL", "writer == NULL"}));
}

} // namespace
