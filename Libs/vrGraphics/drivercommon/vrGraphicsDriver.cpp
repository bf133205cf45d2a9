#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/drivercommon/vrTextureCache.h"
#include "vrGraphics/drivercommon/vrTextureSearch.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <thread>

vrGraphicsDriver *TheGraphicsDriver = nullptr;

bool vrGraphicsDriver::m_bInsideFrame = false;
uint64_t vrGraphicsDriver::m_toggleableStates = INITIAL_TOGGLEABLE_STATES;
uint32_t vrGraphicsDriver::PostFxPermissions = VR_POSTFX_ALL;
uint32_t vrGraphicsDriver::ParticlePasses = PASS_PRE_RENDER | PASS_RENDER;
Vector2 vrGraphicsDriver::ShadowInverseResolution{0.0f};
bool vrGraphicsDriver::Untextured = false;
float vrGraphicsDriver::Gamma = 1.0f;
int vrGraphicsDriver::Quality = 4;

namespace
{

MKDebug::Logger VorenLog("VorenLog");

using MKDebug::LogLevel;

constexpr int GAMMA_TABLE_COUNT = 2;

/// What the static part keeps, made at its first use so that no order of static objects matters.
struct SharedState
{
    std::vector<MK::String> EffectsPath;
    MK::String PostFxsPath;
    SmartPtr<vrTexture> CloudShadow;
    SmartPtr<vrTexture> FogOfWar;
    SmartPtr<vrTexture> ShadowDepth;
    std::array<vrGammaTable, GAMMA_TABLE_COUNT> GammaTables{vrGammaTable::Of_Exponent(1.0f),
                                                            vrGammaTable::Of_Exponent(1.0f)};
};

SharedState &Shared()
{
    static SharedState state;
    return state;
}

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

vrGraphicsDriver::vrGraphicsDriver()
    : MainThreadId(std::hash<std::thread::id>()(std::this_thread::get_id())), Textures(std::make_unique<TextureCache>())
{
}

vrGraphicsDriver::~vrGraphicsDriver() = default;

void vrGraphicsDriver::Enable(uint64_t mask, bool on)
{
    m_toggleableStates = on ? m_toggleableStates | mask : m_toggleableStates & ~mask;
}

bool vrGraphicsDriver::Load_PostFxs_Chain(const char *file_name)
{
    if (!MK_VERIFY(file_name, "file_name && \"PostFxs chain file name is NULL. Call Brem.\"")) return false;
    if (TheGraphicsDriver && TheGraphicsDriver->PostFx) return TheGraphicsDriver->PostFx->Load_Chain(file_name);
    MK_LOG(VorenLog, LogLevel::Warning, "The post-effects of %s can't be loaded: there is no driver to run them",
           file_name);
    return false;
}

void vrGraphicsDriver::Add_Effects_Path(std::string_view path)
{
    Shared().EffectsPath.push_back(With_Separator(path));
}

void vrGraphicsDriver::Add_Texture_Path(std::string_view path)
{
    TextureSearch::Add_Path(path);
}

void vrGraphicsDriver::Clear_Effects_Path()
{
    Shared().EffectsPath.clear();
}

void vrGraphicsDriver::Clear_Texture_Path()
{
    TextureSearch::Clear_Paths();
}

void vrGraphicsDriver::Set_PostFxs_Path(std::string_view path)
{
    Shared().PostFxsPath = With_Separator(path);
}

const std::vector<MK::String> &vrGraphicsDriver::Get_Effects_Path()
{
    return Shared().EffectsPath;
}

const std::vector<MK::String> &vrGraphicsDriver::Get_Texture_Path()
{
    return TextureSearch::Get_Paths();
}

const MK::String &vrGraphicsDriver::Get_PostFxs_Path()
{
    return Shared().PostFxsPath;
}

void vrGraphicsDriver::Set_Cloud_Shadow_Texture(vrTexture *texture)
{
    Shared().CloudShadow = texture;
}

void vrGraphicsDriver::Set_Fog_Of_War_Texture(vrTexture *texture)
{
    Shared().FogOfWar = texture;
}

void vrGraphicsDriver::Set_Shadow_Depth_Texture(vrTexture *texture)
{
    Shared().ShadowDepth = texture;
    if (!texture) return;
    ShadowInverseResolution = {1.0f / static_cast<float>(std::max(texture->Get_Width(), 1)),
                               1.0f / static_cast<float>(std::max(texture->Get_Height(), 1))};
}

vrTexture *vrGraphicsDriver::Get_Cloud_Shadow_Texture()
{
    return Shared().CloudShadow.Get();
}

vrTexture *vrGraphicsDriver::Get_Fog_Of_War_Texture()
{
    return Shared().FogOfWar.Get();
}

vrTexture *vrGraphicsDriver::Get_Shadow_Depth_Texture()
{
    return Shared().ShadowDepth.Get();
}

const vrGammaTable &vrGraphicsDriver::Get_Gamma_Table(int table)
{
    return Shared().GammaTables[static_cast<size_t>(std::clamp(table, 0, GAMMA_TABLE_COUNT - 1))];
}

void vrGraphicsDriver::Set_Gamma(float exponent)
{
    Gamma = MK_VERIFY(exponent > 0.0f && std::isfinite(exponent), "exponent > 0.0f") ? exponent : 1.0f;
    Shared().GammaTables = {vrGammaTable::Of_Exponent(Gamma), vrGammaTable::Of_Exponent(1.0f / Gamma)};
}

bool vrGraphicsDriver::Begin_Frame()
{
    m_bInsideFrame = Begin_Device_Frame();
    return m_bInsideFrame;
}

void vrGraphicsDriver::End_Frame()
{
    if (!MK_VERIFY(m_bInsideFrame,
                   "vrGraphicsDriver::m_bInsideFrame && \"Ending a frame when currently not inside frame. \""))
        return;
    End_Device_Frame();
    Flush_Register_Textures();
    ParticleScratch::Reset();
    m_bInsideFrame = false;
}

void vrGraphicsDriver::Count_Page_Flip()
{
    const double now = Now();
    if (FrameCount > 0) FrameSeconds = static_cast<float>(now - LastFlipSeconds);
    LastFlipSeconds = now;
    ++FrameCount;
}

void vrGraphicsDriver::Set_Render_State_Block(const vrRenderStateBlock &rs)
{
    MK_ASSERT(rs.m_rasterizeState != VR_RENDER_STATE_INVALID,
              "(rs.m_rasterizeState != VR_RENDER_STATE_INVALID) && \"Invalid rasterize state. Call Brem.\"");
    MK_ASSERT(rs.m_blendState != VR_RENDER_STATE_INVALID,
              "(rs.m_blendState != VR_RENDER_STATE_INVALID) && \"Invalid blend state. Call Brem.\"");
    if (IsStateBlockKnown && rs == StateBlock) return;
    StateBlock = rs;
    IsStateBlockKnown = true;
    vrGraphicsStats::StateChanges.fetch_add(1, std::memory_order_relaxed);
    Apply_Render_State_Block(rs);
}

bool vrGraphicsDriver::Start_Shared(std::unique_ptr<vrPostFxRunner> postFx)
{
    PostFx = std::move(postFx);
    if (PostFx && !PostFx->Init()) MK_LOG(VorenLog, LogLevel::Warning, "The post-effects can't be started");
    if (!ParticleScratch::Is_Started() && !ParticleScratch::Start()) {
        MK_LOG(VorenLog, LogLevel::Error, "There is no memory for particle vertices");
        return false;
    }
    vrGraphicsStats::Get_Stats(true);
    return true;
}

void vrGraphicsDriver::Shut_Down_Shared()
{
    m_bInsideFrame = false;
    ParticleScratch::Shutdown();
    PostFx = nullptr;
    LightContext = nullptr;
    Textures->ByName.clear();
    GenericTexture = nullptr;
    Set_Cloud_Shadow_Texture(nullptr);
    Set_Fog_Of_War_Texture(nullptr);
    Set_Shadow_Depth_Texture(nullptr);
}

void vrGraphicsDriver::Render_Phases(vrRenderContext &context)
{
    for (int index = 0; index < PHASE_COUNT; ++index) {
        const auto phase = static_cast<vrRenderPhaseEnum>(index);
        if (!context.Has_Phase(phase)) continue;
        context.Phase = phase;
        Before_Phase(context);
        const std::vector<vrRenderTask *> &tasks = context.Get_Tasks(phase);
        for (vrRenderTask *task : tasks) task->Render(context);
        if (!tasks.empty()) After_Tasks(context);
        After_Phase(context);
    }
    for (vrRenderTask *task : context.Get_Extra_Passes()) task->Render(context);
}

namespace
{

/// Checks a request, whose places are null from then on.
template <typename Vertex>
bool May_Draw(int vcount, Vertex **ppv)
{
    MK_ASSERT(vcount < MAX_PRIM_VERTICES, "vcount < MAX_PRIM_VERTICES");
    if (!MK_VERIFY(ppv != nullptr, "ppv != NULL")) return false;
    *ppv = nullptr;
    return true;
}

template <typename Vertex>
bool May_Draw(int vcount, Vertex **ppv, int icount, uint16_t **ppi)
{
    MK_ASSERT(icount < MAX_PRIM_INDICES, "icount < MAX_PRIM_INDICES");
    if (!May_Draw(vcount, ppv) || !MK_VERIFY(ppi != nullptr, "ppi != NULL")) return false;
    *ppi = nullptr;
    return true;
}

} // namespace

bool vrGraphicsDriver::Begin_Prim_Vertices(vrPrimitiveKind kind, int vcount, vrPrimVertex **ppv)
{
    if (!May_Draw(vcount, ppv)) return false;
    *ppv = static_cast<vrPrimVertex *>(Begin_Draw(VR_PRIM_VERTEX, kind, vcount, 0, nullptr));
    return *ppv != nullptr;
}

bool vrGraphicsDriver::Begin_Lit_Vertices(vrPrimitiveKind kind, int vcount, vrLitVertex **ppv)
{
    if (!May_Draw(vcount, ppv)) return false;
    *ppv = static_cast<vrLitVertex *>(Begin_Draw(VR_LIT_VERTEX, kind, vcount, 0, nullptr));
    return *ppv != nullptr;
}

bool vrGraphicsDriver::Begin_Lit_Bump_Vertices(vrPrimitiveKind kind, int vcount, vrLitBumpVertex **ppv)
{
    if (!May_Draw(vcount, ppv)) return false;
    *ppv = static_cast<vrLitBumpVertex *>(Begin_Draw(VR_LIT_BUMP_VERTEX, kind, vcount, 0, nullptr));
    return *ppv != nullptr;
}

bool vrGraphicsDriver::Begin_Indexed_Prim_Vertices(vrPrimitiveKind kind, int vcount, vrPrimVertex **ppv, int icount,
                                                   uint16_t **ppi)
{
    if (!May_Draw(vcount, ppv, icount, ppi)) return false;
    *ppv = static_cast<vrPrimVertex *>(Begin_Draw(VR_PRIM_VERTEX, kind, vcount, icount, ppi));
    return *ppv != nullptr;
}

bool vrGraphicsDriver::Begin_Indexed_Lit_Vertices(vrPrimitiveKind kind, int vcount, vrLitVertex **ppv, int icount,
                                                  uint16_t **ppi)
{
    if (!May_Draw(vcount, ppv, icount, ppi)) return false;
    *ppv = static_cast<vrLitVertex *>(Begin_Draw(VR_LIT_VERTEX, kind, vcount, icount, ppi));
    return *ppv != nullptr;
}

bool vrGraphicsDriver::Begin_Indexed_Lit_Bump_Vertices(vrPrimitiveKind kind, int vcount, vrLitBumpVertex **ppv,
                                                       int icount, uint16_t **ppi)
{
    if (!May_Draw(vcount, ppv, icount, ppi)) return false;
    *ppv = static_cast<vrLitBumpVertex *>(Begin_Draw(VR_LIT_BUMP_VERTEX, kind, vcount, icount, ppi));
    return *ppv != nullptr;
}
