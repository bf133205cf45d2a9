#include "MKLib/Parameters/ShapeBatch.h"

#include "MKLib/Random.h"
#include "common/Reports.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{

ShapeStruct Make(uint32_t type)
{
    return {.ShapeType = type};
}

ShapeStruct Ball(float inner, float outer)
{
    return {.ShapeType = SHAPE_SPHERE, .C = inner, .D = outer};
}

const ShapeStruct SOME_POINT{.ShapeType = SHAPE_POINT, .Center = {1, 2, 3}};
const ShapeStruct UPRIGHT_RAY{.ShapeType = SHAPE_RAY, .Direction = {0, 0, 4}};
const ShapeStruct SLAB{.ShapeType = SHAPE_BOX, .BoxMinimum = {0, -10, 5}, .BoxMaximum = {20, 10, 6}};
const ShapeStruct ONE_SPEED{.ShapeType = SHAPE_RADIAL, .E = {0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 10}};

int Steps_To(uint32_t state)
{
    RandomClass random(1);
    int steps = 0;
    for (; random.Get_State() != state && steps < 100; ++steps) random.Get_Byte();
    return steps;
}

// From state 1 the draws of U(0, 1) are 0.887444302, 0.874351462, 0.941066960, 0.026796069 and 0.388543002, of which
// the forms below are worked with the closed formulas. In the place of a draw of a chance the bits are 22, 105, 115,
// 110 and 59, and one above 99 is drawn again.
const struct
{
    const char *what;
    ShapeStruct shape;
    bool hollow, even;
    Vector3 expected;
    int steps;
} Samples[] = {
    {"a point", SOME_POINT, true, true, {1, 2, 3}, 0},
    {"a ray", UPRIGHT_RAY, false, false, {0, 0, 8.874443f}, 1},
    {"an end of a ray", UPRIGHT_RAY, true, false, {0, 0, 0}, 1},
    {"a shell", Ball(2.5f, 10), false, false, {4.816533f, -4.116624f, -7.156104f}, 3},
    {"a shell, even", Ball(2.5f, 10), false, true, {4.886514f, -4.176436f, -7.260078f}, 3},
    {"a shell without a thickness draws no radius", Ball(4, 4), false, true, {2.015707f, -1.722797f, -2.994812f}, 2},
    {"36 in a hundred on the inner sphere", Ball(3, 4), true, false, {2.015707f, -1.722797f, -2.994812f}, 5},
    {"64 in a hundred on the inner sphere", Ball(4, 3), true, false, {2.015707f, -1.722797f, -2.994812f}, 5},
    {"a box", Make(SHAPE_BOX), false, false, {7.748886f, 7.487029f, 8.821339f}, 3},
    {"the last face of a box", Make(SHAPE_BOX), true, false, {10, 7.487029f, 8.821339f}, 3},
    {"a cap", Make(SHAPE_SPHERE_CAP), false, false, {0.585087f, -0.589874f, 9.373923f}, 3},
    {"the lower edge of a cap", Make(SHAPE_SPHERE_CAP), true, false, {5.763563f, -2.237378f, 6.182598f}, 3},
    {"a cylinder", Make(SHAPE_CYLINDER), false, false, {6.646633f, -5.680785f, 8.821339f}, 3},
    {"a cylinder, even", Make(SHAPE_CYLINDER), false, true, {7.108184f, -6.075266f, 8.821339f}, 3},
    {"the side of a cylinder", Make(SHAPE_CYLINDER), true, true, {7.601786f, -6.497141f, 7.487029f}, 2},
    {"a torus, even", Make(SHAPE_TORUS), false, true, {12.893357f, -5.005119f, -3.037633f}, 3},
    {"the skin of a torus", Make(SHAPE_TORUS), true, false, {9.718859f, -9.798390f, -3.248571f}, 2},
    {"the skin of a torus, even", Make(SHAPE_TORUS), true, true, {9.883439f, -9.964316f, -3.248571f}, 2},
    {"outward from nothing", Make(SHAPE_RADIAL), false, false, {0.149109f, 0.144070f, 0.169745f}, 4},
    {"outward from nothing, even", Make(SHAPE_RADIAL), false, true, {0.910892f, 0.880111f, 1.036961f}, 4},
    {"at the greatest speed", Make(SHAPE_RADIAL), true, false, {5.564568f, 5.376526f, 6.334710f}, 5},
    {"at one speed, even", ONE_SPEED, false, true, {5.564568f, 5.376526f, 6.334710f}, 4},
    {"no such shape", Make(8), true, true, {0, 0, 0}, 0},
};

