#include "vrGraphics/plugins/modifiers/Interpolating.h"

#include "PluginBuilders.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/MKPAttributes.h"
#include "vrGraphics/plugins/modifiers/Attractors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace MKTest;

namespace
{

using IDs = std::vector<int>;

const IDs LINEAR = {100, 101, 102};
const IDs CONSTANT = {100};
const IDs KEYED = {200};
const IDs TARGET = {100, 101, 102, 103, 104, 105, 106, 107, 108};
const IDs FREE = {};

IDs operator+(IDs first, const IDs &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

RangedFloatParameter &Float_Of(const vrMKPPlugin &plugin, const char *name)
{
    return Parameter_Of<RangedFloatParameter>(plugin, name);
}

template <typename Visit>
void For_Each_Parameter_Of_A_Modifier(Visit visit)
{
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::MODIFIER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index) {
            const ParameterClass &parameter = *plugin->Get_Parameters().Get_Parameter(index);
            SCOPED_TRACE(Plugin_Label(id) + ": " + parameter.Get_Name());
            visit(*plugin, parameter);
        }
    }
}

template <typename T>
void Expect_Default_In_Range(const ParameterClass &parameter)
{
    const auto *ranged = dynamic_cast<const T *>(&parameter);
    if (!ranged) return;
    EXPECT_LT(ranged->Get_Minimum(), ranged->Get_Maximum());
    EXPECT_LE(ranged->Get_Minimum(), ranged->Get_Value());
    EXPECT_GE(ranged->Get_Maximum(), ranged->Get_Value());
}

} // namespace

TEST(Modifiers, ListTheirParametersInTheOrderOfTheFileNotOfTheIds)
{
    const struct
    {
        int id;
        IDs expected;
    } cases[] = {
        {kvrMKPLinearUniformSizeModifier, LINEAR + IDs{200, 201, 202, 203}},
        {kvrMKPLinearSizeModifier, LINEAR + IDs{200, 201, 202, 203, 204, 205, 206}},
        {kvrMKPConstantUniformSizeModifier, CONSTANT + IDs{200, 201, 202}},
        {kvrMKPConstantSizeModifier, CONSTANT + IDs{200, 201, 202, 203, 204}},
        {kvrMKPKeyedUniformSizeModifier, KEYED + IDs{300, 301, 302}},
        {kvrMKPKeyedSizeModifier, KEYED + IDs{300, 301, 302, 303, 304}},
        {kvrMKPKeyedSphericalSizeModifier, KEYED + IDs{300, 301, 302, 303, 305, 306}},
        {kvrMKPNearAndFarUniformSizeModifier, {300, 301, 302, 303}},

        {kvrMKPLinearRotationModifier, LINEAR + IDs{200, 201, 202, 203, 204, 205}},
        {kvrMKPConstantRotationModifier, CONSTANT + IDs{200, 201, 202}},
        {kvrMKPKeyedRotationModifier, KEYED + IDs{300, 301, 302, 303, 304}},
        {kvrMKPLinearRotationRateModifier, LINEAR},
        {kvrMKPKeyedRotationRateModifier, KEYED},
        {kvrMKPMushroomRotationModifier, {200, 201, 203, 202}},
        {kvrMKPScreenVelocityAlignedRotationModifier, {200, 201}},

        {kvrMKPConstantUVModifier, CONSTANT + IDs{200}},
        {kvrMKPKeyedUVModifier, KEYED + IDs{300, 301, 302, 303, 304}},
        {kvrMKPRandomUVModifier, FREE},
        {kvrMKPSlottedRandomUVModifier, {200}},
        {kvrMKPSlottedUVModifier, {200}},
        {kvrMKPSequencedUVModifier, {200, 201, 202, 208, 203, 204, 207, 205, 206}},

        {kvrMKPDistanceKeyTimeModifier, TARGET + IDs{200, 201, 202, 203}},
        {kvrMKPClockModifier, {200, 201, 202, 203}},

        {kvrMKPLinearColorModifier, LINEAR + IDs{200, 201}},
        {kvrMKPConstantColorModifier, CONSTANT + IDs{200}},
        {kvrMKPKeyedColorModifier, KEYED + IDs{300, 301}},
        {kvrMKPColorVarianceModifier, {200, 201, 202, 203, 204, 205, 206, 207, 208, 209}},
        {kvrMKPPositionalKeyedColorModifier, KEYED + IDs{300, 301, 302, 303}},
        {kvrMKPPositionalColorModifier, {300, 301, 302, 303, 304}},
        {kvrMKPNearAndFarColorModifier, {300, 301, 302, 303}},
        {kvrMKPDepthColorModifier, {300, 301, 302, 303}},
        {kvrMKPCylindricalColorModifier, {0, 1, 2, 3}},
        {kvrMKPSphericalColorModifier, {0, 1, 2, 7}},
        {kvrMKPRadialColorModifier, {0, 1, 2, 3, 5}},

        {kvrMKPAccelerationModifier, {200, 201}},
        {kvrMKPKeyedAccelerationModifier, KEYED + IDs{300, 301, 302}},
        {kvrMKPCircleTargetAccelerationModifier, TARGET + IDs{7000, 7001}},
        {kvrMKPWindAccelerationModifier, {200}},
        {kvrMKPWindVelocityModifier, {200}},
        {kvrMKPAttractAccelerationModifier, {200}},
        {kvrMKPAttractorModifier, TARGET + IDs{200, 201, 202, 203, 204, 205}},
        {kvrMKPAxisAttractorModifier, TARGET + IDs{200, 201, 202, 203, 204, 205}},
        {kvrMKPTorqueModifier, TARGET + IDs{200, 201, 202, 203, 204, 205}},
        {kvrMKPSpeedLimitModifier, {100, 101}},
        {kvrMKPLinearSpeedModifier, LINEAR + IDs{200, 201}},
        {kvrMKPKeyedFrictionModifier, KEYED + IDs{300}},
        {kvrMKPVortexModifier, {200, 201, 202}},
        {kvrMKPFunnelModifier, {200, 210, 201, 203, 204, 207, 208, 205, 209}},
        {kvrMKPTorusModifier, {200, 201, 202, 203, 204, 205, 206}},
        {kvrMKPRandomWalkModifier, {200, 201}},
        {kvrMKPTerrainBounceModifier, {200, 201, 203, 204, 206}},
        {kvrMKPTurbulenceModifier, FREE},
        {kvrMKPFollowGlobalTrajectoryModifier, FREE},
    };
    for (const auto &row : cases) EXPECT_EQ(Parameter_IDs(*Make_Plugin(row.id)), row.expected) << Plugin_Label(row.id);
}

