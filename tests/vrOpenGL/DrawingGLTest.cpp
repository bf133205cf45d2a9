#include "GLTestCase.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/drivercommon/vrRenderUtils.h"

#include <functional>

using testing::ElementsAre;

namespace
{

constexpr vrColor RED = Pack_Color(255, 0, 0, 255);
constexpr vrColor GREEN = Pack_Color(0, 255, 0, 255);
constexpr vrColor BLUE = Pack_Color(0, 0, 255, 255);

/// Draws whatever it is told.
class TestTask final : public vrRenderTask
{
public:
    explicit TestTask(std::function<void(vrRenderContext &)> draw) : Draw(std::move(draw)) {}
    void Pre_Render(const vrPreRenderContext &) override {}
    void Render(vrRenderContext &context) override { Draw(context); }
    vrBounds Get_Bounds() const override { return {}; }
    const void *Get_Owner() const override { return this; }

private:
    std::function<void(vrRenderContext &)> Draw;
};

class DrawingGLTest : public GLTestCase
{
protected:
    /// Covers the screen at a depth.
    void Cover(vrColor color, float depth, int rasterize, int depthStencil)
    {
        Driver().Set_Screen_Space(true);
        Driver().Begin_Primitive_State(rasterize, 0, depthStencil);
        vrRenderUtils::Render_2D_Quad(-1, 1, 1, -1, depth, {}, {}, color);
        Driver().End_Primitive_State();
        Driver().Set_Screen_Space(false);
    }

    SmartPtr<vrCamera> Camera{new vrCamera};
};

} // namespace

TEST_F(DrawingGLTest, FeedsWhatEachLayoutHasAndConstantsForTheRest)
{
    // A column of the picture for each attribute, from the left: normal, tangent, binormal, colour.
    auto shader = Make_Effect("Attributes", "vec3 c = uv.x < 0.25 ? normal : uv.x < 0.5 ? tangent : uv.x < 0.75 ? "
                                            "binormal : color.rgb; outColor = vec4(c, 1.0);");
    const auto draw = [&](int type) {
        vrPrimVertex *prim = nullptr;
        vrLitVertex *lit = nullptr;
        vrLitBumpVertex *bump = nullptr;
        if (type == VR_PRIM_VERTEX) Driver().Begin_Prim_Vertices(VR_PRIMITIVE_QUADS, 4, &prim);
        if (type == VR_LIT_VERTEX) Driver().Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &lit);
        if (type == VR_LIT_BUMP_VERTEX) Driver().Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, 4, &bump);
        for (const Vector2 uv : {Vector2(0.0f), Vector2(0.0f, 1.0f), Vector2(1.0f), Vector2(1.0f, 0.0f)}) {
            const Vector3 place(uv.x * 2.0f - 1.0f, 1.0f - uv.y * 2.0f, 0.0f);
            if (prim) *prim++ = {place, uv, GREEN};
            if (lit) *lit++ = {place, {1.0f, 1.0f, 0.0f}, uv, GREEN};
            if (bump) *bump++ = {place, {1.0f, 1.0f, 0.0f}, uv, {0.0f, 1.0f, 1.0f}, {1.0f, 0.0f, 1.0f}, GREEN};
        }
        Finish(*shader);
    };
    const struct
    {
        const char *What;
        int Type;
        std::vector<int> Normal, Tangent, Binormal;
    } rows[] = {
        {"prim", VR_PRIM_VERTEX, {0, 0, 255}, {255, 0, 0}, {0, 255, 0}},
        {"lit", VR_LIT_VERTEX, {255, 255, 0}, {255, 0, 0}, {0, 255, 0}},
        {"lit bump", VR_LIT_BUMP_VERTEX, {255, 255, 0}, {0, 255, 255}, {255, 0, 255}},
    };
    for (const auto &row : rows) {
        Begin();
        draw(row.Type);
        End();
        EXPECT_EQ(At(8, 32), row.Normal) << row.What;
        EXPECT_EQ(At(24, 32), row.Tangent) << row.What;
        EXPECT_EQ(At(40, 32), row.Binormal) << row.What;
        EXPECT_THAT(At(56, 32), ElementsAre(0, 255, 0)) << row.What;
    }
}

