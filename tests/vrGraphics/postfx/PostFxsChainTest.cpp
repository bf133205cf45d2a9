#include "vrGraphics/postfx/vrPostFxsChain.h"

#include "common/Reports.h"
#include "common/TempFiles.h"
#include "vrGraphics/postfx/RecordingDriver.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PostFxsChain : public testing::Test
{
protected:
    PostFxsChain()
    {
        vrGraphicsDriver::Set_PostFxs_Path(Folder.Get_Path());
        Folder.Write("PostFxSteps/Plain.xml", "<S><Shader>Plain.mks</Shader></S>");
    }
    ~PostFxsChain() override { vrGraphicsDriver::Set_PostFxs_Path(""); }

    bool Load(const std::string &text)
    {
        Folder.Write("PostFxsChains/Test.xml", text);
        Reports.Clear();
        return Chain.Load_Template("Test.xml", Driver);
    }

    MKTest::TempDirectory Folder;
    MKTest::Reports Reports;
    MKTest::RecordingDriver Driver;
    vrPostFxsChain Chain;
};

TEST_F(PostFxsChain, ReadsEffectsAndTheirStepsInOrder)
{
    Folder.Write("PostFxSteps/Blur.xml", "<S><Shader> Blur.mks </Shader><InputMode>FROM_IRT1</InputMode>"
                                         "<OutputMode>TO_IRT0</OutputMode><QuadMax>0.5, 0.25</QuadMax>"
                                         "<SetParam name='Direction' type='float2' value='3 -4'/>"
                                         "<SetParam name='Unknown' type='float' value='3'/>"
                                         "<Params><Param name='Threshold'/><Param name='Nobody'/></Params></S>");
    ASSERT_TRUE(
        Load("<C><Other/><PostFx><Name>Bloom</Name><Type>vr_postfx_type_engine_bloom</Type>"
             "<Priority>3</Priority><Steps><Step template_file='Blur.xml'><Params>"
             "<Param name='Threshold' type='float' value='0.75'/><Param name='Color' type='float3' value='1 2 3'/>"
             "<Param name='Noise' type='texture2d' value='none.tga'/>"
             "</Params></Step><Step template_file='Plain.xml'/></Steps></PostFx>"
             "<PostFx><Name>Off</Name><Enable>false</Enable></PostFx>"
             "<PostFx><Name>On</Name><Enable>no</Enable></PostFx></C>"))
        << Reports.Get_Text();
    ASSERT_EQ(Chain.Get_Effects().size(), 3u);
    const vrPostFx &bloom = *Chain.Get_Effects()[0];
    EXPECT_EQ(bloom.Type, vrPostFx::VR_POSTFX_TYPE_ENGINE_BLOOM);
    EXPECT_EQ(bloom.Priority, 3);
    EXPECT_FALSE(Chain.Get_Effects()[1]->Enabled);
    EXPECT_TRUE(Chain.Get_Effects()[2]->Enabled);
    EXPECT_EQ(bloom.Params.at("Color").Numbers[2], 3.0f);
    EXPECT_EQ(bloom.Params.at("Noise").Texture, Driver.Get_Generic_Texture());

    ASSERT_EQ(bloom.Steps.size(), 2u);
    const vrPostFxStep &blur = bloom.Steps[0];
    EXPECT_EQ(blur.InputMode, FROM_IRT1);
    EXPECT_EQ(blur.OutputMode, TO_IRT0);
    EXPECT_EQ(blur.QuadMaxY, 0.25f);
    ASSERT_EQ(blur.Params.size(), 2u);
    EXPECT_EQ(blur.Params[0].Value, &bloom.Params.at("Threshold"));
    EXPECT_EQ(blur.Params[1].Value, nullptr);
    EXPECT_TRUE(Reports.Has_Log("PostFx Bloom has no param Nobody, which its step Blur.xml takes"));
    EXPECT_TRUE(Reports.Has_Log("of the step Blur.xml has no parameter Unknown"));
    blur.Set_Params();
    EXPECT_THAT(Driver.Lines, ElementsAre("set Direction 3.00 -4.0", "set Threshold 0.75"));
    EXPECT_EQ(bloom.Steps[1].OutputMode, TO_MAIN_RT);
}