TEST(Modifiers, StartWithinTheirRangesAndWithEmptyCurves)
{
    For_Each_Parameter_Of_A_Modifier([](const vrMKPPlugin &plugin, const ParameterClass &parameter) {
        Expect_Default_In_Range<RangedFloatParameter>(parameter);
        Expect_Default_In_Range<RangedIntParameter>(parameter);
        if (const auto *choice = dynamic_cast<const EnumParameterClass *>(&parameter)) {
            EXPECT_EQ(choice->Get_Index(), 0);
        }
        if (const auto *curve = dynamic_cast<const KeyedFloatParameterClass *>(&parameter)) {
            // Those of "Bullet" stand at a constant.
            EXPECT_EQ(curve->Get_Key_Count(), plugin.Get_Plugin_Class() == kvrMKPBulletModifier ? 2 : 0);
            EXPECT_FALSE(curve->Is_Spline());
        }
    });
}

TEST(Modifiers, AreOffExceptWhatWritesOnce)
{
    For_Each_Parameter_Of_A_Modifier([](const vrMKPPlugin &plugin, const ParameterClass &parameter) {
        const auto *flag = dynamic_cast<const BoolParameter *>(&parameter);
        if (!flag) return;
        EXPECT_EQ(flag->Get_Value(), dynamic_cast<const vrMKPConstantModifier *>(&plugin) &&
                                         std::string(flag->Get_Name()) == "Write Once");
    });
}

TEST(Modifiers, WriteTheChannelOfTheirCategory)
{
    for (const int id : Plugin_IDs_Of(vrMKPPlugin::MODIFIER_PLUGIN)) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(id);
        SCOPED_TRACE(Plugin_Label(id));
        const uint32_t writes = plugin->Get_Write_Attributes();
        switch (plugin->Get_Category()) {
        case vrMKPPlugin::CATEGORY_SIZE: EXPECT_EQ(writes, 1u << MKP_SIZE); break;
        case vrMKPPlugin::CATEGORY_ROTATION: EXPECT_EQ(writes, 1u << MKP_ROTATION); break;
        case vrMKPPlugin::CATEGORY_COLOR: EXPECT_EQ(writes, 1u << MKP_COLOR); break;
        case vrMKPPlugin::CATEGORY_TIME: EXPECT_EQ(writes, 1u << MKP_TIME); break;
        case vrMKPPlugin::CATEGORY_UV: EXPECT_TRUE(writes & 1u << MKP_UV); break;
        default: EXPECT_TRUE(writes && !(writes & ~(1u << MKP_POSITION | 1u << MKP_VELOCITY))); break;
        }
    }
}

