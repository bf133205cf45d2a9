#include "vrGraphics/drivercommon/vrEffectSource.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <gmock/gmock.h>

#include <map>

namespace
{

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class TextIncluder final : public vrEffectIncluder
{
public:
    std::map<std::string, std::string, std::less<>> Texts;

    bool Read_Include(std::string_view name, std::string &text) override
    {
        const auto found = Texts.find(name);
        if (found == Texts.end()) return false;
        text = found->second;
        return true;
    }
};

// Lines are counted by the expectations below.
constexpr const char *CAMPFIRE = R"(// flames
annotation _VOREN_RENDER_PHASE "heat"
annotation _VOREN_VERTEX_TYPE "vrLitBumpVertex"
parameter texture2d BaseTexture = "fire.tga" point_clamp
parameter float4 Tint = 1 -0.5 +2 1e-1
parameter bool Glows = true
shared { float Twice(float x) { return 2.0 * x; } } /* for
both */
shared fragment { const float GREY = 0.5; }
vertex Plain { void main() { gl_Position = vec4(inPosition, 1.0); } }
technique GLOBAL_LOD_0 {
  pass Base {
    blend additive depth test rasterize cull_back
    vertex Plain
    fragment { void main() { /* } */ outColor = vec4(Twice(GREY)); }
    }
  }
}
technique Fine_LOD_3 { pass { vertex Plain fragment { void main() {} } } pass { vertex Plain fragment { } } }
)";

vrEffectSource Parse_Good(std::string_view text, vrEffectIncluder *includer = nullptr)
{
    vrEffectSource source;
    std::string error;
    EXPECT_TRUE(source.Parse(text, "a.mks", includer, error)) << error;
    return source;
}

std::string Error_Of(std::string_view text, vrEffectIncluder *includer = nullptr)
{
    vrEffectSource source;
    std::string error;
    EXPECT_FALSE(source.Parse(text, "a.mks", includer, error)) << text;
    EXPECT_TRUE(source.Is_Empty() && source.Get_Parameters().empty());
    return error;
}

constexpr const char *SMALL = "technique X_LOD_0 { pass { vertex { v } fragment { f } } }";

TEST(EffectSource, ReadsWhatAFileHolds)
{
    const vrEffectSource source = Parse_Good(CAMPFIRE);
    EXPECT_EQ(source.Get_Render_Phase(), vrRenderPhaseEnum::Heat);
    EXPECT_EQ(source.Get_Vertex_Type(), VR_LIT_BUMP_VERTEX);
    ASSERT_EQ(source.Get_Parameters().size(), 3u);
    EXPECT_EQ(source.Get_Parameters()[0].DefaultTexture, "fire.tga");
    EXPECT_EQ(source.Get_Parameters()[0].Sampler, VR_SAMPLER_POINT_CLAMP);
    EXPECT_THAT(source.Get_Parameters()[1].Default, ElementsAre(1.0f, -0.5f, 2.0f, 0.1f));
    EXPECT_EQ(source.Get_Parameters()[2].Default[0], 1.0f);

    ASSERT_EQ(source.Get_Techniques().size(), 2u);
    EXPECT_EQ(source.Get_Techniques()[0].Passes[0].State,
              (vrRenderStateBlock{VR_RASTERIZE_CULL_BACK, VR_BLEND_ADDITIVE, VR_DEPTH_TEST}));
    EXPECT_EQ(source.Get_Techniques()[1].Lod, 3);
    EXPECT_EQ(source.Get_Techniques()[1].Passes.size(), 2u);
}

TEST(EffectSource, GivesEachStageItsBlocksAndTheirLines)
{
    const vrEffectSource source = Parse_Good(CAMPFIRE);
    const vrEffectPass &pass = source.Get_Techniques()[0].Passes[0];
    const std::string vertex = source.Get_Stage_Text(pass, vrEffectStage::Vertex);
    const std::string fragment = source.Get_Stage_Text(pass, vrEffectStage::Fragment);
    EXPECT_THAT(vertex, Not(HasSubstr("GREY")));
    EXPECT_THAT(fragment, HasSubstr("uniform sampler2D BaseTexture;\nuniform vec4 Tint;\nuniform bool Glows;\n"));
    EXPECT_THAT(fragment, HasSubstr("#line 7 0\n float Twice"));
    EXPECT_THAT(fragment, HasSubstr("#line 9 0\n const float GREY"));
    EXPECT_THAT(fragment, HasSubstr("#line 15 0\n void main() { /* } */ outColor"));
}

TEST(EffectSource, TellsWhereAndWhyAFileIsRefused)
{
    const std::string longName(vrEffectSource::MAX_NAME + 1, 'n');
    const std::pair<std::string, const char *> rows[] = {
        {"", "a.mks:1: the effect has no technique"},
        {"\n\neffect", "a.mks:3: expected include, annotation"},
        {"\n/* to the end", "a.mks:2: the comment has no end"},
        {"shared { // }\n", "a.mks:1: the block has no closing '}'"},
        {std::string("shared {\n\0}", 11), "a.mks:2: a byte that isn't text"},
        {"parameter float3 P = 1 2\n}", "a.mks:2: expected a number but got '}'"},
        {"parameter float P = 1.2.3", "a.mks:1: '1.2.3' isn't a number"},
        {"parameter float P = 1e99", "a.mks:1: '1e99' isn't a number"},
        {"parameter bool P\nparameter float p", "a.mks:2: the parameter 'p' is there twice"},
        {"parameter bool " + longName, "has 64 characters, at most 63 are allowed"},
        {"technique Base_LOD_4294967296 { }", "doesn't end in _LOD_"},
        {"technique B_LOD_0 { }", "a.mks:1: the technique 'B_LOD_0' has no pass"},
        {"technique B_LOD_0 { pass { vertex { } } }", "a.mks:1: the pass has no fragment stage"},
        {"technique B_LOD_0 { pass { blend more } }", "expected a state of blend (opaque, alpha"},
        {std::string(vrEffectSource::MAX_FILE_SIZE + 1, ' '), "a.mks:1: the file has 262145 bytes"},
    };
    for (const auto &[text, error] : rows) EXPECT_THAT(Error_Of(text), HasSubstr(error)) << text.substr(0, 80);
}

