#include "vro/EffectFile.h"

#include "vro/InputFile.h"

#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/RAMFile.h"

#include <cinttypes>
#include <cstdio>

namespace vro
{

namespace
{

/// zlib's, the one that the tool saves with.
constexpr uint32_t COMPRESSION_LEVEL = 6;

} // namespace

SmartPtr<vrMKParticleEmitter> Load_Effect(const std::string &path, std::string &error)
{
    const auto input = InputFile::Open(path, error);
    return input ? Load_Effect(input->Get_File(), error) : nullptr;
}

SmartPtr<vrMKParticleEmitter> Load_Effect(std::string_view bytes, const std::string &name, std::string &error)
{
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    file.Open(name, MKPlatform::FILE_OPEN_GENERIC_READ);
    return Load_Effect(file, error);
}

SmartPtr<vrMKParticleEmitter> Load_Effect(FileClass &file, std::string &error)
{
    vrMKPRenderable::Set_In_Editor(true);
    ChunkFileReaderClass reader(&file);
    if (!reader.Is_Initialized()) {
        error = file.Get_Size() == 0 ? "the file is empty" : "not a chunk file";
        return nullptr;
    }
    if (!reader.Open_Chunk()) {
        error = reader.Is_Damaged() ? "the file is damaged" : "the file holds no chunk";
        return nullptr;
    }
    if (reader.Cur_Chunk_ID() != VR_CHUNK_MKPEMITTER) {
        char id[16];
        std::snprintf(id, sizeof id, "0x%" PRIx32, reader.Cur_Chunk_ID());
        error = std::string("not an emitter file: its first chunk is ") + id;
        return nullptr;
    }
    const SmartPtr<vrMKParticleEmitter> emitter = new vrMKParticleEmitter;
    const bool loaded = emitter->Load(&reader);
    if (reader.Close_Chunk() && loaded && !reader.Is_Damaged()) return emitter;
    error = "the file is damaged";
    return nullptr;
}

bool Save_Effect(vrMKParticleEmitter &emitter, unsigned mode, std::string &bytes, std::string &error)
{
    RAMFileClass file;
    file.Open(emitter.Get_Name(), MKPlatform::FILE_OPEN_GENERIC_WRITE);
    ChunkFileWriterClass writer(&file, mode, COMPRESSION_LEVEL, false);
    const bool saved = emitter.Save(&writer);
    if (!writer.Close() || !saved) {
        error = "the effect can't be written; the log names the reason";
        return false;
    }
    bytes.assign(reinterpret_cast<const char *>(file.Get_Buffer()), static_cast<size_t>(file.Get_Size()));
    return true;
}

} // namespace vro
