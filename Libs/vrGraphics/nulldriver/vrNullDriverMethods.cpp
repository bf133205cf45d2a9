#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrPicture2D.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/nulldriver/vrNullTextures.h"
#include "vrGraphics/postfx/vrPostFxManager.h"

#include <algorithm>

bool vrNullDriverMethods::Initialized = false;
bool vrNullDriverMethods::RunsTasks = false;
bool vrNullDriverMethods::IsRecording = false;
std::vector<vrNullDrawRecord> vrNullDriverMethods::Draws;

namespace
{

constexpr size_t VERTEX_BLOCK_BYTES = 0x3BFFC4; ///< 65535 of the largest
constexpr size_t INDEX_BLOCK_COUNT = 65535;
/// What a request beyond the limit may still grow a block to: four vertices for each of the most particles that there
/// can be, and as much again many times over.
constexpr size_t LARGEST_BLOCK_BYTES = 0x4000000;

/// As large as it was, or as is asked for where somebody asks for too much; the caller writes what it asked for.
template <typename Element>
bool Make_Room(std::vector<Element> &block, size_t count)
{
    if (count <= block.size()) return true;
    if (count * sizeof(Element) > LARGEST_BLOCK_BYTES) return false;
    block.resize(count);
    return true;
}

} // namespace

vrNullDriverMethods::vrNullDriverMethods(int width, int height) : Width(width), Height(height)
{
    Viewport = {0, 0, width, height};
}

vrNullDriverMethods::~vrNullDriverMethods() = default;

bool vrNullDriverMethods::Init(void * /*context*/, int width, int height)
{
    if (!MK_VERIFY(TheGraphicsDriver == nullptr, "TheGraphicsDriver == NULL")) return false;
    auto *driver = new vrNullDriverMethods(std::max(width, 1), std::max(height, 1));
    TheGraphicsDriver = driver;
    Initialized = driver->Start();
    if (Initialized) return true;
    TheGraphicsDriver = nullptr;
    delete driver;
    return false;
}

bool vrNullDriverMethods::Start()
{
    if (!Start_Shared(std::make_unique<vrPostFxManager>(*this))) return false;
    GenericTexture = new vrNullTexture2D("GenericWhite", 1, 1);
    VertexBlock.resize(VERTEX_BLOCK_BYTES);
    IndexBlock.resize(INDEX_BLOCK_COUNT);
    return true;
}

void vrNullDriverMethods::Shutdown()
{
    if (!Initialized) return;
    auto *driver = static_cast<vrNullDriverMethods *>(TheGraphicsDriver);
    driver->Shut_Down_Shared();
    Clear_Draws();
    delete driver;
    Initialized = false;
    TheGraphicsDriver = nullptr;
}

void vrNullDriverMethods::Set_Recording(bool recording)
{
    IsRecording = recording;
    Clear_Draws();
}

void vrNullDriverMethods::Set_Size(int width, int height)
{
    Width = std::max(width, 1);
    Height = std::max(height, 1);
    Viewport = {0, 0, Width, Height};
}

void vrNullDriverMethods::Page_Flip(bool /*present*/)
{
    Count_Page_Flip();
}

void vrNullDriverMethods::Set_Renderer_Type(vrRendererTypeEnum /*type*/, bool /*force*/)
{
    MK_ASSERT(Is_Main_Thread() || !RenderThread::InParallelSection,
              "(Is_Main_Thread() || !RenderThread::InParallelSection) && \"Attempting to call a function from an "
              "unsafe section of code.\"");
}

void vrNullDriverMethods::Set_Render_Mode(vrRenderModeType mode, vrRenderContext *context)
{
    if (!RunsTasks) return;
    Mode = mode;
    if (context) context->Mode = mode;
}

vrRenderModeType vrNullDriverMethods::Get_Render_Mode() const
{
    return RunsTasks ? Mode : VR_RENDER_MODE_NORMAL;
}

void vrNullDriverMethods::Render_Tasks(vrRenderContext &context)
{
    if (RunsTasks) {
        context.Sort_Tasks();
        context.Pre_Render_Tasks();
        Render_Phases(context);
        Phase = vrRenderPhaseEnum::Terrain;
    }
    context.Clear_Tasks();
    vrGraphicsStats::Renders.fetch_add(1, std::memory_order_relaxed);
}

void vrNullDriverMethods::Before_Phase(vrRenderContext &context)
{
    Phase = context.Phase;
}

void vrNullDriverMethods::Set_Render_Target(int index, vrRenderTarget *target, int /*face*/)
{
    if (index == 0) Target = target;
}

