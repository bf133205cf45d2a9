#include "GLTestCase.h"

#include "vrGraphics/drivercommon/vrPicture2D.h"

using testing::ElementsAre;

namespace
{

class TexturesGLTest : public GLTestCase
{
protected:
    SmartPtr<vrOpenGLTexture> Make(const vrPicture2D &picture)
    {
        return vrOpenGLTexture::Make(Driver().Get_Device(), "test", {picture}, Error);
    }

    /// Draws a texture over the picture's top left, `size` pixels a side.
    void Draw(vrTexture *texture, int size, const char *sampler = "linear_clamp")
    {
        const auto shader = Make_Effect(std::string("Textured_") + sampler, "outColor = texture(BaseTexture, uv);",
                                        std::string("parameter texture2d BaseTexture = \"\" ") + sampler + "\n");
        ASSERT_FALSE(shader->Is_Missing_Effect()) << Reports.Get_Text();
        shader->Set_Texture(shader->Get_Parameter_Index("BaseTexture"), texture);
        Begin();
        const float side = 2.0f * float(size) / float(SIZE);
        Draw_Quad(*shader, -1, 1, -1 + side, 1 - side, VR_WHITE);
        End();
    }

    std::string Error;
};

vrPicture2D Plain(int width, int height, std::vector<uint8_t> bytes)
{
    vrPicture2D picture;
    picture.Levels.push_back({width, height, std::move(bytes)});
    return picture;
}

vrPicture2D Blocks(vrPicture2D::FormatType format, std::vector<uint8_t> bytes)
{
    vrPicture2D picture = Plain(4, 4, bytes);
    picture.Format = format;
    picture.Levels.push_back({2, 2, bytes});
    picture.Levels.push_back({1, 1, bytes});
    return picture;
}

} // namespace

TEST_F(TexturesGLTest, ShowsTheTopRowOnTop)
{
    const auto texture = Make(Plain(2, 2, {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 10, 20, 30, 255}));
    ASSERT_TRUE(texture) << Error;
    Draw(texture.Get(), SIZE, "point_clamp");
    EXPECT_THAT(At(63, 0), ElementsAre(0, 255, 0));
    EXPECT_THAT(At(0, 63), ElementsAre(0, 0, 255));
}

TEST_F(TexturesGLTest, AveragesTheLevelsThatAFileLacks)
{
    // Over one pixel, 2 by 2 texels show their mean, rounded: 10, 20, 30, 41 make 25.25.
    const auto texture = Make(Plain(2, 2, {10, 0, 0, 255, 20, 0, 0, 255, 30, 255, 0, 255, 41, 255, 0, 255}));
    ASSERT_TRUE(texture) << Error;
    Draw(texture.Get(), 1);
    EXPECT_THAT(At(0, 0), ElementsAre(25, 128, 0));
}

TEST_F(TexturesGLTest, ShowsBlocksWhetherTheDeviceTakesThemOrNot)
{
    // Both end colours pure red of 5 6 5 bits, all texels the first; alpha 255.
    const std::vector<uint8_t> color = {0x00, 0xf8, 0x00, 0xf8, 0, 0, 0, 0};
    std::vector<uint8_t> bc2(8, 0xff), bc3 = {255, 255, 0, 0, 0, 0, 0, 0};
    bc2.insert(bc2.end(), color.begin(), color.end());
    bc3.insert(bc3.end(), color.begin(), color.end());
    const vrPicture2D pictures[] = {Blocks(vrPicture2D::FORMAT_BC1, color), Blocks(vrPicture2D::FORMAT_BC2, bc2),
                                    Blocks(vrPicture2D::FORMAT_BC3, bc3)};
    for (const bool takesBlocks : {true, false}) {
        if (!takesBlocks) Driver().Get_Device()->Capabilities.HasBlockTextures = false;
        for (const vrPicture2D &picture : pictures) {
            const auto texture = Make(picture);
            ASSERT_TRUE(texture) << Error;
            Draw(texture.Get(), SIZE);
            EXPECT_THAT(At(32, 32), ElementsAre(255, 0, 0)) << picture.Format << takesBlocks;
        }
    }
}

TEST_F(TexturesGLTest, RefusesWhatNoDeviceTakes)
{
    vrPicture2D gap = Plain(4, 4, std::vector<uint8_t>(64));
    gap.Levels.push_back({1, 1, std::vector<uint8_t>(4)});
    const std::pair<const char *, vrPicture2D> rows[] = {
        {"no levels", {}},
        {"no size", Plain(0, 4, {})},
        {"short", Plain(2, 2, std::vector<uint8_t>(15))},
        {"a level left out", gap},
    };
    for (const auto &[what, refused] : rows) {
        Error.clear();
        EXPECT_FALSE(Make(refused)) << what;
        EXPECT_NE(Error, "") << what;
    }
    const vrPicture2D face = Plain(2, 2, std::vector<uint8_t>(16)), wide = Plain(2, 1, std::vector<uint8_t>(8));
    EXPECT_TRUE(vrOpenGLTexture::Make(Driver().Get_Device(), "cube", std::vector(6, face), Error)) << Error;
    EXPECT_FALSE(vrOpenGLTexture::Make(Driver().Get_Device(), "cube", std::vector(6, wide), Error));
    EXPECT_FALSE(vrOpenGLTexture::Make(Driver().Get_Device(), "cube", std::vector(2, face), Error));
}

TEST_F(TexturesGLTest, ShowsTheGenericTextureForOneThatIsTooLarge)
{
    Driver().Get_Device()->Capabilities.MaxTextureSize = 2;
    const auto texture = Make(Plain(4, 1, std::vector<uint8_t>(16)));
    ASSERT_TRUE(texture) << Error;
    Draw(texture.Get(), SIZE);
    EXPECT_THAT(At(32, 32), ElementsAre(255, 255, 255));
    EXPECT_EQ(Reports.Count_Logs("where the device takes 2 along a side"), 1);
}
