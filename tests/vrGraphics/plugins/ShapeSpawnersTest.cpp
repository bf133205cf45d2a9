#include "vrGraphics/plugins/spawners/ShapeSpawners.h"

#include "SpawnRun.h"
#include "common/Reports.h"

#include "vrGraphics/particle/vrWorld.h"
#include "MKLib/Parameters/StringParameters.h"

#include <gmock/gmock.h>

#include <climits>
#include <cmath>

using namespace MKTest;

namespace
{

constexpr int SHAPE_SPAWNERS[] = {34, 43, 50, 115};

TEST(ShapeSpawners, SpeedsOutwardFromTheOrigin)
{
    SpawnRun run(50);
    run.Shape("Position", SHAPE_POINT, {0.0f, -3.0f, 4.0f}).Float("Outward Speed", 10.0f);
    run.Shape("Velocity", SHAPE_POINT, {1.0f, 0.0f, 0.0f}).Frame(0.01f);
    Expect_Near(run.Buffer->Velocity[0], {1.0f, -6.0f, 8.0f});
    run.Shape("Position", SHAPE_POINT).Buffer->Reset();
    run.Frame(0.01f);
    Expect_Near(run.Buffer->Velocity[0], {1.0f, 0.0f, 0.0f});
    MKTest::Reports reports;
    EXPECT_FALSE(run.Spawner().Create_Spawn_Data(run.State, nullptr));
    EXPECT_TRUE(reports.Has_Assert("plugin_data == NULL"));
}

struct OneBone final : vrCarrierModel
{
    int Find_Bone(std::string_view name) const override { return name == "hand" ? 4 : -1; }
    Mat3DClass Get_Bone_Transform(int bone) const override
    {
        return Mat3DClass::From_Translation({static_cast<float>(bone), 0.0f, 0.0f});
    }
};

// The position is one step up the z axis ahead of the alignment, the velocity likewise; the target lies along y, the
// bone along x.
TEST(ShapeSpawners, AlignWithBonesAndTargets)
{
    const Vector3 x{1.0f, 0.0f, 0.0f};
    const Vector3 y{0.0f, 1.0f, 0.0f};
    const Vector3 z{0.0f, 0.0f, 1.0f};
    const struct
    {
        const char *what;
        int position, velocity;
        bool positionAway, velocityAway;
        const char *bone;
        Vector3 expectedPosition, expectedVelocity;
    } rows[] = {
        {"as drawn", 0, 0, false, false, "hand", z, z},
        {"to the target", 2, 0, false, false, "hand", y, z},
        {"to the bone, velocity along the position", 1, 1, false, false, "hand", x, x},
        {"against the position", 1, 1, false, true, "hand", x, -x},
        {"no such bone", 1, 1, false, false, "foot", y, y},
        {"from the position to the bone", 0, 2, false, false, "hand", z, Vector3(4.0f, 0.0f, -1.0f) / std::sqrt(17.0f)},
        {"from the position to the target", 0, 3, false, false, "", z, Vector3(0.0f, 1.0f, -1.0f) / std::sqrt(2.0f)},
    };
    const OneBone model;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run(43);
        run.Enum("Position Alignment", row.position).Enum("Velocity Alignment", row.velocity);
        run.Enum("Pos. Alignment Direction", row.positionAway).Enum("Vel. Alignment Direction", row.velocityAway);
        Parameter_Of<StringParameterClass>(*run.Plugin, "Bone Name").Set_Value(row.bone);
        run.State.Carrier = &model;
        run.State.TargetPosition = y;
        run.Shape("Position", SHAPE_POINT, z).Shape("Velocity", SHAPE_POINT, z).Frame(0.01f);
        Expect_Near(run.Buffer->PreviousPosition[0], row.expectedPosition);
        Expect_Near(run.Buffer->Velocity[0], row.expectedVelocity);
    }
}

TEST(ShapeSpawners, TakeAnAreasRateForADensity)
{
    const struct
    {
        const char *what;
        int area;
        float radius, low, high, most, expected;
    } rows[] = {
        {"5 in each thousand of pi r^2 h", 0, 10, -10, 10, 1000, 31.415927f},
        {"a flat cylinder is one high", 0, 10, 0, 0.5f, 1000, 1.5707964f},
        {"3 pi r^3 / 4", 1, 10, 0, 0, 1000, 11.780972f},
        {"pi r^2", 2, 10, 0, 0, 1000, 1.5707964f},
        {"no radius", 2, 0, 0, 0, 1000, 0},
        {"capped", 0, 10, -10, 10, 25, 25},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        SpawnRun run(115);
        run.Enum("AOE Shape", row.area).Float("Particles / Second", 5.0f).Float("Max Spawn Per Second", row.most);
        run.Float("Cylinder Min Height", row.low).Float("Cylinder Max Height", row.high);
        run.State.Dynamic[7] = row.radius;
        EXPECT_FLOAT_EQ(run.Spawner().Get_Spawn_Rate(run.State, nullptr), row.expected);
        EXPECT_EQ(run.Spawner().Get_Peak_Rate(run.State, nullptr), row.most);
    }
}

