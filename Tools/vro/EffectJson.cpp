#include "vro/EffectJson.h"

#include "vro/ParameterJson.h"

#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include "MKLib/Parameters/Parameter.h"
#include "MKLib/Parameters/ParameterList.h"

namespace vro
{

namespace
{

/// Writes one effect. Every operation gets the JSON pointer of what it writes.
class EffectWriter
{
public:
    Json Effect(const vrMKParticleEmitter &emitter)
    {
        Json document = {{"name", Texts.To_Json(emitter.Get_Name(), "/name")},
                         {"remove_on_depleted", emitter.Get_Remove_On_Depleted()}};
        Json renderables = Json::array();
        for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index)
            renderables.push_back(Renderable(*emitter.Get_Particle_Renderable(index),
                                             Item_Pointer("/renderables", static_cast<size_t>(index))));
        document["renderables"] = std::move(renderables);
        if (Json list = Texts.Windows1252_List(); !list.empty()) document["windows_1252"] = std::move(list);
        return document;
    }

private:
    Json Renderable(vrMKPRenderable &renderable, const std::string &pointer)
    {
        const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(&renderable);
        Json json = {{"kind", group ? "group" : "model"},
                     {"name", Texts.To_Json(renderable.Get_Name(), pointer + "/name")},
                     {"always_simulate", renderable.Get_Always_Simulate()},
                     {"always_awake", renderable.Get_Always_Awake()},
                     {"velocity_aligned", renderable.Get_Velocity_Aligned()},
                     {"sort_bias", Float_To_Json(renderable.Get_File_Sort_Bias())},
                     {"translate_offset", Vector(renderable.Get_Translate_Offset())},
                     {"rotate_offset", Vector(renderable.Get_Rotate_Offset())},
                     {"scale_offset", Float_To_Json(renderable.Get_Scale_Offset())},
                     {"start_delay", Float_To_Json(renderable.Get_Start_Delay())},
                     {"start_delay_variation", Float_To_Json(renderable.Get_Start_Delay_Variation())},
                     {"base_random_seed", renderable.Get_Base_Random_Seed()},
                     {"physics", Plugin(renderable.Get_Physics(), pointer + "/physics")}};
        json["modifiers"] = Plugins(renderable.Get_Modifier_Count(), pointer + "/modifiers",
                                    [&](int index) { return renderable.Get_Modifier(index); });
        if (group) {
            Group(*group, pointer, json);
        } else if (const auto *model = MK_Dynamic_Cast<vrMKPModel>(&renderable)) {
            Model(*model, pointer, json);
        }
        return json;
    }

    void Group(const vrMKParticleGroup &group, const std::string &pointer, Json &json)
    {
        json["lights"] =
            Plugins(group.Light_Count(), pointer + "/lights", [&](int index) { return group.Get_Light(index); });
        Json layers = Json::array();
        for (int index = 0; index < group.Particle_Count(); ++index)
            layers.push_back(
                Layer(*group.Get_Particle(index), Item_Pointer(pointer + "/layers", static_cast<size_t>(index))));
        json["layers"] = std::move(layers);
    }

    void Model(const vrMKPModel &model, const std::string &pointer, Json &json)
    {
        const std::string place = pointer + "/attached_model";
        json["attached_model"] = nullptr;
        if (const auto *attached = model.Get_Attached_Model())
            json["attached_model"] = {{"name", Texts.To_Json(attached->Get_Name(), place + "/name")},
                                      {"animation", Texts.To_Json(attached->Get_Animation(), place + "/animation")},
                                      {"enabled", attached->Get_Enabled()}};
        json["killer"] = Plugin(model.Get_Killer(), pointer + "/killer");
    }

    Json Layer(const vrMKParticle &layer, const std::string &pointer)
    {
        Json json = {{"name", Texts.To_Json(layer.Get_Name(), pointer + "/name")},
                     {"spawner", Plugin(layer.Get_Spawner(), pointer + "/spawner")},
                     {"transformer", Plugin(layer.Get_Transformer(), pointer + "/transformer")},
                     {"stomper", Plugin(layer.Get_Stomper(), pointer + "/stomper")},
                     {"visualizer", Plugin(layer.Get_Visualizer(), pointer + "/visualizer")}};
        json["modifiers"] = Plugins(layer.Get_Modifier_Count(), pointer + "/modifiers",
                                    [&](int index) { return layer.Get_Modifier(index); });
        return json;
    }

    template <typename Get> Json Plugins(int count, const std::string &pointer, Get get)
    {
        Json list = Json::array();
        for (int index = 0; index < count; ++index)
            list.push_back(Plugin(get(index), Item_Pointer(pointer, static_cast<size_t>(index))));
        return list;
    }

    Json Plugin(const vrMKPPlugin *plugin, const std::string &pointer)
    {
        if (!plugin) return nullptr;
        Json parameters = Json::array();
        for (int index = 0; index < plugin->Get_Parameters().Get_Parameter_Count(); ++index) {
            const ParameterClass &parameter = *plugin->Get_Parameters().Get_Parameter(index);
            if (parameter.Is_Save_Excluded()) continue;
            const std::string place = Item_Pointer(pointer + "/parameters", parameters.size());
            parameters.push_back(Parameter_To_Json(parameter, place, Texts));
        }
        return {{"id", static_cast<int>(plugin->Get_Plugin_Class())},
                {"name", plugin->Get_Name()},
                {"parameters", std::move(parameters)}};
    }

    static Json Vector(const Vector3 &value)
    {
        return Json::array({Float_To_Json(value.x), Float_To_Json(value.y), Float_To_Json(value.z)});
    }

    TextPlaces Texts;
};

} // namespace

Json Effect_To_Json(const vrMKParticleEmitter &emitter) { return EffectWriter().Effect(emitter); }

} // namespace vro
