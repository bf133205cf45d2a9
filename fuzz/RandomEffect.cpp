#include "RandomEffect.h"

#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"
#include "vrGraphics/scene/vrGroundPlane.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <bit>
#include <cstring>
#include <limits>

namespace RandomEffect
{

namespace
{

constexpr const char *LAYER_NAMES[] = {"a", "b", "c", "nobody"};
constexpr int MAX_LAYERS = 4;

Vector3 Take_Vector(Bytes &bytes)
{
    const float x = bytes.Take_Float();
    const float y = bytes.Take_Float();
    return {x, y, bytes.Take_Float()};
}

Vector4 Take_Vector4(Bytes &bytes)
{
    const Vector3 xyz = Take_Vector(bytes);
    return {xyz, bytes.Take_Float()};
}

RGBAClass Take_Color(Bytes &bytes)
{
    const Vector4 color = Take_Vector4(bytes);
    return {color.x, color.y, color.z, color.w};
}

ShapeStruct Take_Shape(Bytes &bytes)
{
    ShapeStruct shape;
    shape.ShapeType = static_cast<uint32_t>(bytes.Choose(9)); // one of them is none
    shape.Center = Take_Vector(bytes);
    shape.Direction = Take_Vector(bytes);
    for (float *value : {&shape.A, &shape.B, &shape.C, &shape.D}) *value = bytes.Take_Float();
    shape.BoxMinimum = Take_Vector(bytes);
    shape.BoxMaximum = Take_Vector(bytes);
    for (float &value : shape.E) value = bytes.Take_Float();
    return shape;
}

template <typename Curve, typename Take>
void Change_Curve(ParameterClass &parameter, Bytes &bytes, Take &&take)
{
    auto &curve = static_cast<Curve &>(parameter);
    curve.Clear_Keys();
    curve.Set_Spline(bytes.Choose(4) == 0);
    for (int key = bytes.Choose(12); key > 0; --key) {
        const float time = bytes.Take_Float();
        curve.Add_Key(time, take(bytes));
    }
}

void Change(ParameterClass &parameter, Bytes &bytes)
{
    switch (parameter.Get_Type()) {
    case ParameterType::Boolean: static_cast<BoolParameter &>(parameter).Set_Value(bytes.Choose(2) != 0); break;
    case ParameterType::RGBA: static_cast<RGBAParameter &>(parameter).Set_Value(Take_Color(bytes)); break;
    case ParameterType::Vector3: static_cast<Vector3Parameter &>(parameter).Set_Value(Take_Vector(bytes)); break;
    case ParameterType::Integer: static_cast<RangedIntParameter &>(parameter).Set_Value(bytes.Take_Int()); break;
    case ParameterType::Float: static_cast<RangedFloatParameter &>(parameter).Set_Value(bytes.Take_Float()); break;
    case ParameterType::UV: static_cast<UVParameter &>(parameter).Set_Value(Take_Vector4(bytes)); break;
    case ParameterType::Mask:
        static_cast<MaskParameter &>(parameter).Set_Value(static_cast<uint32_t>(bytes.Take_Int()));
        break;
    case ParameterType::Enumeration: static_cast<EnumParameterClass &>(parameter).Set_Index(bytes.Choose(9) - 1); break;
    case ParameterType::Shape: static_cast<ShapeParameterClass &>(parameter).Set_Value(Take_Shape(bytes)); break;
    case ParameterType::KeyedFloat:
        Change_Curve<KeyedFloatParameterClass>(parameter, bytes, [](Bytes &from) { return from.Take_Float(); });
        break;
    case ParameterType::KeyedRGBA:
        Change_Curve<KeyedParameterClass<RGBAClass, ParameterType::KeyedRGBA>>(parameter, bytes, Take_Color);
        break;
    case ParameterType::KeyedUV:
        Change_Curve<KeyedParameterClass<Vector4, ParameterType::KeyedUV>>(parameter, bytes, Take_Vector4);
        break;
    case ParameterType::UVList: {
        std::vector<Vector4> list(static_cast<size_t>(bytes.Choose(4)));
        for (Vector4 &entry : list) entry = Take_Vector4(bytes);
        static_cast<UVListParameterClass &>(parameter).Set_Value(std::move(list));
        break;
    }
    case ParameterType::String:
        static_cast<StringParameterClass &>(parameter).Set_Value(LAYER_NAMES[bytes.Choose(4)]);
        break;
    default: break; // texture and shader names
    }
}

/// A plugin of a family; each parameter stays as it is or gets a value.
template <typename Plugin>
SmartPtr<Plugin> Make(vrMKPPlugin::PluginType family, Bytes &bytes)
{
    const int first = static_cast<int>(bytes.Take_Byte());
    for (int step = 0; step < VRMKP_PLUGIN_COUNT; ++step) {
        const auto id = static_cast<uint32_t>((first + step) % VRMKP_PLUGIN_COUNT);
        SmartPtr<vrMKPPlugin> plugin(vrMKPPlugin::Create_Plugin(id));
        if (!plugin || plugin->Get_Plugin_Type() != family) continue;
        for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index)
            if (bytes.Choose(3) == 0) Change(*plugin->Get_Parameters().Get_Parameter(index), bytes);
        return static_cast<Plugin *>(plugin.Get());
    }
    return nullptr;
}

vrMKParticle *Make_Layer(int number, Bytes &bytes)
{
    auto *layer = new vrMKParticle;
    layer->Set_Name(LAYER_NAMES[number % 3]);
    layer->Set_Spawner(Make<vrMKPSpawner>(vrMKPPlugin::SPAWNER_PLUGIN, bytes).Get());
    layer->Set_Transformer(Make<vrMKPTransformer>(vrMKPPlugin::TRANSFORMER_PLUGIN, bytes).Get());
    layer->Set_Stomper(Make<vrMKPStomper>(vrMKPPlugin::STOMPER_PLUGIN, bytes).Get());
    layer->Set_Visualizer(Make<vrMKPVisualizer>(vrMKPPlugin::VISUALIZER_PLUGIN, bytes).Get());
    for (int count = bytes.Choose(5); count > 0; --count)
        layer->Add_Modifier(Make<vrMKPModifier>(vrMKPPlugin::MODIFIER_PLUGIN, bytes).Get());
    if (layer->Get_Spawner()) layer->Get_Spawner()->Post_Load();
    if (layer->Get_Stomper()) layer->Get_Stomper()->Post_Load();
    return layer;
}

} // namespace

