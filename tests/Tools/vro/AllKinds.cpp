#include "Tools/vro/AllKinds.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterList.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include <map>
#include <stdexcept>

namespace vroTest
{

namespace
{

template <typename Curve, typename Value>
void Change_Curve(ParameterClass &parameter, const Value &first, const Value &second)
{
    auto &curve = static_cast<Curve &>(parameter);
    curve.Set_Spline(!curve.Is_Spline());
    curve.Clear_Keys();
    curve.Add_Key(0.1f, first);
    curve.Add_Key(0.7f, second);
    curve.Add_Key(1e-40f, second);
}

ShapeStruct Changed_Shape(const ShapeStruct &before)
{
    ShapeStruct shape;
    shape.ShapeType = (before.ShapeType + 1) % SHAPE_COUNT;
    shape.Center = {0.1f, 0.2f, 0.3f};
    shape.Direction = {0.4f, 0.5f, 0.6f};
    shape.A = 0.7f, shape.B = 0.8f, shape.C = 0.9f, shape.D = 1.1f;
    shape.BoxMinimum = {1.2f, 1.3f, 1.4f};
    shape.BoxMaximum = {1.5f, 1.6f, 1.7f};
    for (int index = 0; index < 11; ++index) shape.E[index] = 2.1f + 0.1f * static_cast<float>(index);
    return shape;
}

void Change_Value(ParameterClass &parameter)
{
    switch (parameter.Get_Type()) {
    case ParameterType::Boolean: {
        auto &flag = static_cast<BoolParameter &>(parameter);
        return flag.Set_Value(!flag.Get_Value());
    }
    case ParameterType::RGBA: return static_cast<RGBAParameter &>(parameter).Set_Value({0.1f, 0.2f, 0.3f, 0.4f});
    case ParameterType::Vector3: return static_cast<Vector3Parameter &>(parameter).Set_Value({0.1f, -0.2f, 1e30f});
    case ParameterType::Integer: {
        auto &number = static_cast<IntParameter &>(parameter);
        return number.Set_Value(-1 - number.Get_Value());
    }
    case ParameterType::Float: {
        auto &number = static_cast<FloatParameter &>(parameter);
        return number.Set_Value(number.Get_Value() + 0.1f);
    }
    case ParameterType::String:
    case ParameterType::TextureName:
    case ParameterType::ShaderName: return static_cast<StringParameterClass &>(parameter).Set_Value("a\\b \"c\"\n\xe9");
    case ParameterType::KeyedRGBA:
        return Change_Curve<KeyedRGBAParameter>(parameter, RGBAClass{0.1f, 0.2f, 0.3f, 0.4f}, RGBAClass{1, 2, 3, 4});
    case ParameterType::KeyedFloat: return Change_Curve<KeyedFloatParameterClass>(parameter, 0.1f, -7.5f);
    case ParameterType::KeyedUV:
        return Change_Curve<KeyedUVParameter>(parameter, Vector4{0.1f, 0.2f, 0.3f, 0.4f}, Vector4{1, 2, 3, 4});
    case ParameterType::UV: return static_cast<UVParameter &>(parameter).Set_Value({0.1f, 0.2f, 0.3f, 0.4f});
    case ParameterType::Shape: {
        auto &shape = static_cast<ShapeParameterClass &>(parameter);
        return shape.Set_Value(Changed_Shape(shape.Get_Value()));
    }
    case ParameterType::Enumeration: {
        auto &choice = static_cast<EnumParameterClass &>(parameter);
        return choice.Set_Index((choice.Get_Index() + 1) % choice.Get_Count());
    }
    case ParameterType::UVList: {
        auto &list = static_cast<UVListParameterClass &>(parameter);
        auto rectangles = list.Get_Value();
        rectangles.push_back({0.1f, 0.2f, 0.3f, 0.4f});
        return list.Set_Value(rectangles);
    }
    case ParameterType::Mask: {
        auto &mask = static_cast<MaskParameter &>(parameter);
        return mask.Set_Value(~mask.Get_Value());
    }
    default: throw std::runtime_error(std::string("no value is known for ") + parameter.Get_Name());
    }
}

/// Plugins of one family, handed out one after the other; null when they are used up.
class Stock
{
public:
    explicit Stock(int &count)
    {
        for (uint32_t id = 0; const auto *info = Find_Plugin_Info(static_cast<int>(id)); ++id, ++count) {
            SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(id);
            Change_All_Values(*plugin);
            Families[info->Family].push_back(plugin);
        }
    }

