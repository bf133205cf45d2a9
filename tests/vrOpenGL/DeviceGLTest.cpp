#include "GLTestCase.h"

#include <epoxy/gl.h>

#include <array>

using testing::ElementsAre;

namespace
{

class DeviceGLTest : public GLTestCase
{
protected:
    SmartPtr<vrShaderInstance> Make_Color() { return Make_Effect("Color", "outColor = color;"); }
    /// What is drawn is seen.
    void Expect_Draws(vrShaderInstance &shader)
    {
        Begin();
        Draw_Quad(shader, -1, 1, 1, -1, Pack_Color(1, 2, 3, 255));
        End();
        EXPECT_THAT(At(5, 5), ElementsAre(1, 2, 3));
    }
};

/// A surface that hands calls on to another one, until it fails.
class FailingSurface : public vrSurface
{
public:
    explicit FailingSurface(vrSurface &inner) : Inner(inner) {}
    bool Make_Current() override { return !Fails && Inner.Make_Current(); }
    void Release_Current() override { Inner.Release_Current(); }
    int Get_Width() const override { return Inner.Get_Width(); }
    int Get_Height() const override { return Inner.Get_Height(); }
    void Swap() override { Inner.Swap(); }
    unsigned Get_Generation() const override { return Inner.Get_Generation(); }
    std::string Describe() const override { return "failing surface"; }

    bool Fails = false;

protected:
    vrSurface &Inner;
};

/// A surface with a framebuffer object to show pictures in, as a window of a toolkit has.
class ShowingSurface final : public FailingSurface
{
public:
    static constexpr int SIDE = 8;

    explicit ShowingSurface(vrSurface &inner) : FailingSurface(inner)
    {
        Inner.Make_Current();
        glGenRenderbuffers(1, &Buffer);
        glBindRenderbuffer(GL_RENDERBUFFER, Buffer);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, SIDE, SIDE);
        glGenFramebuffers(1, &Framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, Framebuffer);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, Buffer);
    }
    int Get_Width() const override { return SIDE; }
    int Get_Height() const override { return SIDE; }
    unsigned Get_Framebuffer() const override { return Framebuffer; }
    void Swap() override
    {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, Framebuffer);
        glReadPixels(0, 0, SIDE, SIDE, GL_RGBA, GL_UNSIGNED_BYTE, Shown.data());
    }
    /// As the system counts rows, from the bottom.
    std::vector<int> At(size_t x, size_t y) const
    {
        const uint8_t *pixel = &Shown[(y * SIDE + x) * 4];
        return {pixel[0], pixel[1], pixel[2]};
    }

private:
    GLuint Buffer = 0;
    GLuint Framebuffer = 0;
    std::array<uint8_t, SIDE * SIDE * 4> Shown{};
};

} // namespace

TEST_F(DeviceGLTest, SaysWhyThereIsNoDeviceAndDrawsNothingMeanwhile)
{
    Device.reset();
    FailingSurface surface(*Surface);
    surface.Fails = true;
    vrOpenGLDevice device(surface);
    std::string error;
    EXPECT_FALSE(device.Create_Device(error)); // not started
    ASSERT_TRUE(device.Init());
    EXPECT_FALSE(device.Create_Device(error));
    EXPECT_THAT(error, testing::HasSubstr("failing surface"));

    vrLitVertex *vertices = nullptr;
    const auto shader = Make_Color();
    EXPECT_FALSE(Driver().Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &vertices));
    EXPECT_FALSE(Driver().Read_Back_Buffer(Picture));

    // What was made meanwhile works as soon as there is a device.
    surface.Fails = false;
    ASSERT_TRUE(device.Create_Device(error)) << error;
    Expect_Draws(*shader);

    // Then it goes, and stays away for some frames.
    surface.Fails = true;
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(device.Is_Device_Operational());
        EXPECT_FALSE(Driver().Begin_Frame());
        Driver().Page_Flip(true);
        EXPECT_EQ(shader->Begin(nullptr, 0, 1), 0);
    }
    EXPECT_EQ(Reports.Count_Logs("is lost"), 1);
    surface.Fails = false;
    EXPECT_TRUE(device.Is_Device_Operational());
    Expect_Draws(*shader);
}