TEST(ShapeSpawners, FillTheArea)
{
    for (int area = 0; area < 3; ++area) {
        SCOPED_TRACE(area);
        SpawnRun run(115, 2000);
        run.Enum("AOE Shape", area).Bool("Even Distribution", true).Float("Particles / Second", 1e6f);
        run.Float("Max Spawn Per Second", 20000.0f).State.Dynamic[7] = 4.0f;
        ASSERT_EQ(run.Frame(0.1f).size(), 2000u);
        int inner = 0;
        for (int i = 0; i < 2000; ++i) {
            const Vector3 &point = run.Buffer->PreviousPosition[i];
            const float fromAxis = std::sqrt(point.x * point.x + point.y * point.y);
            const float distance = area == 1 ? std::sqrt(fromAxis * fromAxis + point.z * point.z) : fromAxis;
            ASSERT_LE(distance, 4.0001f);
            if (area != 1) {
                ASSERT_LE(std::abs(point.z), area == 0 ? 10.0f : 0.0f);
            }
            inner += distance < 2.0f;
        }
        // A quarter of a disc is within half its radius, an eighth of a ball.
        EXPECT_NEAR(inner, area == 1 ? 250 : 500, 75);
    }
}

TEST(ShapeSpawners, ReportABadFillingOnce)
{
    SpawnRun run;
    run.Shape("Position", SHAPE_POINT, Vector3(NOT_A_NUMBER)).Shape("Velocity", SHAPE_POINT, Vector3(INF));
    run.State.Move_To(Mat3DClass::From_Translation(Vector3(INF)));
    run.Bool("Inherit Velocity", true);
    MKTest::Reports reports;
    EXPECT_GT(run.Frame(0.1f).size(), 1u);
    EXPECT_THAT(reports.Get_Asserts(),
                testing::UnorderedElementsAre("position.Is_Valid()", "velocity.Is_Valid()",
                                              "emitter_velocity.Is_Valid()", "scaled_emitter_velocity.Is_Valid()"));
}

TEST(ShapeSpawners, SurviveWhateverAFileHolds)
{
    for (const int id : SHAPE_SPAWNERS) {
        for (const float bad : {NOT_A_NUMBER, INF, -INF, 3e38f, -1e9f, 0.0f, 1e-40f}) {
            for (const vrMKPTransformType space : {MKP_TRANSFORM_LOCAL, MKP_TRANSFORM_WORLD}) {
                SCOPED_TRACE(Plugin_Label(id) + " " + std::to_string(bad));
                MKTest::Reports reports;
                SpawnRun run(id, 8, space);
                const int whole = bad > 0.0f ? INT_MAX : INT_MIN;
                for (int i = 0; i < run.Plugin->Get_Parameters().Get_Parameter_Count(); ++i) {
                    ParameterClass *parameter = run.Plugin->Get_Parameters().Get_Parameter(i);
                    if (auto *number = dynamic_cast<RangedFloatParameter *>(parameter)) number->Set_Value(bad);
                    if (auto *count = dynamic_cast<RangedIntParameter *>(parameter)) count->Set_Value(whole);
                    if (auto *choice = dynamic_cast<EnumParameterClass *>(parameter)) choice->Set_Index(whole);
                }
                for (const float rate : {bad, 30.0f, INF}) {
                    run.Float("Particles / Second", rate).Float("Start Delay", 0.0f).Float("Stop Time", 0.0f);
                    run.State.Dynamic[7] = bad;
                    for (const float step : {0.1f, 0.0f, -1.0f, bad}) run.Frame(step);
                    EXPECT_LE(run.Buffer->ActiveCount, 8);
                    run.Buffer->Reset();
                }
                const SmartPtr<vrMKPStomper> stomper(new FixedStomper(bad));
                EXPECT_GE(run.Spawner().Get_Max_Particles(run.State, nullptr, stomper.Get()), 1);
            }
        }
    }
}

} // namespace