void Expect_Drawn(const ShapeStruct &value, bool hollow, bool even, const ShapeParameterClass *position,
                  const Vector3 &at, const Vector3 &expected, int steps)
{
    ShapeParameterClass shape("", "", SHAPE_POINT);
    shape.Set_Value(value);
    RandomClass random(1);
    const Vector3 drawn = shape.Sample(random, hollow, even, position, at);
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(drawn[axis], expected[axis], 5e-6f) << "axis " << axis;
    EXPECT_EQ(Steps_To(random.Get_State()), steps);
}

TEST(ShapeSampling, DrawsInTheOrderOfTheForms)
{
    for (const auto &row : Samples) {
        SCOPED_TRACE(row.what);
        Expect_Drawn(row.shape, row.hollow, row.even, nullptr, Vector3(0.0f), row.expected, row.steps);
    }
}

// The speed is the first draw of 0 to 10, 8.874443.
const struct
{
    const char *what;
    ShapeStruct position;
    Vector3 at, expected;
    int steps;
} Outward[] = {
    {"a point", SOME_POINT, {1, 2, 3}, {4.444980f, 5.237147f, -5.618735f}, 4},
    {"square to a ray", UPRIGHT_RAY, {0, 0, 3}, {5.742571f, 6.765990f, 0}, 4},
    {"a ball", Ball(0, 20), {3, 4, 12}, {2.047948f, 2.730598f, 8.191793f}, 1},
    {"the centre of a ball", Ball(0, 20), {0, 0, 0}, {0, 0, 0}, 1},
    {"a cap", Make(SHAPE_SPHERE_CAP), {3, 4, 12}, {2.047948f, 2.730598f, 8.191793f}, 1},
    {"a box, by its widest side", SLAB, {15, -2.5f, 5.5f}, {4.437222f, -2.218611f, 0}, 1},
    {"a cylinder", Make(SHAPE_CYLINDER), {3, 4, 9}, {5.324666f, 7.099554f, 0}, 1},
    {"a torus", Make(SHAPE_TORUS), {12, 0, 2}, {6.275179f, 0, 6.275179f}, 1},
    {"no such shape", Make(99), {1, 1, 1}, {0, 0, 0}, 1},
};

TEST(ShapeSampling, RadialVelocitiesGoOutwardFromThePositionsShape)
{
    for (const auto &row : Outward) {
        SCOPED_TRACE(row.what);
        ShapeParameterClass position("", "", SHAPE_POINT);
        position.Set_Value(row.position);
        Expect_Drawn(Make(SHAPE_RADIAL), false, false, &position, row.at, row.expected, row.steps);
    }
}