TEST(Modifiers, DeclareTheChannelsThatTheyRead)
{
    constexpr uint32_t POSITION = 1u << MKP_POSITION, VELOCITY = 1u << MKP_VELOCITY, TIME = 1u << MKP_TIME,
                       ID = 1u << MKP_ID;
    const struct
    {
        int id;
        uint32_t reads;
    } cases[] = {
        {kvrMKPConstantColorModifier, 0},
        {kvrMKPConstantSizeModifier, ID},
        {kvrMKPNearAndFarUniformSizeModifier, POSITION | 1u << MKP_SIZE},
        {kvrMKPColorVarianceModifier, ID | 1u << MKP_COLOR},
        {kvrMKPRadialColorModifier, POSITION | 1u << MKP_COLOR},
        {kvrMKPSequencedUVModifier, ID | 1u << MKP_AGE},
        {kvrMKPRandomUVModifier, ID | 1u << MKP_UV},
        {kvrMKPMushroomRotationModifier, POSITION | 1u << MKP_ROTATION},
        {kvrMKPAccelerationModifier, VELOCITY | TIME},
        {kvrMKPFunnelModifier, POSITION | VELOCITY | TIME},
        {kvrMKPAttractorModifier, POSITION | VELOCITY},
        {kvrMKPClockModifier, TIME | ID},
        {kvrMKPDistanceKeyTimeModifier, POSITION},
    };
    for (const auto &row : cases)
        EXPECT_EQ(Make_Plugin(row.id)->Get_Read_Attributes(), row.reads) << Plugin_Label(row.id);
}

TEST(Modifiers, GiveFloatsTheirDefaultsAndRanges)
{
    const struct
    {
        int id;
        const char *name;
        float value, minimum, maximum;
    } cases[] = {
        // Names that several kinds have, with values of their own.
        {kvrMKPLinearUniformSizeModifier, "Start Time", 0.0f, 0.0f, 1.0f},
        {kvrMKPLinearUniformSizeModifier, "End Time", 1.0f, 0.0f, 1.0f},
        {kvrMKPTorqueModifier, "Start Time", 0.0f, 0.0f, 100.0f},
        {kvrMKPTorqueModifier, "End Time", 1.0f, 0.0f, 100.0f},
        {kvrMKPLinearSizeModifier, "End Height", 1.0f, 0.0f, 200.0f},
        {kvrMKPConstantSizeModifier, "Height", 1.0f, 0.0f, 1000.0f},
        {kvrMKPLinearRotationModifier, "End Rotation", 1.0f, -200.0f, 200.0f},
        {kvrMKPLinearRotationModifier, "Rotation Variation", 1.0f, 0.0f, 1.0f},
        {kvrMKPKeyedRotationModifier, "Rotation Variation", 1.0f, 0.0f, 1.0f},
        {kvrMKPConstantRotationModifier, "Rotation Variation", 0.0f, 0.0f, 1.0f},
        {kvrMKPMushroomRotationModifier, "Rotation Variation", 0.0f, 0.0f, 1.0f},
        {kvrMKPWindAccelerationModifier, "Wind Response", 0.5f, 0.0f, 10.0f},
        {kvrMKPWindVelocityModifier, "Wind Response", 0.25f, 0.0f, 10.0f},
        {kvrMKPAttractorModifier, "Linear Attraction", 0.0f, -100.0f, 0.0f},
        {kvrMKPTorqueModifier, "Linear Acceleration", 0.0f, -2.0f, 2.0f},
        {kvrMKPAxisAttractorModifier, "Outer Cutoff Dist.", 10000.0f, 0.0f, 10000.0f},
        {kvrMKPFunnelModifier, "End Distance", 50.0f, -1000.0f, 1000.0f},
        {kvrMKPPositionalColorModifier, "End Distance", 10.0f, -1000.0f, 1000.0f},
        {kvrMKPFunnelModifier, "Speed vartion", 0.0f, 0.0f, 1000.0f},
        {kvrMKPTorusModifier, "Speed Variation", 0.0f, 0.0f, 1.0f},
        // The far end lies behind the group.
        {kvrMKPNearAndFarColorModifier, "Near Distance", 10.0f, -1000.0f, 1000.0f},
        {kvrMKPNearAndFarColorModifier, "Far Distance", -10.0f, -1000.0f, 1000.0f},
        {kvrMKPDepthColorModifier, "Far Depth", 1200.0f, 0.0f, 10000.0f},
        {kvrMKPColorVarianceModifier, "Min Alpha Variance", 0.0f, -1.0f, 0.0f},
        {kvrMKPColorVarianceModifier, "Max Alpha Variance", 0.0f, 0.0f, 1.0f},
        // What is divided by stays above 0.
        {kvrMKPClockModifier, "Interval", 1.0f, 0.01f, 1000.0f},
        {kvrMKPSphericalColorModifier, "Light Wrap", 2.0f, 1.0f, 8.0f},
        {kvrMKPKeyedUVModifier, "Loop Count", 1.0f, 1.0f, 50.0f},
        {kvrMKPKeyedSphericalSizeModifier, "End Radius", 35.0f, 0.0f, 10000.0f},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        const RangedFloatParameter &parameter = Float_Of(*plugin, row.name);
        SCOPED_TRACE(Plugin_Label(row.id) + ": " + row.name);
        EXPECT_EQ(parameter.Get_Value(), row.value);
        EXPECT_EQ(parameter.Get_Minimum(), row.minimum);
        EXPECT_EQ(parameter.Get_Maximum(), row.maximum);
    }
}