TEST_F(DrawingGLTest, BlendsAsItsCodesSay)
{
    // Source 200, 100, 50 with alpha 128 over 100, 150, 200; worked by hand.
    const struct
    {
        const char *What;
        int Code;
        std::vector<int> Expected;
    } rows[] = {
        {"opaque", VR_BLEND_OPAQUE, {200, 100, 50}},
        {"alpha", VR_BLEND_ALPHA, {150, 125, 125}},
        {"additive", VR_BLEND_ADDITIVE, {200, 200, 225}},
        {"modulate", VR_BLEND_MODULATE, {78, 59, 39}},
        {"modulate 2x", VR_BLEND_MODULATE_2X, {157, 118, 78}},
        {"premultiplied", VR_BLEND_PREMULTIPLIED, {250, 175, 150}},
        {"add one", VR_BLEND_ADD_ONE, {255, 250, 250}},
        {"subtract", VR_BLEND_SUBTRACT, {0, 100, 175}},
    };
    auto shader = Make_Effect("Color", "outColor = color;");
    for (const auto &row : rows) {
        Begin(RGBA_From_Bytes(100, 150, 200, 255));
        Draw_Quad(*shader, -1, 1, 1, -1, Pack_Color(200, 100, 50, 128), row.Code);
        End();
        Expect_Near(At(32, 32), row.Expected, 1, row.What);
    }
}

TEST_F(DrawingGLTest, TestsAndWritesDepthAsItsCodesSay)
{
    const struct
    {
        const char *What;
        int First, Second;
        std::vector<int> Expected; ///< red near first, then green far
    } rows[] = {
        {"written, then tested", VR_DEPTH_TEST_WRITE, VR_DEPTH_TEST, {255, 0, 0}},
        {"written, then not tested", VR_DEPTH_TEST_WRITE, VR_DEPTH_NONE, {0, 255, 0}},
        {"not written", VR_DEPTH_TEST, VR_DEPTH_TEST_WRITE, {0, 255, 0}},
        {"written untested", VR_DEPTH_WRITE, VR_DEPTH_TEST, {255, 0, 0}},
        {"off-screen", VR_DEPTH_WRITE, VR_DEPTH_NONE_OFFSCREEN, {0, 255, 0}},
    };
    for (const auto &row : rows) {
        Begin();
        Cover(RED, -0.5f, 0, row.First);
        Cover(GREEN, 0.5f, 0, row.Second);
        End();
        EXPECT_EQ(At(32, 32), row.Expected) << row.What;
    }
}

TEST_F(DrawingGLTest, CullsByTheWayRoundThatTheViewerSees)
{
    // Quads go top left, bottom left, bottom right, top right: counter-clockwise, which is the front.
    for (const int code : {VR_RASTERIZE_CULL_BACK, VR_RASTERIZE_CULL_FRONT, VR_RASTERIZE_CULL_NONE}) {
        Begin();
        Cover(RED, 0, code, 0);
        End();
        EXPECT_EQ(At(32, 32)[0], code == VR_RASTERIZE_CULL_FRONT ? 0 : 255) << code;
    }
}

TEST_F(DrawingGLTest, DrawsIndexedTrianglesAndRefusesIndicesBeyondTheVertices)
{
    auto shader = Make_Effect("Color", "outColor = color;");
    for (const uint16_t last : {uint16_t(3), uint16_t(4)}) {
        Begin();
        vrLitVertex *v = nullptr;
        uint16_t *indices = nullptr;
        ASSERT_TRUE(Driver().Begin_Indexed_Lit_Vertices(VR_PRIMITIVE_TRIANGLES, 4, &v, 3, &indices));
        v[0] = {{9, 9, 0}, {}, {}, BLUE}; // not among the indices
        v[1] = {{-1, 1, 0}, {}, {}, BLUE};
        v[2] = {{-1, -3, 0}, {}, {}, BLUE};
        v[3] = {{3, 1, 0}, {}, {}, BLUE};
        indices[0] = 1;
        indices[1] = 2;
        indices[2] = last;
        Finish(*shader);
        End();
        EXPECT_EQ(At(63, 63)[2], last == 3 ? 255 : 0);
    }
    EXPECT_EQ(Reports.Count_Asserts("index < vcount"), 1);
}

