// Parses any bytes as an effect. Bytes of 1 part the input: the first piece is the effect, the others are what it may
// include, as "a.mksh", "b.mksh" and so on.

#include "vrGraphics/drivercommon/vrEffectSource.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <cstdlib>

namespace
{

void Require(bool holds)
{
    if (!holds) std::abort();
}

class PieceIncluder final : public vrEffectIncluder
{
public:
    std::vector<std::string> Pieces;

    bool Read_Include(std::string_view name, std::string &text) override
    {
        if (name.size() != 6 || name.substr(1) != ".mksh") return false;
        const size_t piece = static_cast<size_t>(static_cast<unsigned char>(name[0]) - 'a');
        if (piece >= Pieces.size()) return false;
        text = Pieces[piece];
        return true;
    }
};

std::vector<std::string> Split(std::string_view input)
{
    std::vector<std::string> pieces;
    while (true) {
        const size_t end = input.find('\1');
        pieces.emplace_back(input.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        input.remove_prefix(end + 1);
    }
}

void Use(const vrEffectSource &source)
{
    Require(!source.Is_Empty() && !source.Get_Files().empty());
    for (int lod = -1; lod <= SHADER_LOD_MAX; ++lod) {
        const int technique = source.Choose_Technique(lod);
        Require(technique >= 0 && technique < static_cast<int>(source.Get_Techniques().size()));
    }
    for (const vrEffectTechnique &technique : source.Get_Techniques()) {
        Require(!technique.Passes.empty());
        for (const vrEffectPass &pass : technique.Passes)
            for (const vrEffectStage stage : {vrEffectStage::Vertex, vrEffectStage::Fragment})
                Require(source.Get_Stage_Text(pass, stage).starts_with("#version"));
    }
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
    PieceIncluder includer;
    includer.Pieces = Split({reinterpret_cast<const char *>(data), size});
    const std::string text = includer.Pieces.front();
    includer.Pieces.erase(includer.Pieces.begin());

    vrEffectSource source;
    std::string error;
    if (source.Parse(text, "effect.mks", &includer, error)) {
        Require(error.empty());
        Use(source);
    } else {
        const size_t colon = error.find(".mks");
        Require(colon != std::string::npos && error.find(':', colon) != std::string::npos && source.Is_Empty());
    }
    source.Name_Files(text);
    return 0;
}
