#include "common/Reports.h"
#include "common/TempFiles.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

MKTest::Bytes Save(const vrLightContext &lights)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, 0, 6, false);
    EXPECT_TRUE(writer.Open_Chunk(1));
    EXPECT_TRUE(lights.Save(&writer));
    EXPECT_TRUE(writer.Close_Chunk() && writer.Close());
    return {file.Get_Buffer(), file.Get_Buffer() + file.Get_Size()};
}

bool Load(const MKTest::Bytes &bytes, size_t size, vrLightContext &lights)
{
    RAMFileClass memory(bytes.data(), static_cast<int64_t>(size));
    memory.Open("lights", MKPlatform::FILE_OPEN_GENERIC_READ);
    ChunkFileReaderClass reader(&memory);
    if (!reader.Is_Initialized() || !reader.Open_Chunk()) return false;
    const bool isLoaded = lights.Load(&reader);
    return reader.Close_Chunk() && isLoaded;
}

SmartPtr<vrDirectionalLight> Make_Light(const Vector3 &direction = {0.0f, 0.0f, 1.0f})
{
    SmartPtr<vrDirectionalLight> light(new vrDirectionalLight);
    light->Set_Direction(direction);
    return light;
}

/// Three lights and no value that is a default.
SmartPtr<vrLightContext> Rich_Context()
{
    SmartPtr<vrLightContext> lights(new vrLightContext);
    lights->Set_Ambient({0.1f, 0.2f, 0.3f, 0.4f});
    lights->Set_Particle_Diffuse_Multiplier({0.5f, 0.6f, 0.7f});
    lights->Set_Particle_Emissive_Adder({0.8f, 0.9f, 1.0f});
    for (const float x : {1.0f, 2.0f, 3.0f}) {
        const auto light = Make_Light({x, 0.0f, 0.5f});
        light->Set_Diffuse({x, 0.25f, 0.5f, 1.0f});
        light->Set_Specular({0.25f, x, 0.5f, 1.0f});
        lights->Add_Light(light.Get());
    }
    return lights;
}

TEST(LightContext, ASavedOneReadsBack)
{
    const auto source = Rich_Context();
    const MKTest::Bytes bytes = Save(*source);
    vrLightContext loaded;
    loaded.Add_Light(Make_Light().Get()); // goes
    ASSERT_TRUE(Load(bytes, bytes.size(), loaded));
    EXPECT_EQ(loaded.Get_Ambient(), source->Get_Ambient());
    EXPECT_EQ(loaded.Get_Particle_Diffuse_Multiplier(), source->Get_Particle_Diffuse_Multiplier());
    EXPECT_EQ(loaded.Get_Particle_Emissive_Adder(), source->Get_Particle_Emissive_Adder());
    ASSERT_EQ(loaded.Get_Light_Count(), 3);
    for (int index = 0; index < 3; ++index) {
        const auto *light = MK_Dynamic_Cast<vrDirectionalLight>(loaded.Get_Light(index));
        const auto *expected = MK_Dynamic_Cast<vrDirectionalLight>(source->Get_Light(index));
        ASSERT_TRUE(light);
        EXPECT_EQ(light->Get_Direction(), expected->Get_Direction());
        EXPECT_EQ(light->Get_Diffuse(), expected->Get_Diffuse());
        EXPECT_EQ(light->Get_Specular(), expected->Get_Specular());
    }
}

TEST(LightContext, WhatIsMissingInAFileKeepsItsDefault)
{
    for (const int stated : {-1, 1, 2}) { // lights; -1 without the chunk
        RAMFileClass file;
        ChunkFileWriterClass writer(&file, 0, 6, false);
        writer.Open_Chunk(1);
        if (stated >= 0) {
            writer.Open_Chunk(0xF);
            writer.Open_Micro_Chunk(0x11);
            writer.Write_Int32(stated);
            writer.Close_Micro_Chunk();
            writer.Close_Chunk();
        }
        writer.Open_Chunk(0x10);
        writer.Open_Micro_Chunk(0x12);
        writer.Write_Vector3({1.0f, 0.0f, 0.0f});
        writer.Close_Micro_Chunk();
        writer.Close_Chunk();
        EXPECT_TRUE(writer.Close_Chunk() && writer.Close());
        vrLightContext loaded;
        const MKTest::Bytes bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
        EXPECT_EQ(Load(bytes, bytes.size(), loaded), stated != 2) << stated;
        EXPECT_EQ(loaded.Get_Particle_Diffuse_Multiplier(), Vector3(1.0f));
        ASSERT_TRUE(loaded.Get_Sun_Light());
        EXPECT_EQ(loaded.Get_Sun_Light()->Get_Direction(), Vector3(1.0f, 0.0f, 0.0f));
        EXPECT_EQ(loaded.Get_Sun_Light()->Get_Diffuse(), RGBAClass());
    }
}

