#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/RAMFile.h"
#include "MKLib/LoadReport.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <cstdlib>
#include <vector>

/// Loads any bytes as an emitter file. Whatever comes of it must save, load from its save with nothing lost, and save
/// to the same bytes; and so must its clones, those that own their plugins and those that share them.

namespace
{

using Bytes = std::vector<uint8_t>;

SmartPtr<vrMKParticleEmitter> Load(const uint8_t *data, size_t size, bool &isWhole)
{
    RAMFileClass file(data, static_cast<int64_t>(size));
    file.Open("fuzz.vro", MKPlatform::FILE_OPEN_GENERIC_READ);
    ChunkFile::ChunkFileReaderClass reader(&file);
    if (!reader.Is_Initialized() || !reader.Open_Chunk()) return nullptr;
    const SmartPtr<vrMKParticleEmitter> emitter(new vrMKParticleEmitter);
    const LoadReport::Collector collector;
    isWhole = emitter->Load(&reader);
    if (reader.Cur_Chunk_Depth() != 1) std::abort();
    isWhole = reader.Close_Chunk() && isWhole;
    return emitter;
}

Bytes Save(vrMKParticleEmitter &emitter)
{
    RAMFileClass file;
    ChunkFile::ChunkFileWriterClass writer(&file, ChunkFile::COMPRESSION_NONE, 6, false);
    if (!emitter.Save(&writer) || !writer.Close()) std::abort();
    return Bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
}

void Expect_Clone_Saves(const vrMKParticleEmitter &emitter, const Bytes &saved, bool inEditor)
{
    vrMKPRenderable::Set_In_Editor(inEditor);
    const SmartPtr<vrMKParticleEmitter> clone(emitter.Clone(VR_CLONE_COPY));
    if (Save(*clone) != saved) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    bool isWhole = false;
    const auto emitter = Load(data, size, isWhole);
    if (!emitter) return 0;
    const Bytes saved = Save(*emitter);
    const auto again = Load(saved.data(), saved.size(), isWhole);
    if (!again || !isWhole || Save(*again) != saved) std::abort();
    Expect_Clone_Saves(*emitter, saved, true);
    Expect_Clone_Saves(*emitter, saved, false);
    return 0;
}
