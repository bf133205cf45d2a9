#include "EffectTestFiles.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "vrGraphics/effect/vrMKPContext.h"

#include <stdexcept>

namespace MKTest
{

testing::AssertionResult LoadedEmitter::Has_Finding(std::string_view place, std::string_view found,
                                                    std::string_view becomes) const
{
    for (const LoadReport::Finding &finding : findings) {
        if (finding.Place == place && finding.Found.find(found) != std::string::npos &&
            finding.Result.find(becomes) != std::string::npos)
            return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << Describe_Findings();
}

std::string LoadedEmitter::Describe_Findings() const
{
    std::string text;
    for (const LoadReport::Finding &finding : findings)
        text += finding.Place + ": " + finding.Found + ": " + finding.Result + "\n";
    return text;
}

LoadedEmitter Load_Emitter(const Bytes &file, std::string_view name)
{
    RAMFileClass memory(file.data(), static_cast<int64_t>(file.size()));
    memory.Open(name, MKPlatform::FILE_OPEN_GENERIC_READ);
    ChunkFileReaderClass reader(&memory);
    LoadedEmitter loaded;
    loaded.emitter = new vrMKParticleEmitter;
    if (!reader.Is_Initialized() || !reader.Open_Chunk()) return loaded;
    const LoadReport::Collector collector;
    loaded.result = loaded->Load(&reader);
    loaded.result = reader.Close_Chunk() && loaded.result;
    loaded.findings = collector.Get_Findings();
    return loaded;
}

Bytes Save_Emitter(vrMKParticleEmitter &emitter, uint32_t mode)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, mode, 6, false);
    const bool saved = emitter.Save(&writer);
    if (!writer.Close() || !saved) throw std::runtime_error("the emitter can't be saved");
    return Bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
}

Bytes Small_File(uint32_t mode)
{
    return Build(Emitter({Group({Block("fire", {}, {Plugin(0x1681, 83)}),
                                 Layer({Leaf(0, std::string("flames")), Plugin(1, 34, {{116, 12.5f}}), Plugin(3, 19),
                                        Plugin(5, 10)})})}),
                 mode);
}

Bytes Rich_File(uint32_t mode)
{
    const std::vector<Micro> variables{
        {2, true},  {1, true}, {10, 1.5f}, {3, Vector3(1, 2, 3)}, {4, Vector3(-4, 5, -6)}, {5, 0.75f}, {7, 2.0f},
        {8, 10.0f}, {9, 77},   {6, true}};
    const Chunk group =
        Group({Block("fire", variables, {Plugin(0x1681, 84), Plugin(0x1683, 120)}), Light(107), Light(111),
               Layer("flames", 34, 27, 19, 22, {10, 7, 17, 18, 76}), Layer("sparks \xe9", 40, 26, 20, 38, {87, 42})});
    const Chunk model = Model({Block("torch", {}, {Plugin(0x1681, 118)}), Attached_Model("torch.mod", "sway", true),
                               Parent(0x1680, {Plugin(0x1682, 119)})});
    LoadedEmitter loaded = Load_Emitter(Build(Emitter({group, model})));
    return Save_Emitter(*loaded.emitter, mode);
}

int Plugin_ID(const vrMKPPlugin *plugin)
{
    return plugin ? plugin->Get_Plugin_Class() : -1;
}

std::vector<int> Modifier_IDs(const vrMKParticle &layer)
{
    std::vector<int> ids;
    for (int index = 0; index < layer.Get_Modifier_Count(); ++index)
        ids.push_back(Plugin_ID(layer.Get_Modifier(index)));
    return ids;
}

EditorMode::EditorMode(bool inEditor) : Before(vrMKPContext::InEditor)
{
    vrMKPRenderable::Set_In_Editor(inEditor);
}

EditorMode::~EditorMode()
{
    vrMKPRenderable::Set_In_Editor(Before);
}

} // namespace MKTest
