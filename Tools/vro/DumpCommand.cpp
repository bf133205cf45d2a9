#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/OutputFile.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

namespace vro
{

int Run_Dump(const std::string &file, const std::string &output)
{
    std::string error;
    const auto emitter = Load_Effect(file, error);
    if (!emitter) return Fail(file, error);
    return Write_Output(output, To_Text(Effect_To_Json(*emitter)), error) ? EXIT_WELL : Fail(output, error);
}

} // namespace vro
