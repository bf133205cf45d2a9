#include "common/EmitterBuilder.h"
#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gtest/gtest.h>

#include <limits>

using namespace MKTest;

namespace
{

Bytes Save(const vrLightContext &lights)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, 0, 6, false);
    EXPECT_TRUE(writer.Open_Chunk(1));
    EXPECT_TRUE(lights.Save(&writer));
    EXPECT_TRUE(writer.Close_Chunk() && writer.Close());
    return {file.Get_Buffer(), file.Get_Buffer() + file.Get_Size()};
}

bool Load(const Bytes &bytes, vrLightContext &lights)
{
    RAMFileClass memory(bytes.data(), static_cast<int64_t>(bytes.size()));
    memory.Open("lights", MKPlatform::FILE_OPEN_GENERIC_READ);
    ChunkFileReaderClass reader(&memory);
    if (!reader.Is_Initialized() || !reader.Open_Chunk()) return false;
    const bool isLoaded = lights.Load(&reader);
    return reader.Close_Chunk() && isLoaded;
}

/// A file whose values are none of the defaults, with two lights of as many as it states.
Bytes Rich_File(int stated = 2, float emission = 1.0f)
{
    const RGBAClass dim{0.1f, 0.2f, 0.3f, 0.4f};
    const RGBAClass bright{0.5f, 0.6f, 0.7f, 0.8f};
    const Chunk values = Micros(0x2441001, {{0x1, dim}, {0x16, Vector3(0.5f)}, {0x17, Vector3(emission)}});
    const Chunk light = Micros(0x10, {{0x12, Vector3(0.0f, 0.6f, 0.8f)}, {0x13, dim}, {0x14, bright}});
    return Build(Parent(1, {values, Micros(0xF, {{0x11, stated}}), light, light}));
}

TEST(LightContext, ASaveWritesEveryValueInItsPlace)
{
    vrLightContext loaded;
    loaded.Add_Light(new vrDirectionalLight); // goes
    ASSERT_TRUE(Load(Rich_File(), loaded));
    EXPECT_EQ(Save(loaded), Rich_File());
}

TEST(LightContext, WhatIsMissingInAFileKeepsItsDefault)
{
    vrLightContext loaded;
    EXPECT_TRUE(Load(Build(Parent(1, {Micros(0x10, {{0x12, Vector3(1.0f, 0.0f, 0.0f)}})})), loaded));
    EXPECT_EQ(loaded.Get_Particle_Diffuse_Multiplier(), Vector3(1.0f));
    ASSERT_TRUE(loaded.Get_Sun_Light());
    EXPECT_EQ(loaded.Get_Sun_Light()->Get_Direction(), Vector3(1.0f, 0.0f, 0.0f));
    EXPECT_EQ(loaded.Get_Sun_Light()->Get_Diffuse(), RGBAClass());
}

TEST(LightContext, DamageIsToldAndHarmless)
{
    const Reports reports;
    const Bytes whole = Rich_File();
    for (size_t at = 0; at < whole.size(); ++at) {
        vrLightContext cut;
        EXPECT_FALSE(Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(at)), cut)) << at;
        EXPECT_LE(cut.Get_Light_Count(), 2);
        Bytes damaged = whole;
        damaged[at] ^= 0xff;
        vrLightContext loaded;
        Load(damaged, loaded);
        EXPECT_LE(loaded.Get_Light_Count(), 2) << "byte " << at;
        EXPECT_TRUE(Is_Valid(loaded.Get_Ambient()) && Is_Valid(loaded.Get_Particle_Emissive_Adder())) << "byte " << at;
    }
    vrLightContext loaded;
    EXPECT_FALSE(Load(Rich_File(3), loaded)) << "one is missing";
    EXPECT_FALSE(Load(Rich_File(2, std::numeric_limits<float>::quiet_NaN()), loaded));
    EXPECT_TRUE(Is_Valid(loaded.Get_Particle_Emissive_Adder()));
}

TEST(LightContext, IsWhereASceneKeepsItsSun)
{
    vrSimpleScene scene;
    scene.Set_Sun_Direction(Vector3(0.0f)); // there is none to turn
    EXPECT_EQ(scene.Get_Light_Context()->Get_Light_Count(), 0);
    scene.Set_Sun_Direction({0.6f, 0.0f, 0.8f});
    scene.Set_Sun_Direction({0.0f, 0.6f, 0.8f});
    ASSERT_EQ(scene.Get_Light_Context()->Get_Light_Count(), 1);
    EXPECT_EQ(scene.Get_Sun_Direction(), Vector3(0.0f, 0.6f, 0.8f));
}

} // namespace
