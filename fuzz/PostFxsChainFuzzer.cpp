// Reads any bytes as a chain of post-effects, with the null driver. A byte of 1 parts the input into the chain and the
// one template of a step, "s.xml"; the one effect is "s.mks".

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"
#include "vrGraphics/nulldriver/vrNullEffectInstance.h"
#include "vrGraphics/postfx/vrPostFxManager.h"

#include "MKLib/File/FileCache.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <cstdlib>
#include <string_view>

namespace
{

constexpr std::string_view EFFECT = "parameter float A parameter float2 B parameter float3 C parameter texture2d D\n"
                                    "technique GLOBAL_LOD_0 { pass { vertex { } fragment { } } }";

// Served from the file cache, so that a run costs no trip to a disk.
void Cache(const char *name, std::string_view text)
{
    FileCacheClass::Add(name, std::vector<uint8_t>(text.begin(), text.end()));
}

void Require(bool holds)
{
    if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    Cache("nowhere\\s.mks", EFFECT);
    vrGraphicsDriver::Add_Effects_Path("nowhere");
    vrGraphicsDriver::Set_PostFxs_Path("nowhere");
    vrNullEffectInstance::Set_Pure_Null_Run(false);
    Require(vrNullDriverMethods::Init(nullptr, 16, 16));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    const size_t end = input.find('\1');
    Cache("nowhere\\PostFxsChains\\c.xml", input.substr(0, end));
    Cache("nowhere\\PostFxSteps\\s.xml", end == input.npos ? std::string_view() : input.substr(end + 1));

    vrPostFxManager manager(*TheGraphicsDriver);
    manager.Init();
    manager.Load_Chain("c.xml");
    for (const auto &effect : manager.Get_Chain().Get_Effects()) {
        Require(effect->Type >= 0 && effect->Type <= vrPostFx::VR_POSTFX_TYPE_GAME_LPPR_ONLY);
        for (const vrPostFxStep &step : effect->Steps) {
            Require(step.Shader && step.QuadMaxX > 0.0f && step.QuadMaxX <= 1.0f && step.QuadMaxY <= 1.0f);
            step.Set_Params();
        }
    }
    const SmartPtr<vrCamera> camera = new vrCamera;
    vrRenderContext context(camera.Get());
    manager.Execute(context, nullptr);
    return 0;
}