TEST_F(DrawingGLTest, AssertsTooManyVerticesAndStaysWithinItsBlock)
{
    auto shader = Make_Effect("Color", "outColor = color;");
    for (const int count : {MAX_PRIM_VERTICES, 1'000'000, -4, 0}) {
        Begin();
        vrLitBumpVertex *v = nullptr;
        ASSERT_TRUE(Driver().Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, count, &v)) << count;
        if (count > 0) std::fill_n(v, MAX_PRIM_VERTICES, vrLitBumpVertex{});
        Finish(*shader);
        End();
    }
    EXPECT_EQ(Reports.Count_Asserts("vcount < MAX_PRIM_VERTICES"), 2);
}

TEST_F(DrawingGLTest, GoesRoundItsRingWithoutMixingDraws)
{
    // 96 draws of 65,532 vertices are more than twenty times the ring; each has a row of pixels of its own.
    auto shader = Make_Effect("Color", "outColor = color;");
    Begin();
    for (int draw = 0; draw < 96; ++draw) {
        vrLitVertex *v = nullptr;
        ASSERT_TRUE(Driver().Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 65532, &v));
        std::fill_n(v, 65532, vrLitVertex{{9, 9, 9}, {}, {}, 0});
        const float top = 1.0f - 2.0f * float(draw % 64) / 64.0f, bottom = top - 2.0f / 64.0f;
        Fill_Quad(v + 65528, -1, top, 1, bottom, Pack_Color(uint32_t(draw), 0, 255, 255));
        Finish(*shader);
    }
    End();
    for (int row = 0; row < 64; ++row) EXPECT_THAT(At(32, row), ElementsAre(row < 32 ? 64 + row : row, 0, 255)) << row;
}

TEST_F(DrawingGLTest, DrawsIntoATargetAndSamplesItTheSameWayUp)
{
    auto color = Make_Effect("Color", "outColor = color;");
    auto textured = Make_Effect("Textured", "outColor = texture(BaseTexture, uv);",
                                "parameter texture2d BaseTexture = \"\" point_clamp\n");
    const auto target = Driver().Create_Render_Target("test", 16, 8, 0, 0, 0);
    ASSERT_TRUE(target);
    Begin();
    Driver().Set_Render_Target(0, target.Get(), 0);
    Driver().Set_Depth_Buffer(nullptr);
    EXPECT_EQ(Driver().Get_Viewport(), (vrViewport{0, 0, 16, 8}));
    const RGBAClass blue{0.0f, 0.0f, 1.0f, 1.0f};
    Driver().Clear(true, false, false, &blue, nullptr, 1.0f, 0);
    Draw_Quad(*color, -1, 1, 0, 0, GREEN); // the top left quarter
    Driver().Reset_Render_Target();
    Driver().Reset_Depth_Buffer();
    textured->Set_Texture(textured->Get_Parameter_Index("BaseTexture"), target.Get());
    Draw_Quad(*textured, -1, 1, 1, -1, VR_WHITE);
    End();
    EXPECT_THAT(At(31, 31), ElementsAre(0, 255, 0));
    EXPECT_THAT(At(32, 31), ElementsAre(0, 0, 255));
    EXPECT_THAT(At(31, 32), ElementsAre(0, 0, 255));
}

TEST_F(DrawingGLTest, KeepsHeatOutOfThePicture)
{
    auto shader = Make_Effect("Color", "outColor = color;");
    for (const bool hasHeat : {true, false}) {
        TestTask opaque([&](vrRenderContext &) { Draw_Quad(*shader, -1, 1, 1, -1, RED); });
        TestTask heat([&](vrRenderContext &) { Draw_Quad(*shader, -1, 1, 0, 0, BLUE); });
        vrRenderContext context(Camera.Get());
        context.PostFxMask = hasHeat ? uint32_t(VR_POSTFX_HEAT_DISTORTION) : 0;
        context.Add_Task(vrRenderPhaseEnum::Opaque, &opaque);
        context.Add_Task(vrRenderPhaseEnum::Heat, &heat);
        Begin();
        Driver().Render_Tasks(context);
        End();
        EXPECT_THAT(At(4, 4), ElementsAre(255, 0, 0)) << hasHeat;
        EXPECT_EQ(context.PostFxMask, hasHeat ? 2u : 0u);
    }
    EXPECT_EQ(Reports.Get_Asserts().size(), 0u) << Reports.Get_Text();
}
