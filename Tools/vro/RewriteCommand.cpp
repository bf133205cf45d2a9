#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/OutputFile.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

namespace vro
{

int Run_Rewrite(const std::string &file, const std::string &output, const std::string &encoding)
{
    std::string error;
    std::string bytes;
    const auto emitter = Load_Effect(file, error);
    if (!emitter || !Save_Effect(*emitter, *Parse_Encoding(encoding), bytes, error)) return Fail(file, error);
    return Write_Output(output, bytes, error) ? EXIT_WELL : Fail(output, error);
}

} // namespace vro