TEST(ShapeSampling, ABatchHasThePointsOfSingleDraws)
{
    constexpr int COUNT = ShapeBatch::CAPACITY - 3;
    constexpr int BEFORE = 3; // steps of something else
    float x[ShapeBatch::CAPACITY], y[ShapeBatch::CAPACITY], z[ShapeBatch::CAPACITY];
    for (const ShapeStruct &value :
         {SOME_POINT, UPRIGHT_RAY, Ball(0, 10), Ball(2.5f, 10), Ball(10, 2.5f), Ball(4, 4), SLAB})
    {
        SCOPED_TRACE(testing::Message() << value.ShapeType << " " << value.C);
        ShapeParameterClass shape("", "", SHAPE_POINT);
        shape.Set_Value(value);
        const ShapeBatch batch(shape, false, false);
        ASSERT_TRUE(batch.Is_Possible());
        int refused = 0;
        for (uint32_t seed = 0; seed < 1000; ++seed) {
            RandomClass alone(seed * 0x9e3779b9u);
            std::vector<Vector3> expected;
            for (int i = 0; i < COUNT; ++i) {
                for (int step = 0; step < BEFORE; ++step) alone.Get_Byte();
                expected.push_back(shape.Sample(alone, false, false, nullptr, Vector3(0.0f)));
            }
            RandomClass random(seed * 0x9e3779b9u);
            const RandomLanes takers(random, BEFORE + batch.Get_Draw_Count());
            takers.Finish(random, COUNT);
            const bool repeats = random.Get_State() != alone.Get_State();
            const bool isDone = batch.Draw(takers.After(BEFORE), x, y, z, COUNT);
            ASSERT_FALSE(isDone && repeats);
            refused += !isDone;
            for (int i = 0; isDone && i < COUNT; ++i)
                ASSERT_EQ(Vector3(x[i], y[i], z[i]), expected[static_cast<size_t>(i)]) << "seed " << seed << ", " << i;
        }
        // Each draw is one of 32,768 to draw again.
        EXPECT_LE(refused, 2 * 1000 * COUNT * batch.Get_Draw_Count() / 32768 + 2);
        EXPECT_EQ(refused > 0, batch.Get_Draw_Count() > 0);
    }
}

TEST(ShapeSampling, AHollowBoxIsItsFacesByTheirArea)
{
    const Vector3 low = SLAB.BoxMinimum;
    const Vector3 high = SLAB.BoxMaximum;
    ShapeParameterClass shape("", "", SHAPE_POINT);
    shape.Set_Value(SLAB);
    RandomClass random(5);
    int faces[3] = {};
    for (int i = 0; i < 4000; ++i) {
        const Vector3 point = shape.Sample(random, true, i % 2, nullptr, Vector3(0.0f));
        int on = 0;
        for (int axis = 0; axis < 3; ++axis) {
            ASSERT_TRUE(point[axis] >= low[axis] && point[axis] <= high[axis]);
            const bool isOn = point[axis] == low[axis] || point[axis] == high[axis];
            on += isOn;
            faces[axis] += isOn;
        }
        ASSERT_GE(on, 1);
    }
    EXPECT_NEAR(faces[2], 4000 * 400 / 440, 100); // 400 a level face and 20 each other one
    EXPECT_NEAR(faces[0], 4000 * 20 / 440, 60);
}

TEST(ShapeSampling, PreparesASurfaceOnlyWhereAsked)
{
    // As loaded and never prepared, a hollow ball is its inner sphere alone.
    ShapeParameterClass shape("", "", SHAPE_SPHERE);
    RandomClass random(1);
    EXPECT_EQ(glm::length(shape.Sample(random, true, false, nullptr, Vector3(0.0f))), 0.0f);
    shape.Prepare_Surface_Table();
    for (int i = 0; i < 500; ++i)
        EXPECT_NEAR(glm::length(shape.Sample(random, true, false, nullptr, Vector3(0.0f))), 10.0f, 1e-5f);
}

TEST(ShapeSampling, YieldsSomethingForWhateverAFileHolds)
{
    constexpr float INF = std::numeric_limits<float>::infinity();
    RandomClass random(1);
    MKTest::Reports reports;
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), INF, -INF, 3e38f, -3.0f, 0.0f, 1e-45f}) {
        for (uint32_t type = 0; type <= SHAPE_COUNT; ++type) {
            ShapeStruct value = Make(type);
            value.Center = value.Direction = value.BoxMaximum = Vector3(bad);
            value.A = value.D = bad;
            for (float &extra : value.E) extra = bad;
            ShapeParameterClass shape("", "", SHAPE_POINT);
            shape.Set_Value(value);
            for (int flags = 0; flags < 8; ++flags) {
                const Vector3 drawn =
                    shape.Sample(random, flags & 1, flags & 2, flags & 4 ? &shape : nullptr, Vector3(bad));
                if (bad == 0.0f) {
                    EXPECT_FALSE(std::isnan(drawn.x)) << type << " " << flags;
                }
            }
        }
    }
    EXPECT_EQ(reports.Get_Text(), "");
}

} // namespace