TEST_F(DeviceGLTest, FollowsTheSizeOfItsSurface)
{
    const auto shader = Make_Color();
    const auto scene = Driver().Get_Full_Screen_Target(SceneImage_RT);
    Surface->Set_Size(20, 10);
    Device->Resize_Back_Buffer(-1, -1);
    EXPECT_EQ(Driver().Get_Width(), 20);
    EXPECT_EQ(scene->Get_Height(), 10);
    Begin();
    Driver().Set_Viewport({8, 4, 12, 6});
    Draw_Quad(*shader, -1, 1, 1, -1, VR_WHITE);
    End();
    EXPECT_THAT(At(19, 9), ElementsAre(255, 255, 255));
    EXPECT_THAT(At(7, 4), ElementsAre(0, 0, 0));

    for (const int size : {0, -7}) {
        Surface->Set_Size(size, size);
        Device->Resize_Back_Buffer(size, -1);
        EXPECT_FALSE(Device->Is_Device_Operational());
        EXPECT_EQ(Driver().Get_Width(), 20);
    }
    Device->Resize_Back_Buffer(2'000'000'000, 1);
    EXPECT_LE(Driver().Get_Width(), Driver().Get_Device()->Capabilities.MaxTextureSize);
}

TEST_F(DeviceGLTest, DrawsTheSameAfterTheContextWasLost)
{
    vrPicture2D picture;
    picture.Levels.push_back({1, 1, {10, 200, 30, 255}});
    std::string error;
    const auto texture = vrOpenGLTexture::Make(Driver().Get_Device(), "test", {picture}, error);
    const auto target = Driver().Create_Render_Target("test", 8, 8, 0, 0, 0);
    auto shader = Make_Effect("Textured", "outColor = texture(BaseTexture, uv);",
                              "parameter texture2d BaseTexture = \"\" plain\n");
    shader->Set_Texture(0, texture.Get());
    for (int round = 0; round < 3; ++round) {
        Begin();
        Draw_Quad(*shader, -1, 1, 1, -1, VR_WHITE);
        Driver().Set_Render_Target(0, target.Get(), 0);
        Draw_Quad(*shader, -1, 1, 1, -1, VR_WHITE);
        End();
        EXPECT_THAT(At(40, 40), ElementsAre(10, 200, 30)) << round;
        Surface->Lose_Context();
        EXPECT_FALSE(Driver().Read_Back_Buffer(Picture));
        EXPECT_TRUE(Device->Is_Device_Operational()) << round;
    }
    EXPECT_EQ(Reports.Count_Logs("The graphics device is back"), 3);
}

TEST_F(DeviceGLTest, EndsAFrameWhoseContextIsLostInItsMiddle)
{
    const auto shader = Make_Color();
    Begin();
    Draw_Quad(*shader, -1, 1, 1, -1, VR_WHITE);
    Surface->Lose_Context();
    vrLitVertex *vertices = nullptr;
    if (Driver().Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &vertices)) {
        Fill_Quad(vertices, -1, 1, 1, -1, VR_WHITE);
        Finish(*shader);
    }
    Driver().Copy_Target_To(Driver().Get_Full_Screen_Target(SceneImage_RT));
    Driver().End_Frame();
    Driver().Page_Flip(true);
    EXPECT_FALSE(vrGraphicsDriver::Is_Inside_Frame());
    ASSERT_TRUE(Device->Is_Device_Operational());
    Expect_Draws(*shader);
}

TEST_F(DeviceGLTest, ShowsThePictureTheRightWayUp)
{
    Device.reset();
    ShowingSurface surface(*Surface);
    vrOpenGLDevice device(surface);
    std::string error;
    ASSERT_TRUE(device.Init());
    ASSERT_TRUE(device.Create_Device(error)) << error;
    const auto shader = Make_Color();
    Begin();
    Draw_Quad(*shader, -1, 1, 0, 0, Pack_Color(9, 8, 7, 255));
    End();
    EXPECT_THAT(surface.At(3, 4), ElementsAre(9, 8, 7));
    EXPECT_THAT(surface.At(0, 3), ElementsAre(0, 0, 0));
    EXPECT_THAT(surface.At(4, 7), ElementsAre(0, 0, 0));
}

TEST_F(DeviceGLTest, OutlivesWhatIsHeldOfIt)
{
    const auto shader = Make_Color();
    const auto target = Driver().Create_Render_Target("test", 8, 8, 0, 0, 0);
    const auto depth = Driver().Create_Depth_Buffer(8, 8, 1, 0, 0);
    Device.reset();
    EXPECT_FALSE(target->Is_Valid());
    EXPECT_EQ(shader->Begin(nullptr, 0, 1), 0);
}

TEST_F(DeviceGLTest, RefusesTargetsThatItCannotMake)
{
    for (const auto &[width, height, format] : {std::tuple{0, 8, 0}, {1 << 30, 8, 0}, {8, 8, 99}, {8, 8, -1}})
        EXPECT_FALSE(Driver().Create_Render_Target("bad", width, height, format, 0, 0));
    EXPECT_EQ(Reports.Count_Logs("The render target bad of"), 4);
    EXPECT_FALSE(Driver().Create_Depth_Buffer(0, 0, 1, 0, 0));
}
