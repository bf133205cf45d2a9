#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include "common/Reports.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"

#include <gmock/gmock.h>

using MKTest::Reports;
using testing::ElementsAre;

namespace
{

class NullDriver : public testing::Test
{
protected:
    NullDriver() { vrNullDriverMethods::Init(nullptr, 640, 480); }
    ~NullDriver() override
    {
        vrNullDriverMethods::Set_Recording(false);
        vrNullDriverMethods::Shutdown();
    }
    Reports Told;
};

} // namespace

TEST_F(NullDriver, OneDriverAtATime)
{
    EXPECT_FALSE(vrNullDriverMethods::Init(nullptr, 1, 1));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("TheGraphicsDriver == NULL"));
    vrNullDriverMethods::Shutdown();
    EXPECT_EQ(TheGraphicsDriver, nullptr);
    vrNullDriverMethods::Shutdown();
    EXPECT_TRUE(vrNullDriverMethods::Init(nullptr, 1, 1)) << "it starts again";
}

TEST_F(NullDriver, RequestsPastTheLimitAssertAndGetRoomForAllOfTheirVertices)
{
    vrLitBumpVertex *usual = nullptr;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 65534, &usual));
    EXPECT_TRUE(Told.Get_Asserts().empty());
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 65535, &usual));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("vcount < MAX_PRIM_VERTICES"));
    ASSERT_NE(usual, nullptr);
    usual[65534].Color = VR_WHITE;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 262140, &usual));
    usual[262139].Color = VR_WHITE; // the sanitizers watch this one
    EXPECT_FALSE(TheGraphicsDriver->Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 2147483647, &usual));
    EXPECT_EQ(usual, nullptr);
    TheGraphicsDriver->End_Lit_Bump_Vertices();
}

TEST_F(NullDriver, RequestsWithoutAPlaceOrWithTooManyIndicesAssert)
{
    EXPECT_FALSE(TheGraphicsDriver->Begin_Prim_Vertices(VR_PRIMITIVE_LINES, 2, nullptr));
    vrLitVertex *vertices = nullptr;
    uint16_t *indices = nullptr;
    EXPECT_TRUE(TheGraphicsDriver->Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 4, &vertices, 65535, &indices));
    EXPECT_THAT(Told.Get_Asserts(), ElementsAre("ppv != NULL", "icount < MAX_PRIM_INDICES"));
    ASSERT_NE(indices, nullptr);
    indices[65534] = 1;
    EXPECT_FALSE(TheGraphicsDriver->Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 4, &vertices, 3, nullptr));
    EXPECT_EQ(vertices, nullptr);
}

TEST_F(NullDriver, AShaderOfARunWithoutADeviceIsEmpty)
{
    const auto shader = TheGraphicsDriver->Create_Shader_Instance("Anything.mks");
    EXPECT_EQ(shader->Get_Parameter_Index("whatever"), 0);
    shader->Set_Float(0, 7.0f);
    float value = 5.0f;
    EXPECT_FALSE(shader->Get_Float(0, value));
    EXPECT_EQ(value, 0.0f);
    EXPECT_EQ(Told.Get_Text(), "");
}

TEST_F(NullDriver, AQuadOnTheScreenHasItsCornersInOrder)
{
    vrNullDriverMethods::Set_Recording(true);
    vrRenderUtils::Begin_Render_2D_Quad(nullptr, 0, 0, VR_SAMPLER_PLAIN);
    EXPECT_TRUE(TheGraphicsDriver->Is_Screen_Space());
    vrRenderUtils::Render_2D_Quad(-1.0f, 1.0f, 1.0f, -1.0f, 0.5f, {0.0f, 0.0f}, {1.0f, 1.0f}, VR_WHITE);
    vrRenderUtils::End_Render_2D_Quad();
    EXPECT_FALSE(TheGraphicsDriver->Is_Screen_Space());
    ASSERT_EQ(vrNullDriverMethods::Get_Draws().size(), 1u);
    const auto corners = vrNullDriverMethods::Get_Draws()[0].Get_Vertices<vrPrimVertex>();
    ASSERT_EQ(corners.size(), 4u);
    const float expected[4][4] = {{-1, 1, 0, 0}, {-1, -1, 0, 1}, {1, -1, 1, 1}, {1, 1, 1, 0}};
    for (size_t corner = 0; corner < 4; ++corner) {
        EXPECT_EQ(corners[corner].Position, Vector3(expected[corner][0], expected[corner][1], 0.5f)) << corner;
        EXPECT_EQ(corners[corner].UV, Vector2(expected[corner][2], expected[corner][3])) << corner;
    }
}
