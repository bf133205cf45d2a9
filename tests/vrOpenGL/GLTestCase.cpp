#include "GLTestCase.h"

void GLTestCase::SetUp()
{
    std::string error;
    Surface = vrEGLSurface::Create(SIZE, SIZE, error);
    if (!Surface) GTEST_SKIP() << "no OpenGL device off-screen: " << error;
    Device = std::make_unique<vrOpenGLDevice>(*Surface);
    ASSERT_TRUE(Device->Init()) << Reports.Get_Text();
    ASSERT_TRUE(Device->Create_Device(error)) << error;
    vrGraphicsDriver::Clear_Effects_Path();
    vrGraphicsDriver::Add_Effects_Path(Folder.Get_Path());
}

void GLTestCase::TearDown()
{
    Device.reset();
    vrGraphicsDriver::Clear_Effects_Path();
    vrGraphicsDriver::Set_Gamma(1.0f);
    vrGraphicsDriver::Set_Quality(4);
    EXPECT_EQ(TheGraphicsDriver, nullptr);
    // What the device itself has to say of what it was asked to do.
    EXPECT_FALSE(Reports.Has_Log("OpenGL: ")) << Reports.Get_Text();
}

void GLTestCase::Begin(const RGBAClass &background)
{
    ASSERT_TRUE(Driver().Begin_Frame()) << Reports.Get_Text();
    Driver().Reset_Render_Target();
    Driver().Reset_Depth_Buffer();
    Driver().Flush_State();
    Driver().Clear(true, true, true, &background, nullptr, 1.0f, 0);
}

void GLTestCase::End()
{
    Driver().End_Frame();
    Driver().Page_Flip(true);
    ASSERT_TRUE(Driver().Read_Back_Buffer(Picture));
    ASSERT_EQ(Picture.size(), size_t(Driver().Get_Width()) * size_t(Driver().Get_Height()) * 4);
}

std::vector<int> GLTestCase::At(int x, int y) const
{
    const size_t at = (size_t(y) * size_t(vrOpenGLDriver::Get_Instance()->Get_Width()) + size_t(x)) * 4;
    return {Picture.at(at), Picture.at(at + 1), Picture.at(at + 2)};
}

SmartPtr<vrShaderInstance> GLTestCase::Make_Effect(std::string_view name, std::string_view fragment,
                                                   std::string_view declarations, std::string_view depth)
{
    std::string text(declarations);
    text += "technique GLOBAL_LOD_0\n{\npass\n{\nblend opaque\ndepth " + std::string(depth) +
            "\nrasterize cull_none\n"
            "vertex\n{\nout vec2 uv; out vec4 color; out vec3 normal; out vec3 tangent; out vec3 binormal;\n"
            "void main() { uv = inUV; color = inColor; normal = inNormal; tangent = inTangent; binormal = inBinormal;\n"
            "gl_Position = vec4(inPosition, 1.0); }\n}\n"
            "fragment\n{\nin vec2 uv; in vec4 color; in vec3 normal; in vec3 tangent; in vec3 binormal;\n"
            "void main() { ";
    text += fragment;
    text += " }\n}\n}\n}\n";
    return Make_Effect_File(name, text);
}

SmartPtr<vrShaderInstance> GLTestCase::Make_Effect_File(std::string_view name, std::string_view text)
{
    Folder.Write(std::string(name) + ".mks", text);
    return Driver().Create_Shader_Instance(name);
}

void GLTestCase::Draw_Quad(vrShaderInstance &shader, float left, float top, float right, float bottom, vrColor color,
                           int blend)
{
    vrLitVertex *vertices = nullptr;
    ASSERT_TRUE(Driver().Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, 4, &vertices));
    Fill_Quad(vertices, left, top, right, bottom, color);
    Finish(shader, blend);
}

void GLTestCase::Finish(vrShaderInstance &shader, int blend)
{
    ASSERT_EQ(shader.Begin(nullptr, 0, 1), 1) << Reports.Get_Text();
    shader.Begin_Pass(0);
    vrRenderStateBlock block = Driver().Get_Render_State_Block();
    block.m_blendState = blend;
    Driver().Set_Render_State_Block(block);
    Driver().End_Lit_Vertices(); // as all the others
    shader.End_Pass();
    shader.End();
}

void Fill_Quad(vrLitVertex *vertices, float left, float top, float right, float bottom, vrColor color)
{
    const Vector3 normal(0.0f, 0.0f, 1.0f);
    vertices[0] = {{left, top, 0.0f}, normal, {0.0f, 0.0f}, color};
    vertices[1] = {{left, bottom, 0.0f}, normal, {0.0f, 1.0f}, color};
    vertices[2] = {{right, bottom, 0.0f}, normal, {1.0f, 1.0f}, color};
    vertices[3] = {{right, top, 0.0f}, normal, {1.0f, 0.0f}, color};
}

void Expect_Near(const std::vector<int> &pixel, const std::vector<int> &expected, int tolerance,
                 const std::string &what)
{
    ASSERT_EQ(pixel.size(), expected.size()) << what;
    for (size_t i = 0; i < pixel.size(); ++i)
        EXPECT_NEAR(pixel[i], expected[i], tolerance) << what << ", channel " << i;
}
