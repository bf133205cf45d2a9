#include "vrGraphics/plugins/renderables/Physics.h"

#include "PluginBuilders.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace MKTest;

namespace
{

vrMKPFollowRenderablePhysics &Follow(const SmartPtr<vrMKPPlugin> &plugin)
{
    return dynamic_cast<vrMKPFollowRenderablePhysics &>(*plugin);
}

float Value_At(const KeyedFloatParameterClass &curve, float time)
{
    float value = -1.0f;
    curve.Evaluate(time, false, value);
    return value;
}

const Vector3 &Vector_Of(const vrMKPPlugin &plugin, const char *name)
{
    return Parameter_Of<Vector3Parameter>(plugin, name).Get_Value();
}

} // namespace

TEST(RenderablePlugins, LeaveARenderableAsItIsUntilTheyAreKeyed)
{
    const struct
    {
        int id;
        std::vector<const char *> still; ///< curves that add
        std::vector<const char *> full;  ///< curves that multiply
    } cases[] = {
        {kvrMKPKeyedTransformRenderablePhysics,
         {"Translate X", "Translate Y", "Translate Z", "Rotate X", "Rotate Y", "Rotate Z"},
         {"Scale"}},
        {kvrMKPKeyedLightScaleRenderableModifier, {}, {"Light Scale R", "Light Scale G", "Light Scale B"}},
        {kvrMKPKeyedLightSourceController, {}, {"Intensity", "Radius Scale"}},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        for (const float time : {0.0f, 0.375f, 1.0f, 20.0f}) {
            for (const char *name : row.still)
                EXPECT_EQ(Value_At(Parameter_Of<KeyedFloatParameterClass>(*plugin, name), time), 0.0f) << name;
            for (const char *name : row.full)
                EXPECT_EQ(Value_At(Parameter_Of<KeyedFloatParameterClass>(*plugin, name), time), 1.0f) << name;
        }
        // The keys of all three run over the same clock.
        EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*plugin, "Duration").Get_Value(), 1.0f) << Plugin_Label(row.id);
        EXPECT_TRUE(Parameter_Of<BoolParameter>(*plugin, "Loop").Get_Value()) << Plugin_Label(row.id);
    }
}

// A loaded curve takes the place of the default key, also where it has a key at the same time or none at all.
TEST(RenderablePlugins, KeepNoDefaultKeyBesideLoadedOnes)
{
    for (const bool hasKeys : {true, false}) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPKeyedTransformRenderablePhysics);
        auto &scale = Parameter_Of<KeyedFloatParameterClass>(*plugin, "Scale");
        scale.Clear_Keys();
        if (hasKeys) scale.Add_Key(0.0f, 3.0f);
        for (const SmartPtr<vrMKPPlugin> &same :
             {SmartPtr<vrMKPPlugin>(plugin->Clone()), Load_Plugin(Save_Plugin(*plugin))}) {
            const auto &copy = Parameter_Of<KeyedFloatParameterClass>(*same, "Scale");
            EXPECT_EQ(copy.Get_Key_Count(), hasKeys ? 1 : 0);
            EXPECT_EQ(Value_At(copy, 0.5f), hasKeys ? 3.0f : 0.0f);
        }
    }
}

// Old groups become one of these without any of its values, and must not start to move.
TEST(RenderablePlugins, WaveAndSpinStandsStillByDefault)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPWaveAndSpinRenderablePhysics);
    for (const char *name : {"Wave Amplitude", "Spin Rate", "Start Rotation"})
        EXPECT_EQ(Vector_Of(*plugin, name), Vector3(0.0f)) << name;
}

TEST(RenderablePlugins, FollowNamesItsParent)
{
    const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(kvrMKPFollowRenderablePhysics);
    EXPECT_EQ(Follow(plugin).Get_Parent_Name(), "");
    Follow(plugin).Set_Parent_Name("smoke_Model_1");
    for (const SmartPtr<vrMKPPlugin> &same :
         {plugin, SmartPtr<vrMKPPlugin>(plugin->Clone()), Load_Plugin(Save_Plugin(*plugin))})
    {
        EXPECT_EQ(Follow(same).Get_Parent_Name(), "smoke_Model_1");
        EXPECT_EQ(Parameter_Of<StringParameterClass>(*same, "Parent Name").Get_Value(), "smoke_Model_1");
    }
}