float Bytes::Take_Float()
{
    constexpr float SPECIAL[] = {0.0f,
                                 -0.0f,
                                 1.0f,
                                 -1.0f,
                                 0.5f,
                                 1e-30f,
                                 1e30f,
                                 -1e30f,
                                 3e9f,
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::max(),
                                 std::numeric_limits<float>::denorm_min()};
    const uint32_t kind = Take_Byte();
    if (kind < 16) return kind < std::size(SPECIAL) ? SPECIAL[kind] : 10000.0f;
    if (kind < 24) {
        uint32_t bits = 0;
        for (int shift = 0; shift < 32; shift += 8) bits |= Take_Byte() << shift;
        return std::bit_cast<float>(bits);
    }
    if (kind < 128) return static_cast<float>(Take_Byte()) / 64.0f;
    return static_cast<float>(static_cast<int>(Take_Byte()) - 64);
}

int32_t Bytes::Take_Int()
{
    constexpr int32_t SPECIAL[] = {
        0, 1, -1, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min(), 1000000};
    const uint32_t kind = Take_Byte();
    return kind < std::size(SPECIAL) ? SPECIAL[kind] : static_cast<int32_t>(kind);
}

vrMKParticleEmitter *Build(Bytes &bytes)
{
    auto *emitter = new vrMKParticleEmitter;
    for (int groups = 1 + bytes.Choose(3); groups > 0; --groups) {
        auto *group = new vrMKParticleGroup;
        group->Set_Name(LAYER_NAMES[groups % 3]);
        group->Set_Physics(Make<vrMKPRenderablePhysics>(vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN, bytes).Get());
        if (bytes.Choose(2)) {
            group->Set_Start_Delay(bytes.Take_Float());
            group->Set_Scale_Offset(bytes.Take_Float());
            group->Set_Rotate_Offset(Take_Vector(bytes));
            group->Set_Translate_Offset(Take_Vector(bytes));
            group->Set_Velocity_Aligned(bytes.Choose(2) != 0);
        }
        if (bytes.Choose(2))
            group->Add_Modifier(Make<vrMKPRenderableModifier>(vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN, bytes).Get());
        if (bytes.Choose(2))
            group->Add_Light(Make<vrMKPLightSourceController>(vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN, bytes).Get());
        emitter->Add_Renderable(group);
        for (int layer = 1 + bytes.Choose(MAX_LAYERS); layer > 0; --layer)
            group->Add_Particle(Make_Layer(layer, bytes));
        group->Complete_Definition();
        group->Seed_Instance();
    }
    return emitter;
}

void Play(vrMKParticleEmitter &emitter, Bytes &bytes, int frames)
{
    vrSimpleScene scene;
    vrGroundPlane ground(0.0f);
    if (bytes.Choose(2)) scene.Set_Terrain(&ground);
    if (bytes.Choose(2)) scene.Set_Sun_Direction({0.0f, 0.0f, 1.0f});
    scene.Set_Wind(Take_Vector(bytes));
    scene.Set_Camera(Mat3DClass::Look_At({0.0f, -500.0f, 200.0f}, Vector3(0.0f)));
    vrMKPGameState game;
    game.TargetPosition = Take_Vector(bytes);
    game.ProjectileSpeed = bytes.Take_Float();
    game.TargetCircleRadius = bytes.Take_Float();
    for (float &value : game.Dynamic) value = bytes.Take_Float();
    emitter.Set_Game_State(game);
    const SmartPtr<vrMKParticleEmitter> held(&emitter);
    scene.Add_Renderable(&emitter);
    const float dt = bytes.Choose(4) ? 0.033f : bytes.Take_Float();
    for (int frame = 0; frame < frames; ++frame) {
        switch (bytes.Choose(16)) {
        case 1: emitter.Set_Transform(Mat3DClass::From_Translation(Take_Vector(bytes))); break;
        case 2: emitter.Set_Hidden(!emitter.Is_Hidden()); break;
        case 3: emitter.Restart(); break;
        case 4: emitter.Set_Alt_Index(bytes.Take_Int()); break;
        case 5: emitter.Spawn_Code_Particles(bytes.Take_Int()); break;
        }
        scene.Update(dt);
        for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index) {
            auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(emitter.Peek_Particle_Renderable(index));
            for (int layer = 0; group && layer < group->Particle_Count(); ++layer) {
                group->Get_Particle(layer)->Pre_Render_Transform(scene.Get_Camera());
                group->Get_Particle(layer)->Select_Visible_Particles({.Camera = scene.Get_Camera()});
            }
        }
    }
}

} // namespace RandomEffect
