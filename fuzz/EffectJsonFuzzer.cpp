#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <cstdio>
#include <cstdlib>

/// Builds an effect from any bytes. What is taken has to survive: a document told again is the same text, and what a
/// file of it holds is told, built and saved to the same text and the same bytes.

namespace
{

std::string Text_Of(const vrMKParticleEmitter &emitter)
{
    return vro::To_Text(vro::Effect_To_Json(emitter));
}

SmartPtr<vrMKParticleEmitter> Build(const std::string &text)
{
    return vro::Effect_From_Json(vro::Parse_Json(text));
}

void Expect(bool holds, const char *what)
{
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// A load mends what it finds, a visualizer of a retired kind for instance, so the text of the second file is the one
/// that has to stay.
void Use_File(vrMKParticleEmitter &emitter)
{
    std::string bytes;
    std::string error;
    // What the builder takes a file can hold; only a load can refuse it, for its many objects.
    Expect(vro::Save_Effect(emitter, vro::TOOL_MODE, bytes, error), "what was built can't be saved");
    const auto loaded = vro::Load_Effect(bytes, "effect.vro", error);
    Expect(static_cast<bool>(loaded), "what was saved can't be loaded");

    const std::string text = Text_Of(*loaded);
    const auto rebuilt = Build(text);
    std::string first;
    std::string second;
    Expect(vro::Save_Effect(*loaded, vro::TOOL_MODE, first, error) &&
               vro::Save_Effect(*rebuilt, vro::TOOL_MODE, second, error),
           "what was loaded can't be saved");
    Expect(first == second, "a dump builds to other bytes");
    const auto again = vro::Load_Effect(first, "effect.vro", error);
    Expect(again && Text_Of(*again) == text, "a build dumps to another text");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const auto emitter = Build(std::string(reinterpret_cast<const char *>(data), size));
        const std::string text = Text_Of(*emitter);
        Expect(Text_Of(*Build(text)) == text, "a dump builds to another dump");
        Use_File(*emitter);
    } catch (const vro::JsonError &) {
        // A document with a fault ends here, and nowhere else.
    }
    return 0;
}