TEST(Modifiers, GiveColorsTheirDefaults)
{
    const RGBAClass yellow = {1.0f, 1.0f, 64 / 255.0f, 1.0f};
    const RGBAClass white = {1.0f, 1.0f, 1.0f, 1.0f};
    const RGBAClass clear = {0.0f, 0.0f, 0.0f, 0.0f};
    const RGBAClass shadow = {96 / 255.0f, 96 / 255.0f, 96 / 255.0f, 1.0f};
    const RGBAClass gray = {128 / 255.0f, 128 / 255.0f, 128 / 255.0f, 1.0f};
    const struct
    {
        int id;
        const char *name;
        RGBAClass value;
    } cases[] = {
        {kvrMKPLinearColorModifier, "Start Color", yellow},     {kvrMKPLinearColorModifier, "End Color", yellow},
        {kvrMKPConstantColorModifier, "Color", yellow},         {kvrMKPPositionalColorModifier, "Start Color", clear},
        {kvrMKPPositionalColorModifier, "End Color", white},    {kvrMKPNearAndFarColorModifier, "Near Color", white},
        {kvrMKPNearAndFarColorModifier, "Far Color", clear},    {kvrMKPDepthColorModifier, "Far Color", clear},
        {kvrMKPCylindricalColorModifier, "Light Color", white}, {kvrMKPSphericalColorModifier, "Shadow Color", shadow},
        {kvrMKPRadialColorModifier, "Start Color", gray},       {kvrMKPRadialColorModifier, "End Color", white},
    };
    for (const auto &row : cases) {
        const RGBAClass value = Parameter_Of<RGBAParameter>(*Make_Plugin(row.id), row.name).Get_Value();
        EXPECT_EQ(value, row.value) << Plugin_Label(row.id) << ": " << row.name;
    }
}

