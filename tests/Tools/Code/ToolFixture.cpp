#include "Tools/Code/ToolFixture.h"

#include "Code/EmitterData.h"
#include "Code/VisualizerParameters.h"
#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>

namespace ToolTest
{

namespace fs = std::filesystem;

Layer Old_Heat_Layer(const std::string &name)
{
    return {name, kvrMKPShapeSpawner, kvrMKPBillboardVisualizer, OLD_HEAT_SHADER};
}

Layer Heat_Layer(const std::string &name)
{
    return {name, kvrMKPShapeSpawner, kvrMKPHeatAndSaturationVisualizer, ""};
}

Layer Plain_Layer(const std::string &name)
{
    return {name, kvrMKPShapeSpawner, kvrMKPBillboardVisualizer, ""};
}

SmartPtr<vrMKParticleEmitter> Make_Emitter(const std::vector<Layer> &layers)
{
    SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    const SmartPtr<vrMKParticleGroup> group(new vrMKParticleGroup);
    for (const Layer &layer : layers) {
        const SmartPtr<vrMKParticle> particle(new vrMKParticle);
        particle->Set_Name(layer.name);
        if (layer.spawner != NO_PLUGIN)
            particle->Set_Spawner(static_cast<vrMKPSpawner *>(vrMKPPlugin::Create_Plugin(layer.spawner)));
        if (layer.visualizer != NO_PLUGIN)
            particle->Set_Visualizer(static_cast<vrMKPVisualizer *>(vrMKPPlugin::Create_Plugin(layer.visualizer)));
        if (!layer.shader.empty())
            Find_String_Parameter(*particle->Get_Visualizer(), "Shader Name")->Set_Value(layer.shader);
        group->Add_Particle(particle.Get());
    }
    if (!layers.empty()) emitter->Add_Renderable(group.Get());
    return emitter;
}

void Write_Emitter(const std::string &path, const std::vector<Layer> &layers)
{
    Write_Emitter(path, *Make_Emitter(layers));
}

void Write_Emitter(const std::string &path, vrMKParticleEmitter &emitter)
{
    FileClass file(path);
    ChunkFileWriterClass writer(&file, 129, 6, false);
    if (!emitter.Save(&writer) || !writer.Close()) throw std::runtime_error("can't write " + path);
}

void Write_Model(const std::string &path)
{
    FileClass file(path);
    ChunkFileWriterClass writer(&file, 129, 6, false);
    writer.Open_Chunk(0x100);
    writer.Write_Int32(1);
    writer.Close_Chunk();
    if (!writer.Close()) throw std::runtime_error("can't write " + path);
}

SmartPtr<vrMKParticleEmitter> Read_Emitter(const std::string &path)
{
    FileClass file(path);
    ChunkFileReaderClass reader(&file);
    SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    if (!reader.Open_Chunk() || !emitter->Load(&reader)) throw std::runtime_error("can't read " + path);
    return emitter;
}

int Read_Level(const std::string &path, int layer)
{
    const SmartPtr<vrMKParticleEmitter> emitter = Read_Emitter(path);
    const SmartPtr<vrMKPRenderable> renderable = emitter->Get_Particle_Renderable(0);
    return MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get())->Get_Particle(layer)->Get_Spawner()->Get_LOD();
}

void Set_Read_Only(const std::string &path, bool readOnly)
{
    const fs::perms all = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    fs::permissions(path, readOnly ? all : fs::perms::owner_write,
                    readOnly ? fs::perm_options::remove : fs::perm_options::add);
}

void Workplace::Add_Emitter(const std::string &fileName, const std::vector<Layer> &layers)
{
    Write_Emitter(Model_Path(fileName), layers);
}

void Workplace::Bring_Up(ApplicationCore &core) const
{
    directory.Make_Directory("game/Art/Models");
    core.Get_Settings().WorkingDirectory = directory / "game";
    if (!core.Initialize()) throw std::runtime_error("the core doesn't come up");
}

Tool::Tool(std::unique_ptr<PreviewDriver> preview) : core(std::move(preview))
{
    Bring_Up(core);
    form = std::make_unique<HeadlessMainForm>(core);
    form->Activate();
}

void Tool::Scan()
{
    if (!core.Scan_Emitter_Files()) throw std::runtime_error("the scan failed:\n" + reports.Get_Text());
}

std::vector<std::string> Tool::Box_Texts() const
{
    std::vector<std::string> texts;
    for (const ShownMessageBox &box : application.Get_Message_Boxes()) texts.push_back(box.Text);
    return texts;
}

std::vector<std::string> Tool::Modified_Names() const
{
    std::vector<std::string> names;
    if (core.Get_Modified_Emitters())
        for (const auto &[name, emitterData] : *core.Get_Modified_Emitters()) names.push_back(name);
    return names;
}

} // namespace ToolTest
