#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"
#include "vro/OutputFile.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

namespace vro
{

int Run_Build(const std::string &input, const std::string &output, const std::string &encoding)
{
    std::string text;
    std::string error;
    if (!Read_Input(input, text, error)) return Fail(input, error);
    std::string bytes;
    try {
        if (!Save_Effect(*Effect_From_Json(Parse_Json(text)), *Parse_Encoding(encoding), bytes, error))
            return Fail(input, error);
    } catch (const JsonError &fault) {
        return Fail(input, fault.what());
    }
    // A document can tell an effect that no loader takes, one with too many layers for instance.
    if (!Load_Effect(bytes, output, error)) return Fail(input, "the built effect can't be loaded: " + error);
    return Write_Output(output, bytes, error) ? EXIT_WELL : Fail(output, error);
}

} // namespace vro
