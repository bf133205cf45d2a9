#include "SampleMaker/OldCampfire.h"

#include "SampleMaker/OldFormWriter.h"

namespace
{

// Chunks, as the old tools numbered them.
constexpr uint32_t EMITTER = 0x1500;
constexpr uint32_t EMITTER_VARS = 0x1502;
constexpr uint32_t LAYERS = 0x1520;
constexpr uint32_t LAYERS_INFO = 0x1521;
constexpr uint32_t LAYER = 0x1540;
constexpr uint32_t FIRST_GROUP = 0x1600;
constexpr uint32_t FIRST_GROUP_VARS = 0x1601;
constexpr uint32_t LIGHTS = 0x1640;
constexpr uint32_t LIGHT = 0x1641;
constexpr uint32_t MOTIONS = 0x1660;
constexpr uint32_t MOTION = 0x1661;
constexpr uint32_t RENDERABLE_PLUGINS = 0x1680;
constexpr uint32_t PHYSICS = 0x1681;
constexpr uint32_t ATTACHED_MODEL = 0x16a0;
constexpr uint32_t ATTACHED_MODEL_VARS = 0x16a1;
constexpr uint32_t RENDERABLE = 0x1700;
constexpr uint32_t RENDERABLE_VARS = 0x1701;
constexpr uint32_t GROUP = 0x1780;

// Chunks of a layer.
constexpr uint32_t NAME = 0;
constexpr uint32_t SPAWNER = 1;
constexpr uint32_t TRANSFORMER = 2;
constexpr uint32_t STOMPER = 3;
constexpr uint32_t VISUALIZER = 4;
constexpr uint32_t MODIFIER = 5;

void Age(OldFormWriter &out, float seconds, float variation)
{
    out.Plugin(STOMPER, kvrMKPSimpleStomper, [&] {
        out.Parameter(0, seconds);
        out.Parameter(1, variation);
    });
}

void Colors(OldFormWriter &out, const RGBAClass &start, const RGBAClass &end)
{
    out.Plugin(MODIFIER, kvrMKPLinearColorModifier, [&] {
        out.Parameter(200, start);
        out.Parameter(201, end);
    });
}

/// Cells of the sheet: a flame that begins anywhere, and one of the others.
void Flame_Cells(OldFormWriter &out)
{
    out.Plugin(MODIFIER, kvrMKPSequencedUVModifier, [&] {
        out.Parameter(200, Vector4(0.0f, 0.25f, 0.125f, 0.125f));
        out.Parameter(201, int32_t{16});
        out.Parameter(202, true);
    });
}

void Cell(OldFormWriter &out, float u, float v)
{
    out.Plugin(MODIFIER, kvrMKPConstantUVModifier, [&] { out.Parameter(200, Vector4(u, v, 0.125f, 0.125f)); });
}

/// 60 particles in each interval of two seconds: 30 a second today.
void Flames(OldFormWriter &out)
{
    out.Chunk(NAME, [&] { out.Value("flames"); });
    out.Plugin(SPAWNER, kvrMKPShapeSpawner, [&] {
        out.Parameter(4, int32_t{1});
        out.Parameter(100, 60.0f);
        out.Parameter(101, 2.0f);
        out.Parameter(102, false);
        out.Cylinder_Parameter(105, 8.0f, 0.0f, 3.0f);
        out.Sphere_Parameter(107, 4.0f, 12.0f);
    });
    out.Plugin(TRANSFORMER, kvrMKPLocalTransformer);
    Age(out, 1.2f, 20.0f);
    out.Plugin(VISUALIZER, kvrMKPBumpMapVisualizer, [&] {
        out.Parameter(100, "p_particle_master.tga");
        out.Parameter(108, "smokenormals.tga");
        out.Parameter(101, "ParticleBillboardAdditive.mks");
    });
    Colors(out, {1.0f, 0.75f, 0.25f, 1.0f}, {0.5f, 0.0625f, 0.0f, 0.0f});
    out.Plugin(MODIFIER, kvrMKPKeyedUniformSizeModifier, [&] {
        out.Keyed_Parameter(300, {{0.0f, 4.0f}, {0.25f, 11.0f}, {1.0f, 2.0f}});
    });
    out.Plugin(MODIFIER, kvrMKPAccelerationModifier, [&] { out.Parameter(200, Vector3(0.0f, 0.0f, 48.0f)); });
    Flame_Cells(out);
}

/// Bursts of 12 every three seconds, which today are clusters of 12 at 4 a second.
void Sparks(OldFormWriter &out)
{
    out.Chunk(NAME, [&] { out.Value("\xe9tincelles"); }); // Windows-1252, as names were then
    out.Plugin(SPAWNER, kvrMKPShapeSpawner, [&] {
        out.Parameter(4, int32_t{3});
        out.Parameter(9, 300.0f);
        out.Parameter(10, 900.0f);
        out.Parameter(100, 12.0f);
        out.Parameter(101, 3.0f);
        out.Parameter(102, true);
        out.Sphere_Parameter(107, 20.0f, 60.0f);
    });
    out.Plugin(TRANSFORMER, kvrMKPWorldTransformer);
    Age(out, 2.4f, 25.0f);
    out.Plugin(VISUALIZER, kvrMKPLineVisualizer);
    Colors(out, {1.0f, 0.875f, 0.5f, 1.0f}, {1.0f, 0.25f, 0.0f, 0.0f});
    out.Plugin(MODIFIER, kvrMKPTurbulenceModifier);
    out.Plugin(MODIFIER, kvrMKPLinearRotationRateModifier);
}

void Smoke(OldFormWriter &out)
{
    out.Chunk(NAME, [&] { out.Value("smoke"); });
    out.Plugin(SPAWNER, kvrMKPShapeSpawner, [&] {
        out.Parameter(116, 6.0f);
        out.Parameter(104, 0.0f);
        out.Cylinder_Parameter(105, 6.0f, 25.0f, 32.0f);
        out.Sphere_Parameter(107, 0.0f, 5.0f);
    });
    out.Plugin(TRANSFORMER, kvrMKPWorldTransformer);
    Age(out, 4.0f, 30.0f);
    out.Plugin(VISUALIZER, kvrMKPObsoleteSphericalBumpVisualizer, [&] {
        out.Parameter(101, "ParticleBillboardBump.mks");
        out.Parameter(200, 0.75f);
    });
    Colors(out, {0.25f, 0.25f, 0.25f, 0.5f}, {0.5f, 0.5f, 0.5f, 0.0f});
    out.Plugin(MODIFIER, kvrMKPLinearUniformSizeModifier, [&] {
        out.Parameter(200, 8.0f);
        out.Parameter(201, 32.0f);
    });
    out.Plugin(MODIFIER, kvrMKPAccelerationModifier, [&] { out.Parameter(200, Vector3(0.0f, 0.0f, 24.0f)); });
    Cell(out, 0.0f, 0.125f); // a puff
}

void Glow(OldFormWriter &out)
{
    out.Chunk(NAME, [&] { out.Value("glow"); });
    out.Plugin(SPAWNER, kvrMKPShapeSpawner, [&] { out.Parameter(116, 3.0f); });
    out.Plugin(TRANSFORMER, kvrMKPLocalTransformer);
    Age(out, 1.0f, 0.0f);
    out.Plugin(VISUALIZER, kvrMKPObsoleteCenterToVertBumpVisualizer, [&] { out.Parameter(111, 4.0f); });
    Colors(out, {1.0f, 0.5f, 0.125f, 0.25f}, {1.0f, 0.5f, 0.125f, 0.0f});
    Cell(out, 0.0f, 0.0f); // the soft glow
}

void First_Group(OldFormWriter &out)
{
    out.Chunk(FIRST_GROUP_VARS, [&] {
        out.Micro_Chunk(0, "smoke_and_light");
        out.Micro_Chunk(1, true);
        out.Micro_Chunk(2, Vector3(0.0f, 0.0f, 4.0f));
    });
    out.Chunk(LIGHTS, [&] {
        out.Chunk(LIGHT, [&] {
            out.Micro_Chunk(0, "fire");
            out.Micro_Chunk(1, RGBAClass{1.0f, 0.5f, 0.25f, 1.0f});
        });
    });
    out.Chunk(MOTIONS, [&] { out.Chunk(MOTION, [&] { out.Micro_Chunk(0, 0.5f); }); });
    out.Chunk(LAYER, [&] { Smoke(out); });
}

void Group_With_Model(OldFormWriter &out)
{
    out.Chunk(RENDERABLE, [&] {
        out.Chunk(RENDERABLE_VARS, [&] {
            out.Micro_Chunk(0, "logs");
            out.Micro_Chunk(3, Vector3(0.0f, 0.0f, 2.0f));
            out.Micro_Chunk(5, 1.5f);
        });
        out.Chunk(RENDERABLE_PLUGINS, [&] {
            out.Plugin(PHYSICS, kvrMKPWaveAndSpinRenderablePhysics,
                       [&] { out.Parameter(105, Vector3(0.0f, 0.0f, 5.0f)); });
        });
    });
    out.Chunk(ATTACHED_MODEL, [&] {
        out.Chunk(ATTACHED_MODEL_VARS, [&] {
            out.Micro_Chunk(0, "campfire_logs.vro");
            out.Micro_Chunk(1, "smoulder");
            out.Micro_Chunk(2, true);
        });
    });
    out.Chunk(LAYER, [&] { Glow(out); });
}

} // namespace

bool Write_Old_Campfire(FileClass &file)
{
    OldFormWriter out(file);
    out.Chunk(EMITTER, [&] {
        out.Chunk(0, [&] { out.Value("campfire"); });
        out.Chunk(1, [&] { out.Value(true); });
        out.Chunk(2, [&] { out.Value(false); });
        out.Chunk(LAYERS, [&] {
            out.Chunk(LAYERS_INFO, [&] { out.Value(uint32_t{2}); });
            out.Chunk(LAYER, [&] { Flames(out); });
            out.Chunk(LAYER, [&] { Sparks(out); });
        });
        out.Chunk(FIRST_GROUP, [&] { First_Group(out); });
        out.Chunk(GROUP, [&] { Group_With_Model(out); });
        out.Chunk(EMITTER_VARS, [&] { out.Micro_Chunk(0, false); });
    });
    return out.Close();
}
