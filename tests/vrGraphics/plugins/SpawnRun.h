#pragma once

#include "BufferBuilder.h"
#include "PluginBuilders.h"

#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"

#include <gtest/gtest.h>

#include <limits>

namespace MKTest
{

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// A spawner at work on a buffer: particles from the origin, at rest, where a test doesn't say otherwise.
struct SpawnRun : BufferBuilder
{
    SmartPtr<vrMKPPlugin> Plugin;

    explicit SpawnRun(int id = 34, int capacity = 64, vrMKPTransformType space = MKP_TRANSFORM_WORLD)
        : BufferBuilder(capacity, space), Plugin(Make_Plugin(id))
    {
        Shape("Velocity", SHAPE_POINT);
        EXPECT_TRUE(Spawner().Create_Spawn_Data(State, &Buffer->SpawnerData));
    }
    vrMKPSpawner &Spawner() { return dynamic_cast<vrMKPSpawner &>(*Plugin); }
    SpawnRun &Float(const char *name, float value)
    {
        Parameter_Of<RangedFloatParameter>(*Plugin, name).Set_Value(value);
        return *this;
    }
    SpawnRun &Int(const char *name, int value)
    {
        Parameter_Of<RangedIntParameter>(*Plugin, name).Set_Value(value);
        return *this;
    }
    SpawnRun &Bool(const char *name, bool value)
    {
        Parameter_Of<BoolParameter>(*Plugin, name).Set_Value(value);
        return *this;
    }
    SpawnRun &Enum(const char *name, int index)
    {
        Parameter_Of<EnumParameterClass>(*Plugin, name).Set_Index(index);
        return *this;
    }
    SpawnRun &Shape(const char *name, uint32_t type, const Vector3 &center = Vector3(0.0f))
    {
        ShapeStruct shape;
        shape.ShapeType = type;
        shape.Center = center;
        Parameter_Of<ShapeParameterClass>(*Plugin, name).Set_Value(shape);
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

inline void Expect_Near(const Vector3 &actual, const Vector3 &expected, float tolerance = 1e-5f)
{
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(actual[axis], expected[axis], tolerance) << "axis " << axis;
}

} // namespace MKTest