TEST(LightContext, DamageIsToldAndHarmless)
{
    const MKTest::Reports reports;
    const auto source = Rich_Context();
    const MKTest::Bytes bytes = Save(*source);
    for (size_t size = 0; size < bytes.size(); ++size) {
        vrLightContext loaded;
        EXPECT_FALSE(Load(bytes, size, loaded)) << "cut to " << size;
        EXPECT_LE(loaded.Get_Light_Count(), 3);
    }
    for (size_t at = 0; at < bytes.size(); ++at) {
        MKTest::Bytes damaged = bytes;
        damaged[at] ^= 0xff;
        vrLightContext loaded;
        Load(damaged, damaged.size(), loaded);
        EXPECT_LE(loaded.Get_Light_Count(), 3) << "byte " << at;
        EXPECT_TRUE(Is_Valid(loaded.Get_Ambient()) && Is_Valid(loaded.Get_Particle_Emissive_Adder())) << "byte " << at;
    }
    vrLightContext loaded;
    source->Set_Particle_Emissive_Adder({0.0f, std::numeric_limits<float>::quiet_NaN(), 0.0f});
    const MKTest::Bytes invalid = Save(*source);
    EXPECT_FALSE(Load(invalid, invalid.size(), loaded));
    EXPECT_EQ(loaded.Get_Particle_Emissive_Adder(), Vector3(0.0f));
}

TEST(LightContext, ClearsByItsArguments)
{
    const auto owner = Make_Light();
    const struct
    {
        bool all, own;
        int sunOwned; ///< lights that stay when the sun belongs to something
        int sunFree;
    } cases[] = {{true, true, 0, 0}, {true, false, 3, 3}, {false, true, 1, 1}, {false, false, 1, 2}};
    for (const auto &test : cases) {
        for (const bool isSunOwned : {true, false}) {
            vrLightContext lights;
            const auto sun = Make_Light();
            const auto guest = Make_Light();
            const auto fill = Make_Light();
            guest->Set_Owner(owner.Get());
            if (isSunOwned) sun->Set_Owner(owner.Get());
            lights.Set_Sun_Light(sun.Get());
            lights.Add_Light(guest.Get());
            lights.Add_Light(fill.Get());
            lights.Clear_All_Lights(test.all, test.own);
            const int expected = isSunOwned ? test.sunOwned : test.sunFree;
            ASSERT_EQ(lights.Get_Light_Count(), expected) << test.all << test.own << isSunOwned;
            if (expected == 0) continue;
            const auto &last = test.own ? sun : fill;
            EXPECT_EQ(lights.Get_Light(expected - 1), last.Get());
        }
    }
}

TEST(LightContext, HasOneSunAndAssertsWhatItIsGiven)
{
    vrLightContext lights;
    const auto first = Make_Light();
    const auto second = Make_Light();
    lights.Set_Sun_Light(first.Get());
    lights.Set_Sun_Light(second.Get());
    EXPECT_EQ(first->Get_Ref_Count(), 1);
    EXPECT_EQ(lights.Get_Light_Count(), 1);
    const MKTest::Reports reports;
    lights.Set_Sun_Light(nullptr);
    lights.Add_Light(nullptr);
    EXPECT_EQ(reports.Count_Asserts("light && \"Light is NULL. Call Brem.\""), 2);
    EXPECT_EQ(lights.Get_Light(1), nullptr);
    EXPECT_EQ(lights.Get_Light(-1), nullptr);
    EXPECT_EQ(reports.Count_Asserts("(index >= 0) && (index < static_cast<int>(m_lights.size())) && \"Invalid light "
                                    "index. Call Brem.\""),
              2);
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
