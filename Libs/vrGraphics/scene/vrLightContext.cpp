#include "vrGraphics/scene/vrLightContext.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/drivercommon/vrBoundsUnion.h"

using ChunkFile::ChunkFileReaderClass;
using ChunkFile::ChunkFileWriterClass;

namespace
{

/// Takes over what is read only when it is valid.
template <typename Value>
bool Take(bool isRead, const Value &read, Value &value)
{
    if (!isRead || !Is_Valid(read)) return false;
    value = read;
    return true;
}

bool Read(ChunkFileReaderClass &reader, Vector3 &value)
{
    Vector3 read{0.0f};
    const bool isRead = reader.Read_Vector3(read);
    return Take(isRead, read, value);
}

bool Read(ChunkFileReaderClass &reader, RGBAClass &value)
{
    RGBAClass read;
    const bool isRead = reader.Read_RGBA(read);
    return Take(isRead, read, value);
}

/// Calls `load` in each micro-chunk of the current chunk.
template <typename Load>
bool For_Micro_Chunks(ChunkFileReaderClass &reader, Load &&load)
{
    bool isGood = true;
    while (reader.Open_Micro_Chunk()) {
        isGood &= load(reader.Cur_Micro_Chunk_ID());
        isGood &= reader.Close_Micro_Chunk();
    }
    return isGood;
}

template <typename Write>
bool Write_Micro_Chunk(ChunkFileWriterClass &writer, const char *name, uint32_t id, Write &&write)
{
    bool isGood = writer.Open_Micro_Chunk(name, id);
    isGood &= write();
    return writer.Close_Micro_Chunk() && isGood;
}

} // namespace

void vrLightContext::Set_Sun_Light(vrDirectionalLight *light)
{
    if (!MK_VERIFY(light, "light && \"Light is NULL. Call Brem.\"")) return;
    if (m_lights.empty()) return Add_Light(light);
    m_lights.front() = light;
    Records.front() = {!light->Is_Left_Out_Of_Light_Field()};
}

void vrLightContext::Add_Light(vrLightSource *light)
{
    if (!MK_VERIFY(light, "light && \"Light is NULL. Call Brem.\"")) return;
    m_lights.emplace_back(light);
    Records.push_back({!light->Is_Left_Out_Of_Light_Field()});
}

vrLightSource *vrLightContext::Get_Light(int index) const
{
    const bool isInRange = index >= 0 && index < Get_Light_Count();
    MK_ASSERT(isInRange,
              "(index >= 0) && (index < static_cast<int>(m_lights.size())) && \"Invalid light index. Call Brem.\"");
    return isInRange ? m_lights[static_cast<size_t>(index)].Get() : nullptr;
}

void vrLightContext::Clear_All_Lights(bool all, bool own)
{
    if (all && !own) return;
    size_t kept = 0;
    for (size_t index = 0; index < m_lights.size(); ++index) {
        const bool keeps = all ? false : own ? index == 0 : m_lights[index]->Get_Owner() == nullptr;
        if (!keeps) continue;
        if (kept != index) {
            m_lights[kept] = std::move(m_lights[index]);
            Records[kept] = Records[index];
        }
        ++kept;
    }
    m_lights.resize(kept);
    Records.resize(kept);
}

bool vrLightContext::Get_Bounds(vrBounds &bounds) const
{
    vrBoundsUnion all;
    for (const auto &light : m_lights) {
        vrBounds box;
        if (light->Get_Cull_Box(box)) all.Add(box);
    }
    if (!all.IsEmpty) bounds = all.Get();
    return !all.IsEmpty;
}

void vrLightContext::Get_Light_Field_Lights(std::vector<const vrLightSource *> &lights) const
{
    lights.clear();
    for (size_t index = 0; index < m_lights.size(); ++index)
        if (Records[index].IsInLightField) lights.push_back(m_lights[index].Get());
}

bool vrLightContext::Load(ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader == NULL")) return false;
    *this = vrLightContext();
    bool isGood = true;
    int32_t statedCount = -1; // none stated
    while (reader->Open_Chunk()) {
        switch (reader->Cur_Chunk_ID()) {
        case CHUNK_VARS: isGood &= Load_Variables(*reader); break;
        case CHUNK_NUM_LIGHTS:
            isGood &= For_Micro_Chunks(
                *reader, [&](uint32_t id) { return id != MICROCHUNK_NUM_LIGHTS || reader->Read_Int32(statedCount); });
            break;
        case CHUNK_LIGHT: isGood &= Load_Light(*reader); break;
        default: break;
        }
        isGood &= reader->Close_Chunk();
    }
    return isGood && !reader->Is_Damaged() && (statedCount == -1 || statedCount == Get_Light_Count());
}