    template <typename Family>
    SmartPtr<Family> Take(vrMKPPlugin::PluginType family)
    {
        auto &plugins = Families[family];
        if (plugins.empty()) return nullptr;
        const SmartPtr<vrMKPPlugin> plugin = plugins.back();
        plugins.pop_back();
        return static_cast<Family *>(plugin.Get());
    }

    bool Has(vrMKPPlugin::PluginType family) { return !Families[family].empty(); }

private:
    std::map<vrMKPPlugin::PluginType, std::vector<SmartPtr<vrMKPPlugin>>> Families;
};

SmartPtr<vrMKParticle> Make_Layer(Stock &stock)
{
    const SmartPtr<vrMKParticle> layer = new vrMKParticle;
    layer->Set_Name("layer");
    layer->Set_Spawner(stock.Take<vrMKPSpawner>(vrMKPPlugin::SPAWNER_PLUGIN).Get());
    layer->Set_Transformer(stock.Take<vrMKPTransformer>(vrMKPPlugin::TRANSFORMER_PLUGIN).Get());
    layer->Set_Stomper(stock.Take<vrMKPStomper>(vrMKPPlugin::STOMPER_PLUGIN).Get());
    layer->Set_Visualizer(stock.Take<vrMKPVisualizer>(vrMKPPlugin::VISUALIZER_PLUGIN).Get());
    for (int count = 0; count < 5 && stock.Has(vrMKPPlugin::MODIFIER_PLUGIN); ++count)
        layer->Add_Modifier(stock.Take<vrMKPModifier>(vrMKPPlugin::MODIFIER_PLUGIN).Get());
    return layer;
}

void Change_Fields(vrMKPRenderable &renderable, Stock &stock)
{
    renderable.Set_Name("caf\xe9");
    renderable.Set_Always_Simulate(true);
    renderable.Set_Always_Awake(true);
    renderable.Set_Velocity_Aligned(true);
    renderable.Set_File_Sort_Bias(-0.1f);
    renderable.Set_Translate_Offset({0.1f, 0.2f, 0.3f});
    renderable.Set_Rotate_Offset({0.4f, 0.5f, 0.6f});
    renderable.Set_Scale_Offset(0.7f);
    renderable.Set_Start_Delay(0.8f);
    renderable.Set_Start_Delay_Variation(0.9f);
    renderable.Set_Base_Random_Seed(-2147483647 - 1);
    renderable.Set_Physics(stock.Take<vrMKPRenderablePhysics>(vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN).Get());
    while (stock.Has(vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN))
        renderable.Add_Modifier(stock.Take<vrMKPRenderableModifier>(vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN).Get());
}

SmartPtr<vrMKPModel> Make_Model(Stock &stock)
{
    const SmartPtr<vrMKPModel> model = new vrMKPModel;
    Change_Fields(*model, stock);
    const SmartPtr<vrMKPAttachedModelParameters> attached = new vrMKPAttachedModelParameters;
    attached->Set_Name("crate");
    attached->Set_Animation("open\xff");
    attached->Set_Enabled(true);
    model->Set_Attached_Model(attached.Get());
    model->Set_Killer(stock.Take<vrMKPRenderableModifier>(vrMKPPlugin::RENDERABLE_KILLER_PLUGIN).Get());
    return model;
}

SmartPtr<vrMKParticleGroup> Make_Group(Stock &stock)
{
    const SmartPtr<vrMKParticleGroup> group = new vrMKParticleGroup;
    Change_Fields(*group, stock);
    while (stock.Has(vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN))
        group->Add_Light(stock.Take<vrMKPLightSourceController>(vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN).Get());
    for (int count = 0; count < 4; ++count) group->Add_Particle(Make_Layer(stock).Get());
    return group;
}

} // namespace

void Change_All_Values(vrMKPPlugin &plugin)
{
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        Change_Value(*plugin.Get_Parameters().Get_Parameter(index));
}

SmartPtr<vrMKParticleEmitter> Make_Effect_Of_All_Kinds(int &count)
{
    count = 0;
    Stock stock(count);
    const SmartPtr<vrMKParticleEmitter> emitter = new vrMKParticleEmitter;
    emitter->Set_Name("everything");
    emitter->Add_Renderable(Make_Model(stock).Get());
    constexpr vrMKPPlugin::PluginType REST[] = {vrMKPPlugin::SPAWNER_PLUGIN,    vrMKPPlugin::MODIFIER_PLUGIN,
                                                vrMKPPlugin::STOMPER_PLUGIN,    vrMKPPlugin::TRANSFORMER_PLUGIN,
                                                vrMKPPlugin::VISUALIZER_PLUGIN, vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN};
    for (const auto family : REST)
        while (stock.Has(family)) emitter->Add_Renderable(Make_Group(stock).Get());
    return emitter;
}

} // namespace vroTest