TEST(RenderablePlugins, ProjectilesShareTheirFlightUnderOneSetOfIds)
{
    const SmartPtr<vrMKPPlugin> simple = Make_Plugin(kvrMKPSimpleProjectileRenderablePhysics);
    const SmartPtr<vrMKPPlugin> spiral = Make_Plugin(kvrMKPSpiralAndSeekProjectileRenderablePhysics);
    for (const char *name : {"Track Mode", "Speed Multiplier", "Align To Motion"}) {
        ASSERT_TRUE(simple->Get_Parameter_By_Name(name) && spiral->Get_Parameter_By_Name(name)) << name;
        EXPECT_EQ(simple->Get_Parameter_By_Name(name)->Get_ID(), spiral->Get_Parameter_By_Name(name)->Get_ID());
    }
    // A homing bullet's index means a homing projectile too.
    const SmartPtr<vrMKPPlugin> bullet = Make_Plugin(kvrMKPBulletModifier);
    const auto bulletModes = Parameter_Of<EnumParameterClass>(*bullet, "Track Mode").Get_Labels();
    const auto modes = Parameter_Of<EnumParameterClass>(*simple, "Track Mode").Get_Labels();
    EXPECT_EQ(std::vector<std::string>(modes.begin(), modes.end()),
              std::vector<std::string>(bulletModes.begin(), bulletModes.end()));
}

TEST(RenderablePlugins, TouchNoChannelOfAnyLayer)
{
    for (const auto family : {vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN, vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN,
                              vrMKPPlugin::RENDERABLE_KILLER_PLUGIN, vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN})
    {
        for (const int id : Plugin_IDs_Of(family))
            EXPECT_EQ(Make_Plugin(id)->Get_Read_Attributes() | Make_Plugin(id)->Get_Write_Attributes(), 0u)
                << Plugin_Label(id);
    }
}

TEST(Lights, HaveTheNameThatABillboardLooksForByDefault)
{
    const SmartPtr<vrMKPPlugin> billboard = Make_Plugin(kvrMKPBillboardVisualizer);
    const auto &wanted = Parameter_Of<StringParameterClass>(*billboard, "Light Source Name");
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN))
        EXPECT_EQ(Parameter_Of<StringParameterClass>(*Make_Plugin(id), "Name").Get_Value(), wanted.Get_Value())
            << Plugin_Label(id);
}

// An old group's light has none of its values set, and lights white, steadily, for as long as the group is there.
TEST(Lights, ShineByDefault)
{
    for (const int id : {kvrMKPLegacyLightSourceController, kvrMKPCentroidLightSourceController}) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        EXPECT_EQ(Parameter_Of<RGBAParameter>(*plugin, "Color").Get_Value(), (RGBAClass{1.0f, 1.0f, 1.0f, 1.0f}));
        EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*plugin, "Intensity").Get_Value(), 1.0f);
        EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*plugin, "Flicker Amount").Get_Value(), 0.0f);
        EXPECT_FALSE(Parameter_Of<BoolParameter>(*plugin, "Use Particle Count").Get_Value());
    }
    const SmartPtr<vrMKPPlugin> legacy = Make_Plugin(kvrMKPLegacyLightSourceController);
    for (const char *name : {"Start Delay", "Duration", "Fade In Time", "Fade Out Time"})
        EXPECT_EQ(Parameter_Of<RangedFloatParameter>(*legacy, name).Get_Value(), 0.0f) << name;
    RGBAClass color{0.0f, 0.0f, 0.0f, 0.0f};
    Parameter_Of<KeyedRGBAParameter>(*Make_Plugin(kvrMKPKeyedLightSourceController), "Color")
        .Evaluate(0.5f, false, color);
    EXPECT_EQ(color, (RGBAClass{1.0f, 1.0f, 1.0f, 1.0f}));
}