TEST(Modifiers, GiveVectorsAndRectanglesTheirDefaults)
{
    const Vector3 up(0.0f, 0.0f, 1.0f);
    const struct
    {
        int id;
        const char *name;
        Vector3 value;
    } cases[] = {
        {kvrMKPAccelerationModifier, "Acceleration", -up},
        {kvrMKPCircleTargetAccelerationModifier, "Acceleration", -up},
        {kvrMKPCircleTargetAccelerationModifier, "Position", Vector3(0.0f)},
        {kvrMKPKeyedAccelerationModifier, "Direction", -up},
        {kvrMKPVortexModifier, "Axis", up},
        {kvrMKPTorqueModifier, "Axis", up},
        {kvrMKPPositionalColorModifier, "Axis", up},
        {kvrMKPRandomWalkModifier, "Position Scale", Vector3(0.0f)},
        {kvrMKPRandomWalkModifier, "Velocity Scale", Vector3(10.0f)},
    };
    for (const auto &row : cases) {
        const Vector3 value = Parameter_Of<Vector3Parameter>(*Make_Plugin(row.id), row.name).Get_Value();
        EXPECT_EQ(value, row.value) << Plugin_Label(row.id) << ": " << row.name;
    }
    EXPECT_EQ(Parameter_Of<UVParameter>(*Make_Plugin(kvrMKPConstantUVModifier), "TexCoords").Get_Value(),
              Vector4(0.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_EQ(Parameter_Of<UVParameter>(*Make_Plugin(kvrMKPSequencedUVModifier), "Start Slot").Get_Value(),
              Vector4(0.0f, 0.0f, 0.125f, 0.125f));
}

TEST(Modifiers, OfferTheirChoicesInTheOrderOfTheFile)
{
    using Labels = std::vector<std::string>;
    const struct
    {
        int id;
        const char *name;
        Labels labels;
    } cases[] = {
        {kvrMKPKeyedColorModifier, "Time Axis", {"Time", "Dynamic Parameter 1"}},
        {kvrMKPClockModifier, "Clock Type", {"Linear", "Square", "Triangle", "Sin"}},
        {kvrMKPAttractorModifier,
         "Target Position",
         {"Emitter", "Bone", "Target", "Position", "Keyed Position", "Projectile Target Start",
          "Projectile Target Current (For Homing)"}},
        {kvrMKPDistanceKeyTimeModifier, "Looping", {"None", "Looped", "Ping-Pong"}},
    };
    for (const auto &row : cases) {
        const SmartPtr<vrMKPPlugin> plugin = Make_Plugin(row.id);
        const auto labels = Parameter_Of<EnumParameterClass>(*plugin, row.name).Get_Labels();
        EXPECT_EQ(Labels(labels.begin(), labels.end()), row.labels) << Plugin_Label(row.id);
    }
}

TEST(Modifiers, ShareValuesByNameWhereTheIdsDiffer)
{
    const SmartPtr<vrMKPPlugin> linear = Make_Plugin(kvrMKPLinearUniformSizeModifier);
    Change_All(*linear);
    const SmartPtr<vrMKPPlugin> constant = Make_Plugin(kvrMKPConstantUniformSizeModifier);
    constant->Copy_Parameters_By_Name(*linear);
    EXPECT_EQ(Float_Of(*constant, "Size Variation").Get_Value(), 0.375f);
    EXPECT_TRUE(Parameter_Of<BoolParameter>(*constant, "Scale by Target Radius").Get_Value());
    EXPECT_EQ(Float_Of(*constant, "Size").Get_Value(), 1.0f);
    EXPECT_TRUE(Parameter_Of<BoolParameter>(*constant, "Write Once").Get_Value());
}

TEST(Modifiers, ReadALitSurfaceOnlyUnderItsOwnId)
{
    // The two lit surfaces differ in the id of one parameter, so a file of one doesn't fill the other's.
    for (const auto &[id, count] :
         {std::pair{kvrMKPCylindricalColorModifier, 0}, std::pair{kvrMKPSphericalColorModifier, 40}})
    {
        const SmartPtr<vrMKPPlugin> loaded = Load_Values(id, [](ChunkFile::ChunkFileWriterClass &writer) {
            Write_Simple_Value(writer, 2, 4.0f);
            Write_Simple_Value(writer, 7, 40);
        });
        EXPECT_EQ(Float_Of(*loaded, "Light Wrap").Get_Value(), 4.0f) << Plugin_Label(id);
        EXPECT_EQ(Parameter_Of<RangedIntParameter>(*loaded, "Particle Count").Get_Value(), count) << Plugin_Label(id);
    }
}

TEST(Modifiers, AccelerationFieldOnlySpeedsUp)
{
    const SmartPtr<vrMKPPlugin> field = new vrMKPTargetAccelerationFieldModifier;
    EXPECT_EQ(Parameter_IDs(*field), TARGET + (IDs{200, 201, 202, 203, 204, 205}));
    const std::pair<const char *, float> cases[] = {
        {"Constant Acceleration", 1000.0f}, {"Linear Acceleration", 100.0f}, {"Inv. Linear Acceleration", 1000.0f}};
    for (const auto &[name, maximum] : cases) {
        EXPECT_EQ(Float_Of(*field, name).Get_Minimum(), 0.0f) << name;
        EXPECT_EQ(Float_Of(*field, name).Get_Maximum(), maximum) << name;
    }
}