bool vrLightContext::Load_Variables(ChunkFileReaderClass &reader)
{
    return For_Micro_Chunks(reader, [&](uint32_t id) {
        switch (id) {
        case MICROCHUNK_AMBIENT: return Read(reader, Ambient);
        case MICROCHUNK_PARTICLE_DIFFUSE_MULTIPLIER: return Read(reader, ParticleDiffuseMultiplier);
        case MICROCHUNK_PARTICLE_EMISSIVE_ADDER: return Read(reader, ParticleEmissiveAdder);
        default: return true;
        }
    });
}

bool vrLightContext::Load_Light(ChunkFileReaderClass &reader)
{
    const SmartPtr<vrDirectionalLight> light(new vrDirectionalLight);
    Vector3 direction = light->Get_Direction();
    RGBAClass diffuse = light->Get_Diffuse();
    RGBAClass specular = light->Get_Specular();
    const bool isGood = For_Micro_Chunks(reader, [&](uint32_t id) {
        switch (id) {
        case MICROCHUNK_LIGHT_DIR: return Read(reader, direction);
        case MICROCHUNK_LIGHT_DIFFUSE: return Read(reader, diffuse);
        case MICROCHUNK_LIGHT_SPECULAR: return Read(reader, specular);
        default: return true;
        }
    });
    light->Set_Direction(direction);
    light->Set_Diffuse(diffuse);
    light->Set_Specular(specular);
    Add_Light(light.Get());
    return isGood;
}

bool vrLightContext::Save(ChunkFileWriterClass *writer) const
{
    if (!MK_VERIFY(writer != nullptr, "writer == NULL")) return false;
    bool isGood = writer->Open_Chunk("CHUNK_VARS", CHUNK_VARS);
    isGood &= Write_Micro_Chunk(*writer, "MICROCHUNK_AMBIENT", MICROCHUNK_AMBIENT,
                                [&] { return writer->Write_RGBA(Ambient); });
    isGood &=
        Write_Micro_Chunk(*writer, "MICROCHUNK_PARTICLE_DIFFUSE_MULTIPLIER", MICROCHUNK_PARTICLE_DIFFUSE_MULTIPLIER,
                          [&] { return writer->Write_Vector3(ParticleDiffuseMultiplier); });
    isGood &= Write_Micro_Chunk(*writer, "MICROCHUNK_PARTICLE_EMISSIVE_ADDER", MICROCHUNK_PARTICLE_EMISSIVE_ADDER,
                                [&] { return writer->Write_Vector3(ParticleEmissiveAdder); });
    isGood &= writer->Close_Chunk();

    isGood &= writer->Open_Chunk("CHUNK_NUM_LIGHTS", CHUNK_NUM_LIGHTS);
    isGood &= Write_Micro_Chunk(*writer, "MICROCHUNK_NUM_LIGHTS", MICROCHUNK_NUM_LIGHTS,
                                [&] { return writer->Write_Int32(Get_Light_Count()); });
    isGood &= writer->Close_Chunk();
    for (const auto &light : m_lights) isGood &= Save_Light(*writer, *light);
    return isGood;
}

bool vrLightContext::Save_Light(ChunkFileWriterClass &writer, vrLightSource &light)
{
    bool isGood = writer.Open_Chunk("CHUNK_LIGHT", CHUNK_LIGHT);
    if (const auto *directional = MK_Dynamic_Cast<vrDirectionalLight>(&light))
        isGood &= Write_Micro_Chunk(writer, "MICROCHUNK_LIGHT_DIR", MICROCHUNK_LIGHT_DIR,
                                    [&] { return writer.Write_Vector3(directional->Get_Direction()); });
    isGood &= Write_Micro_Chunk(writer, "MICROCHUNK_LIGHT_DIFFUSE", MICROCHUNK_LIGHT_DIFFUSE,
                                [&] { return writer.Write_RGBA(light.Get_Diffuse()); });
    isGood &= Write_Micro_Chunk(writer, "MICROCHUNK_LIGHT_SPECULAR", MICROCHUNK_LIGHT_SPECULAR,
                                [&] { return writer.Write_RGBA(light.Get_Specular()); });
    return writer.Close_Chunk() && isGood;
}