TEST(EffectSource, HoldsNoMoreThanItsLimits)
{
    const auto repeated = [](size_t count, const std::string &before, const std::string &after) {
        std::string text;
        for (size_t i = 0; i < count; ++i) text += before + std::to_string(i) + after;
        return text;
    };
    const std::string passes = "{ pass { vertex { } fragment { } } }\n";
    EXPECT_THAT(Error_Of(repeated(vrEffectSource::MAX_TECHNIQUES + 1, "technique A_LOD_", passes)),
                HasSubstr("a.mks:17: more than 16 techniques"));
    EXPECT_THAT(Error_Of(repeated(vrEffectSource::MAX_PARAMETERS + 1, "parameter float P", "\n")),
                HasSubstr("a.mks:65: more than 64 parameters"));
    EXPECT_THAT(Error_Of(repeated(vrEffectSource::MAX_BLOCKS + 1, "vertex S", "{}\n")),
                HasSubstr("a.mks:129: more than 128 blocks"));
    EXPECT_THAT(Error_Of("technique A_LOD_0 {\n" + repeated(9, "pass P", "{ vertex { } fragment { } }\n") + "}"),
                HasSubstr("a.mks:10: more than 8 passes"));
}

TEST(EffectSource, EveryPrefixIsRefusedWithItsPlace)
{
    const std::string text = CAMPFIRE;
    const size_t firstWhole = text.find("technique Fine");
    for (size_t size = 0; size < text.size(); ++size) {
        vrEffectSource source;
        std::string error;
        const bool isRead = source.Parse(std::string_view(text).substr(0, size), "a.mks", nullptr, error);
        // After the first technique, what is left out may not be missed.
        EXPECT_EQ(isRead, error.empty());
        EXPECT_TRUE(isRead || error.starts_with("a.mks:")) << size << ": " << error;
        EXPECT_TRUE(!isRead || size >= firstWhole - 1) << size;
    }
}

TEST(EffectSource, TakesEachIncludedFileOnce)
{
    TextIncluder includer;
    includer.Texts["outer.mksh"] = "include \"inner.mksh\"\ninclude \"A.mks\"\nshared { outer }";
    includer.Texts["inner.mksh"] = "include \"outer.mksh\"\nvertex Plain { plain }\nshared {\ninner }";
    const vrEffectSource source = Parse_Good(std::string("include \"outer.mksh\" include \"INNER.mksh\"\n"
                                                         "technique X_LOD_0 { pass { vertex Plain fragment { f } } }"),
                                             &includer);
    EXPECT_THAT(source.Get_Files(), ElementsAre("a.mks", "outer.mksh", "inner.mksh"));
    const std::string vertex = source.Get_Stage_Text(source.Get_Techniques()[0].Passes[0], vrEffectStage::Vertex);
    EXPECT_THAT(vertex, HasSubstr("#line 2000003 2\n\ninner \n#line 1000003 1\n outer \n#line 2000002 2\n plain \n"));
}

TEST(EffectSource, NamesTheIncludedFileThatItRefuses)
{
    TextIncluder includer;
    includer.Texts["b.mksh"] = "\nvertex";
    EXPECT_EQ(Error_Of("include \"b.mksh\"", &includer),
              "b.mksh:2: expected a stage's name but got the end of the file");
    for (int i = 0; i < 20; ++i) includer.Texts["c" + std::to_string(i)] = "include \"c" + std::to_string(i + 1) + "\"";
    EXPECT_EQ(Error_Of("include \"c0\"", &includer), "c14:1: more than 16 files");
}

TEST(EffectSource, ChoosesTheHighestLevelThatIsAllowed)
{
    const std::string stages = " { pass { vertex { } fragment { } } } ";
    const vrEffectSource source =
        Parse_Good("technique A_LOD_3" + stages + "technique B_LOD_1" + stages + "technique C_LOD_2" + stages);
    for (const auto &[lod, technique] : {std::pair{0, 1}, {1, 1}, {2, 2}, {4, 0}, {-7, 1}})
        EXPECT_EQ(source.Choose_Technique(lod), technique) << lod;
    EXPECT_EQ(vrEffectSource().Choose_Technique(0), -1);
}

TEST(EffectSource, PutsFileNamesIntoCompilersMessages)
{
    TextIncluder includer;
    includer.Texts["b.mksh"] = "";
    const vrEffectSource source = Parse_Good(std::string("include \"b.mksh\" ") + SMALL, &includer);
    const std::pair<const char *, const char *> rows[] = {
        {"0:12(3): error: no", "a.mks:12(3): error: no"},
        {"fine\n1(7) : error C1", "fine\nb.mksh(7) : error C1"},
        {"ERROR: 1:2: 'x' : no", "ERROR: b.mksh:2: 'x' : no"},
        // Some compilers call every file 0.
        {"0:1000012(3): error", "b.mksh:12(3): error"},
        {"1(1000007) : error", "b.mksh(7) : error"},
        {"99999999999999999999:1", "99999999999999999999:1"},
        {"1:", "1:"},
    };
    for (const auto &[message, named] : rows) EXPECT_EQ(source.Name_Files(message), named);
}

} // namespace
