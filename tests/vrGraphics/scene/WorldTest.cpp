#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrHeightField.h"
#include "vrGraphics/scene/vrSimpleCarrier.h"

#include "MKLib/Random.h"

#include <glm/geometric.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr float NAN_VALUE = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();
const float HALF_ROOT = std::sqrt(0.5f);

/// Heights over x of -10, 0, 10: 0, 10, 20 along y = 5 and 20, 10, 0 along y = -5.
const vrHeightField CROSSED({0, 50, 100, 100, 50, 0}, 3, 2, 20.0f, 10.0f, 51.0f);
/// x + 5 between x = -5 and 5.
const vrHeightField RAMP({0, 255}, 2, 1, 10.0f, 10.0f, 10.0f);
/// A saddle over -1 to 1: 2 (a + b - 2 a b), with a = (x + 1) / 2 and b = (1 - y) / 2.
const vrHeightField SADDLE({0, 255, 255, 0}, 2, 2, 2.0f, 2.0f, 2.0f);
const vrGroundPlane PLANE(3.0f);

struct Way
{
    const char *what;
    const vrTerrain &ground;
    Vector3 from, to;
    bool hits;
    Vector3 hit{}, normal{};
};

void Expect_Near(const Vector3 &actual, const Vector3 &expected, const char *what)
{
    EXPECT_LT(glm::distance(actual, expected), 1e-5f)
        << what << ": " << actual.x << ", " << actual.y << ", " << actual.z;
}

} // namespace

// In the middle 15 far and 5 near, three to one.
TEST(HeightField, IsBilinearBetweenItsHeightsAndGoesOnBeyondItsEdges)
{
    const Vector3 places[] = {{-10, 5, 0}, {-5, 5, 5}, {5, 2.5, 12.5}, {100, 0, 10}, {-100, -100, 20}};
    for (const Vector3 &at : places) EXPECT_FLOAT_EQ(CROSSED.Get_Height(at.x, at.y), at.z) << at.x << ", " << at.y;
    EXPECT_FLOAT_EQ(vrHeightField({51}, 1, 1, 1.0f, 1.0f, 10.0f).Get_Height(7.0f, -7.0f), 2.0f);
    EXPECT_EQ(CROSSED.Get_Height(NAN_VALUE, 0.0f), 0.0f);
    EXPECT_EQ(CROSSED.Get_Height(0.0f, INFINITE), 0.0f);
}

TEST(Ground, AWayHitsItWhereItFirstGoesThroughFromAbove)
{
    const float steep = 0.5f / std::sqrt(1.5f);
    const float root = HALF_ROOT;
    const Vector3 up(0.0f, 0.0f, 1.0f), slope(-root, 0.0f, root), bulge(-steep, steep, 2 * steep),
        far(-0.5f, -0.5f, root);
    const Way ways[] = {
        {"aslant", PLANE, {0, 0, 7}, {8, 4, -1}, true, {4, 2, 3}, up},
        {"onto the ground", PLANE, {1, 2, 5}, {1, 2, 3}, false},
        {"from far off", PLANE, {0, 0, INFINITE}, {0, 0, 1}, false},
        {"level into a ramp", RAMP, {-5, 0, 2}, {5, 0, 2}, true, {-3, 0, 2}, slope},
        {"level out of a ramp", RAMP, {5, 0, 2}, {-5, 0, 2}, false},
        {"into a ramp from beyond its edge", RAMP, {-20, 3, 5}, {20, 3, 5}, true, {0, 3, 5}, slope},
        {"onto a ramp", RAMP, {0, 1, 10}, {0, 1, 5}, false},
        {"from a ramp down", RAMP, {0, 1, 5}, {0, 1, 4}, true, {0, 1, 5}, slope},
        {"nowhere over a ramp", RAMP, {0, 1, 5}, {0, NAN_VALUE, 4}, false},
        // Along the diagonal a = b = t the saddle is 4 t (1 - t), with its top of 1 in the middle: 3/4 at t = 1/4.
        {"into a bulge", SADDLE, {-1, 1, 0.75f}, {1, -1, 0.75f}, true, {-0.5f, 0.5f, 0.75f}, bulge},
        {"past a bulge", SADDLE, {-1, 1, 1.0f}, {1, -1, 1.0f}, false},
        // Along the other one it is 2 - 4 t (1 - t): 3/2 at t = 1/2 -+ sqrt(1/8), the first of which is the way out.
        {"out and in again", SADDLE, {-1, -1, 1.5f}, {1, 1, 1.5f}, true, {root, root, 1.5f}, far},
    };
    for (const Way &way : ways) {
        Vector3 hit;
        Vector3 normal;
        ASSERT_EQ(way.ground.Intersect_Segment(way.from, way.to, hit, normal), way.hits) << way.what;
        if (!way.hits) continue;
        Expect_Near(hit, way.hit, way.what);
        Expect_Near(normal, way.normal, way.what);
    }
}

