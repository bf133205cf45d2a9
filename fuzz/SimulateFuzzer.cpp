#include "RandomEffect.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

/// Builds an effect out of any bytes and plays it for a few dozen frames. Assertions are reported and the run goes on;
/// what must not come up is a crash, undefined behaviour, a hang or memory without bound.

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    RandomEffect::Bytes bytes(data, size);
    const SmartPtr<vrMKParticleEmitter> emitter(RandomEffect::Build(bytes));
    RandomEffect::Play(*emitter, bytes, 36);
    return 0;
}