TEST_F(PostFxsChain, TellsWhatItCouldNotRead)
{
    Folder.Write("PostFxSteps/Lost.xml", "<S><Shader>Lost</Shader></S>");
    Folder.Write("PostFxSteps/BadMode.xml", "<S><Shader>A</Shader><InputMode>FROM_NOWHERE</InputMode></S>");
    Folder.Write("PostFxSteps/HugeQuad.xml", "<S><Shader>A</Shader><QuadMax>1 nan</QuadMax></S>");
    Folder.Write("PostFxSteps/BadSet.xml", "<S><Shader>A</Shader><SetParam name='A' type='float' value='one'/></S>");
    Folder.Write("PostFxSteps/Broken.xml", "<S><Shader>A</S>");
    Driver.MissingShaders = {"Lost"};
    constexpr const char *ENTRY = "ERROR: Failed to parse a PostFx entry";
    constexpr const char *STEPS = "ERROR: Failed to parse <Steps>";
    constexpr const char *STEP = "ERROR: Failed to load a PostFxStep";
    const auto step = [](const std::string &file, const std::string &inside = "") {
        return "<Steps><Step template_file='" + file + "'>" + inside + "</Step></Steps>";
    };
    const std::pair<std::string, std::vector<const char *>> rows[] = {
        {"", {"ERROR: Failed to perform inital descend while parsing a <PostFx>", ENTRY}},
        {"<Type>BLOOM</Type>", {"unknown effect type 'BLOOM'", ENTRY}},
        {"<Steps/>", {"ERROR: Failed to perform inital descend while parsing <Steps>", STEPS, ENTRY}},
        {step("None.xml"), {"PostFxSteps\\None.xml'", STEP, STEPS, ENTRY}},
        {step("..\\PostFxSteps\\Plain.xml"), {"can't read the file", STEP}},
        {step("Lost.xml"), {"no shader for the step 'Lost.xml'", STEP}},
        {step("BadMode.xml"), {"unknown input mode 'FROM_NOWHERE'", "a step can't be read: 'BadMode.xml'", STEP}},
        {step("HugeQuad.xml"), {"not two numbers in QuadMax: '1 nan'", STEP}},
        {step("BadSet.xml"), {"not the numbers of a float: 'one'", "ERROR: Failed to set PostFxStep param", STEP}},
        {step("Broken.xml"), {"Broken.xml is refused", "can't read the file", STEP}},
        {step("Plain.xml", "<Params/>"), {"ERROR: Failed to parse <Params>", STEP, STEPS, ENTRY}},
        {step("Plain.xml", "<Params><Param type='float' value='1'/></Params>"),
         {"a param without a name has the value '1'", "ERROR: Failed to parse <Params>"}},
    };
    for (const auto &[inside, logs] : rows) {
        EXPECT_FALSE(Load("<C><PostFx><Name>Whole</Name></PostFx><PostFx>" + inside + "</PostFx></C>"));
        for (const char *log : logs) EXPECT_THAT(Reports.Get_Text(), HasSubstr(log)) << inside;
        ASSERT_EQ(Chain.Get_Effects().size(), 2u) << "what was read stays";
        EXPECT_EQ(Chain.Get_Effects()[0]->Name, "Whole");
    }
}

TEST_F(PostFxsChain, RefusesFilesThatAreNotThereOrNotXml)
{
    EXPECT_FALSE(Chain.Load_Template("None.xml", Driver));
    EXPECT_TRUE(Reports.Has_Log("PostFxsChains\\None.xml'"));
    EXPECT_FALSE(Load("<C><PostFx>"));
}

TEST_F(PostFxsChain, HoldsNoMoreThanItsLimits)
{
    std::string effects, steps;
    for (size_t i = 0; i <= vrPostFxsChain::MAX_EFFECTS; ++i) effects += "<PostFx><Name>N</Name></PostFx>";
    for (size_t i = 0; i <= vrPostFxsChain::MAX_STEPS; ++i) steps += "<Step template_file='Plain.xml'/>";
    EXPECT_FALSE(Load("<C>" + effects + "</C>"));
    EXPECT_EQ(Chain.Get_Effects().size(), vrPostFxsChain::MAX_EFFECTS);
    EXPECT_FALSE(Load("<C><PostFx><Steps>" + steps + "</Steps></PostFx></C>"));
    EXPECT_EQ(Chain.Get_Effects()[0]->Steps.size(), vrPostFxsChain::MAX_STEPS);
}

} // namespace