// Whatever way goes from above to below is stopped, on the ground, and the ground ahead of the hit is never above it.
TEST(HeightField, NoWayTunnelsThroughASeam)
{
    RandomClass random(7);
    std::vector<uint8_t> levels(9 * 7);
    for (uint8_t &level : levels) level = static_cast<uint8_t>(random.Get_Byte());
    const vrHeightField field(levels, 9, 7, 80.0f, 60.0f, 40.0f);
    const auto above = [&](const Vector3 &point) { return point.z - field.Get_Height(point.x, point.y); };
    int hits = 0;
    for (int count = 0; count < 3000; ++count) {
        // Many of them start, end or run on the lines of the grid, which lie 10 apart.
        const float step = count % 2 ? 10.0f : 0.37f;
        const auto place = [&] { return std::floor(random.Get_Float(-60.0f, 60.0f) / step) * step; };
        Vector3 from{place(), place(), random.Get_Float(0.0f, 60.0f)};
        Vector3 to{place(), place(), random.Get_Float(-20.0f, 40.0f)};
        Vector3 hit;
        Vector3 normal;
        const bool isHit = field.Intersect_Segment(from, to, hit, normal);
        if (!isHit) {
            EXPECT_FALSE(above(from) > 1e-3f && above(to) < -1e-3f) << count;
            continue;
        }
        ++hits;
        EXPECT_NEAR(above(hit), 0.0f, 1e-3f) << count;
        EXPECT_LE(glm::dot(to - from, normal), 1e-2f) << count;
        if (above(from) < 0.0f) continue; // it came out first
        for (int part = 0; part < 50; ++part)
            EXPECT_GT(above(from + (hit - from) * (static_cast<float>(part) / 50.0f)), -1e-3f) << count;
    }
    EXPECT_GT(hits, 1000);
}

TEST(SimpleCarrier, AnswersForItsBonesItsMeshAndItsTrajectory)
{
    vrSimpleCarrier carrier;
    Mat3DClass place = Mat3DClass::From_Angles({0.0f, 0.0f, std::acos(0.0f)}); // a quarter turn takes x to y
    place.Set_Translation({100.0f, 0.0f, 0.0f});
    carrier.Set_Transform(place);
    const int hand = carrier.Add_Bone("Hand", Mat3DClass::From_Translation({10.0f, 0.0f, 5.0f}));
    EXPECT_EQ(carrier.Find_Bone("hAND"), hand);
    Expect_Near(carrier.Get_Bone_Transform(hand).Get_Translation(), {100, 10, 5}, "bone");
    Expect_Near(carrier.Get_Bone_Transform(-1).Get_Translation(), {100, 0, 0}, "model");

    const std::vector<Vector3> corners = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    ASSERT_TRUE(carrier.Set_Mesh(corners, {}, {0, 1, 2}, hand));
    EXPECT_FALSE(carrier.Set_Mesh(corners, {}, {0, 1, 3}));
    EXPECT_FALSE(carrier.Set_Mesh(corners, {}, {0, 1}));
    EXPECT_FALSE(carrier.Set_Mesh(corners, {{0, 0, 1}}, {}));

    float fraction = -1.0f;
    EXPECT_FALSE(carrier.Get_Trajectory_Fraction({0, 0, 0}, fraction));
    carrier.Set_Trajectory({{0, 0, 0}, {10, 0, 0}, {10, 30, 0}}); // 40 long; (10, 10) in its frame is (90, 10) here
    ASSERT_TRUE(carrier.Get_Trajectory_Fraction({90, 10, 7}, fraction));
    EXPECT_NEAR(fraction, 0.5f, 1e-5f);
}
