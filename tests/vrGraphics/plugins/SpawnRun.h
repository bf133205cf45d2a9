#pragma once

#include "BufferBuilder.h"
#include "PluginBuilders.h"
#include "VertexChecks.h"

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

#include <gtest/gtest.h>

namespace MKTest
{

/// A spawner at work on a buffer: particles from the origin, at rest, where a test doesn't say otherwise.
struct SpawnRun : BufferBuilder
{
    SmartPtr<vrMKPPlugin> Plugin;

    explicit SpawnRun(int id = 34, int capacity = 64, vrMKPTransformType space = MKP_TRANSFORM_WORLD)
        : BufferBuilder(capacity, space), Plugin(Make_Plugin(id))
    {
        Set("Velocity", Vector3(0.0f));
        EXPECT_TRUE(Spawner().Create_Spawn_Data(State, &Buffer->SpawnerData));
    }
    vrMKPSpawner &Spawner() { return dynamic_cast<vrMKPSpawner &>(*Plugin); }
    SpawnRun &Set(const char *name, const Value &value)
    {
        Set_Value(*Plugin, name, value);
        return *this;
    }
    /// One frame. Answers the slots of the newborns.
    std::vector<int> Frame(float seconds)
    {
        State.FrameTime = seconds;
        Buffer->SpawnedThisFrame = 0;
        Spawner().Spawn(*Buffer);
        std::vector<int> slots;
        for (const vrMKPSpan span : Buffer->New_Spans())
            for (int i = 0; i < span.Count; ++i) slots.push_back(span.First + i);
        return slots;
    }
    std::vector<float> Ages(float seconds)
    {
        std::vector<float> ages;
        for (const int slot : Frame(seconds)) ages.push_back(Buffer->Age[slot]);
        return ages;
    }
};

/// A stomper of one life.
struct FixedStomper final : vrMKPStomper
{
    explicit FixedStomper(float life) : Life(life) {}
    float Get_Max_Life(const vrMKPRenderState &) const override { return Life; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    float Life;
};

} // namespace MKTest
