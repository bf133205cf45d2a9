#pragma once

#include "common/Reports.h"
#include "common/TempFiles.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrOpenGL/vrEGLSurface.h"
#include "vrOpenGL/vrOpenGLDevice.h"
#include "vrOpenGL/vrOpenGLDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

/// Draws on whatever device this machine has, off-screen, and looks at the pixels. Skips where there is none.
class GLTestCase : public testing::Test
{
protected:
    static constexpr int SIZE = 64; ///< pixels, both sides of the picture

    void SetUp() override;
    void TearDown() override;

    vrOpenGLDriver &Driver() { return *vrOpenGLDriver::Get_Instance(); }
    /// Begins a frame with a cleared picture.
    void Begin(const RGBAClass &background = {0.0f, 0.0f, 0.0f, 1.0f});
    /// Ends the frame and reads the picture.
    void End();
    /// Red, green, blue of a pixel of the picture as it was read.
    std::vector<int> At(int x, int y) const;

    /// Writes an effect whose vertices are on the screen already; `fragment` is the body of its main, in which `uv`
    /// and `color` are the vertex's.
    SmartPtr<vrShaderInstance> Make_Effect(std::string_view name, std::string_view fragment,
                                           std::string_view declarations = "", std::string_view depth = "none");
    /// Writes a file of an effect as it is.
    SmartPtr<vrShaderInstance> Make_Effect_File(std::string_view name, std::string_view text);
    /// Draws a quad of lit vertices; x to the right and y up, -1 to 1.
    void Draw_Quad(vrShaderInstance &shader, float left, float top, float right, float bottom, vrColor color,
                   int blend = VR_BLEND_OPAQUE);
    /// Draws the open stream with the one pass of an effect.
    void Finish(vrShaderInstance &shader, int blend = VR_BLEND_OPAQUE);

    MKTest::Reports Reports;
    MKTest::TempDirectory Folder;
    std::unique_ptr<vrEGLSurface> Surface;
    std::unique_ptr<vrOpenGLDevice> Device;
    std::vector<uint8_t> Picture;
};

/// Writes the four vertices of such a quad.
void Fill_Quad(vrLitVertex *vertices, float left, float top, float right, float bottom, vrColor color);

/// Every channel of a pixel is at most `tolerance` away.
void Expect_Near(const std::vector<int> &pixel, const std::vector<int> &expected, int tolerance,
                 const std::string &what);
