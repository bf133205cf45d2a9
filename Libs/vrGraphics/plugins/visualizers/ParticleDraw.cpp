// The step that hands built vertices to the driver.

#include "vrGraphics/plugins/visualizers/ParticleDraw.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

constexpr float OFFSET_TOLERANCE = 0.0001f;
constexpr int BASE_STAGES = 4; ///< that a particle's shader may have textures in

/// Drivers with depth states to set.
bool Has_Depth_State()
{
    const vrDriverType type = TheGraphicsDriver->Get_Driver_Type();
    return type == VR_DRIVER_D3D9 || type == VR_DRIVER_OPENGL;
}

void Switch_Depth_Off(vrRenderModeType mode)
{
    vrRenderStateBlock block = TheGraphicsDriver->Get_Render_State_Block();
    block.m_depthStencilState = mode == VR_RENDER_MODE_OFFSCREEN ? VR_DEPTH_NONE_OFFSCREEN : VR_DEPTH_NONE;
    TheGraphicsDriver->Set_Render_State_Block(block);
}

template <typename Vertex, typename Begin, typename End>
void Stream(const vrMKPSimpleVisualizerData &data, Begin &&begin, End &&end)
{
    const auto *vertices = static_cast<const Vertex *>(data.Vertices);
    for (int first = 0; first < data.VertexCount; first += MAX_DRAW_VERTICES) {
        const int count = std::min(data.VertexCount - first, MAX_DRAW_VERTICES);
        Vertex *room = nullptr;
        if (!begin(count, &room)) return;
        if (room) std::memcpy(room, vertices + first, static_cast<size_t>(count) * sizeof(Vertex));
        end();
    }
}

void Stream_Vertices(const vrMKPSimpleVisualizerData &data, vrPrimVertexType type)
{
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    if (type == VR_LIT_BUMP_VERTEX)
        Stream<vrLitBumpVertex>(
            data,
            [&](int count, vrLitBumpVertex **room) {
                return driver.Begin_Lit_Bump_Vertices(VR_PRIMITIVE_QUADS, count, room);
            },
            [&] { driver.End_Lit_Bump_Vertices(); });
    else
        Stream<vrLitVertex>(
            data,
            [&](int count, vrLitVertex **room) { return driver.Begin_Lit_Vertices(VR_PRIMITIVE_QUADS, count, room); },
            [&] { driver.End_Lit_Vertices(); });
}

} // namespace

vrMKPDepthOffsetScope::vrMKPDepthOffsetScope(vrCamera *camera, vrMKPSimpleVisualizerData &data, float offset)
    : Data(data)
{
    if (!(std::fabs(offset) > OFFSET_TOLERANCE) || !Is_Valid(offset)) return;
    if (!MK_VERIFY(camera != nullptr, "camera != NULL")) return;
    Camera = camera;
    Data.SavedCamera = camera->Get_Transform();
    const Vector3 axis = Data.SavedCamera.Get_Axis(2);
    const float length = glm::length(axis);
    Mat3DClass moved = Data.SavedCamera;
    if (length > 0.0f) moved.Set_Translation(moved.Get_Translation() + axis * (offset / length));
    Move_To(moved);
}

vrMKPDepthOffsetScope::~vrMKPDepthOffsetScope()
{
    if (Camera) Move_To(Data.SavedCamera);
}

void vrMKPDepthOffsetScope::Move_To(const Mat3DClass &transform)
{
    Camera->Set_Transform(transform);
    TheGraphicsDriver->Set_Camera(Camera);
}

vrMKPPassScope::vrMKPPassScope(vrShaderInstance &shader, const vrRenderContext &context, bool ignoresDepth)
    : Shader(shader), Mode(TheGraphicsDriver->Get_Render_Mode()),
      ChangesMode(ignoresDepth && Mode == VR_RENDER_MODE_OFFSCREEN)
{
    vrGraphicsDriver &driver = *TheGraphicsDriver;
    if (ChangesMode) driver.Set_Render_Mode(VR_RENDER_MODE_FULL_SCREEN, nullptr);
    Shader.Begin(&context, 0, 1);
    Shader.Begin_Pass(0);
    if (vrGraphicsDriver::Is_Untextured())
        for (int stage = 0; stage < BASE_STAGES; ++stage)
            driver.Set_Texture(stage, driver.Get_Generic_Texture().Get(), VR_SAMPLER_LINEAR_WRAP);
    if (ignoresDepth && Has_Depth_State()) Switch_Depth_Off(Mode);
}

vrMKPPassScope::~vrMKPPassScope()
{
    Shader.End_Pass();
    Shader.End();
    if (ChangesMode) TheGraphicsDriver->Set_Render_Mode(Mode, nullptr);
}

void vrMKPSimpleVisualizer::Do_Visualize(vrMKPBuffer &buffer, vrRenderContext &context) const
{
    auto *data = MK_Dynamic_Cast<vrMKPSimpleVisualizerData>(buffer.VisualizerData.Get());
    if (!data || data->VertexCount == 0 || !data->Vertices) return;
    if (TheGraphicsDriver && Shader) {
        const vrMKPDepthOffsetScope offset(context.Camera, *data, Get_Depth_Offset());
        const Mat3DClass identity; // the vertices are in the world
        TheGraphicsDriver->Set_World_Transform(&identity);
        Set_Lighting(buffer, context);
        const vrMKPPassScope pass(*Shader, context, Ignores_Depth());
        Stream_Vertices(*data, Get_Vertex_Type());
    }
    data->Drop_Vertices();
}
