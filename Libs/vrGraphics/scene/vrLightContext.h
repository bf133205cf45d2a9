#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/scene/vrLightSource.h"

#include <vector>

namespace ChunkFile
{
class ChunkFileReaderClass;
class ChunkFileWriterClass;
} // namespace ChunkFile

/// The lights of one scene and what its environment does to particles. The first light is the sun. The main thread's,
/// but for reading while a frame runs.
class vrLightContext final : public RefCountClass
{
public:
    /// The chunks of a light context in a file.
    enum LightContextChunkEnum : uint32_t
    {
        CHUNK_NUM_LIGHTS = 0xF,
        CHUNK_LIGHT = 0x10,
        MICROCHUNK_NUM_LIGHTS = 0x11,
        MICROCHUNK_LIGHT_DIR = 0x12,
        MICROCHUNK_LIGHT_DIFFUSE = 0x13,
        MICROCHUNK_LIGHT_SPECULAR = 0x14,
        CHUNK_VARS = 0x2441001,
        MICROCHUNK_AMBIENT = 0x1,
        MICROCHUNK_PARTICLE_DIFFUSE_MULTIPLIER = 0x16,
        MICROCHUNK_PARTICLE_EMISSIVE_ADDER = 0x17
    };

    const RGBAClass &Get_Ambient() const { return Ambient; }
    void Set_Ambient(const RGBAClass &color) { Ambient = color; }
    /// Red, green and blue factors for particles that take part in the scene's lighting.
    const Vector3 &Get_Particle_Diffuse_Multiplier() const { return ParticleDiffuseMultiplier; }
    void Set_Particle_Diffuse_Multiplier(const Vector3 &factors) { ParticleDiffuseMultiplier = factors; }
    /// Added to the emissive colour of the same particles.
    const Vector3 &Get_Particle_Emissive_Adder() const { return ParticleEmissiveAdder; }
    void Set_Particle_Emissive_Adder(const Vector3 &color) { ParticleEmissiveAdder = color; }

    // Each takes a share; null asserts.
    /// Takes the first place; what was there is released.
    void Set_Sun_Light(vrDirectionalLight *light);
    void Add_Light(vrLightSource *light);
    /// Null when the first place is empty, or has a light of another kind.
    vrDirectionalLight *Get_Sun_Light() const { return MK_Dynamic_Cast<vrDirectionalLight>(Get_First()); }
    int Get_Light_Count() const { return static_cast<int>(m_lights.size()); }
    /// Asserts an index in range, and yields null for another.
    vrLightSource *Get_Light(int index) const;
    /// True and true removes all; false and true all but the sun; true and false none; false and false those that
    /// belong to something else.
    void Clear_All_Lights(bool all, bool own);
    /// The box around the boxes of all lights that have one; false, with `bounds` as it was, when none has.
    bool Get_Bounds(vrBounds &bounds) const;
    /// Those that a light field sorts, in place of what `lights` had; borrowed.
    void Get_Light_Field_Lights(std::vector<const vrLightSource *> &lights) const;

    /// Reads the sub-chunks of the current chunk. What isn't there stays at its default; what is there for the lights
    /// replaces them. False when something was damaged or no number, which is left out.
    bool Load(ChunkFile::ChunkFileReaderClass *reader);
    /// Writes into the current chunk. Of a light that isn't directional nothing but its colours.
    bool Save(ChunkFile::ChunkFileWriterClass *writer) const;

private:
    /// What is known about the light of the same index.
    struct LightRecord
    {
        bool IsInLightField = false;
    };

    vrLightSource *Get_First() const { return m_lights.empty() ? nullptr : m_lights.front().Get(); }
    bool Load_Variables(ChunkFile::ChunkFileReaderClass &reader);
    bool Load_Light(ChunkFile::ChunkFileReaderClass &reader);
    static bool Save_Light(ChunkFile::ChunkFileWriterClass &writer, vrLightSource &light);

    RGBAClass Ambient{0.0f, 0.0f, 0.0f, 1.0f};
    Vector3 ParticleDiffuseMultiplier{1.0f};
    Vector3 ParticleEmissiveAdder{0.0f};
    std::vector<SmartPtr<vrLightSource>> m_lights;
    std::vector<LightRecord> Records; ///< one for each light
};