SmartPtr<vrRenderTarget> vrNullDriverMethods::Create_Render_Target(const char *name, int width, int height,
                                                                   int /*format*/, int /*usage*/, int /*flag*/)
{
    return new vrNullRenderTarget(name ? name : "", width, height);
}

SmartPtr<vrDepthBuffer> vrNullDriverMethods::Create_Depth_Buffer(int width, int height, int /*type*/, int /*format*/,
                                                                 int /*flag*/)
{
    return new vrNullDepthBuffer("", width, height);
}

vrRenderTarget *vrNullDriverMethods::Get_Auxiliary_Render_Target(vrAuxiliaryRTEnum target)
{
    constexpr const char *NAMES[] = {"Reflection_RT", "Refraction_RT", "ShadowmapColor_RT"};
    const auto index = static_cast<size_t>(target);
    if (index >= AuxiliaryTargets.size()) return nullptr;
    if (!AuxiliaryTargets[index]) AuxiliaryTargets[index] = new vrNullRenderTarget(NAMES[index], Width, Height);
    return AuxiliaryTargets[index].Get();
}

vrDepthBuffer *vrNullDriverMethods::Get_Auxiliary_Depth_Buffer(vrAuxiliaryDepthBufferEnum buffer)
{
    constexpr const char *NAMES[] = {"Reflection_DB", "Refraction_DB", "ShadowmapHW_DB"};
    const auto index = static_cast<size_t>(buffer);
    if (index >= AuxiliaryDepthBuffers.size()) return nullptr;
    if (!AuxiliaryDepthBuffers[index])
        AuxiliaryDepthBuffers[index] = new vrNullDepthBuffer(NAMES[index], Width, Height);
    return AuxiliaryDepthBuffers[index].Get();
}

void vrNullDriverMethods::Set_World_Transform(const Mat3DClass *transform)
{
    World = transform ? *transform : Mat3DClass{};
}

void *vrNullDriverMethods::Begin_Draw(vrPrimVertexType type, vrPrimitiveKind kind, int vcount, int icount,
                                      uint16_t **indices)
{
    const size_t vertexCount = static_cast<size_t>(std::max(vcount, 0));
    const size_t indexCount = static_cast<size_t>(std::max(icount, 0));
    IsDrawOpen = Make_Room(VertexBlock, vertexCount * static_cast<size_t>(Get_Vertex_Size(type))) &&
                 Make_Room(IndexBlock, indexCount);
    if (!IsDrawOpen) return nullptr;
    DrawType = type;
    DrawKind = kind;
    DrawVertices = static_cast<int>(vertexCount);
    DrawIndices = indices ? static_cast<int>(indexCount) : 0;
    if (indices) *indices = IndexBlock.data();
    return VertexBlock.data();
}

void vrNullDriverMethods::End_Draw(vrPrimVertexType type)
{
    if (!IsDrawOpen || type != DrawType) return;
    IsDrawOpen = false;
    if (DrawVertices == 0) return;
    vrGraphicsStats::Draws.fetch_add(1, std::memory_order_relaxed);
    vrGraphicsStats::Vertices.fetch_add(DrawVertices, std::memory_order_relaxed);
    if (IsRecording) Record_Draw();
}

void vrNullDriverMethods::Record_Draw()
{
    const std::ptrdiff_t bytes = std::ptrdiff_t(DrawVertices) * Get_Vertex_Size(DrawType);
    vrNullDrawRecord &record = Draws.emplace_back();
    record.Type = DrawType;
    record.Kind = DrawKind;
    record.VertexCount = DrawVertices;
    record.Vertices.assign(VertexBlock.begin(), VertexBlock.begin() + bytes);
    record.Indices.assign(IndexBlock.begin(), IndexBlock.begin() + DrawIndices);
    record.Phase = Phase;
    record.Mode = Get_Render_Mode();
    record.State = Get_Render_State_Block();
    record.World = World;
}

SmartPtr<vrShaderInstance> vrNullDriverMethods::Create_Shader_Instance(std::string_view name)
{
    const std::lock_guard lock(EffectsLock);
    return new vrNullEffectInstance(name, Effects);
}

SmartPtr<vrTexture> vrNullDriverMethods::Make_Texture(std::string_view name, const vrPicture2D &picture,
                                                      std::string & /*error*/)
{
    const vrPicture2D::LevelType &level = picture.Levels.front();
    return new vrNullTexture2D(MK::String(name), level.Width, level.Height);
}

SmartPtr<vrTexture> vrNullDriverMethods::Make_Cube_Texture(std::string_view name,
                                                           const std::array<vrPicture2D, 6> &faces,
                                                           std::string & /*error*/)
{
    return new vrNullTextureCube(MK::String(name), faces.front().Levels.front().Width);
}
