#include "vro/EffectJson.h"

#include "vro/ParameterJson.h"

#include "vrGraphics/effect/PluginSlots.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"
#include "vrGraphics/plugins/vrMKPPluginTable.h"

namespace vro
{

namespace
{

/// Makes one effect. Every operation gets the JSON pointer of what it reads.
class EffectBuilder
{
public:
    SmartPtr<vrMKParticleEmitter> Effect(const Json &document)
    {
        vrMKPRenderable::Set_In_Editor(true);
        ObjectReader object(document, "");
        if (const Json *list = object.Find("windows_1252"))
            Texts.Read_Windows1252_List(*list, object.Pointer("windows_1252"));
        const SmartPtr<vrMKParticleEmitter> emitter = new vrMKParticleEmitter;
        if (const Json *name = object.Find("name")) emitter->Set_Name(Texts.To_Bytes(*name, object.Pointer("name")));
        if (const Json *list = object.Find("renderables"))
            for (size_t index = 0; index < Read_Array(*list, object.Pointer("renderables")).size(); ++index)
                emitter->Add_Renderable(
                    Renderable((*list)[index], Item_Pointer(object.Pointer("renderables"), index)).Get());
        if (const Json *remove = object.Find("remove_on_depleted"))
            emitter->Set_Remove_On_Depleted(Read_Bool(*remove, object.Pointer("remove_on_depleted")));
        object.Refuse_Other_Keys();
        Texts.Refuse_Unused();
        return emitter;
    }

private:
    SmartPtr<vrMKPRenderable> Renderable(const Json &json, const std::string &pointer)
    {
        Count_Object(pointer);
        ObjectReader object(json, pointer);
        std::string kind = "group";
        if (const Json *value = object.Find("kind")) kind = Read_Text(*value, object.Pointer("kind"));
        SmartPtr<vrMKPRenderable> renderable;
        if (kind == "group")
            renderable = Group(object);
        else if (kind == "model")
            renderable = Model(object);
        else
            throw JsonError(object.Pointer("kind"), "expected \"group\" or \"model\", found \"" + kind + "\"");
        Fields(object, *renderable);
        object.Refuse_Other_Keys();
        return renderable;
    }

    void Fields(ObjectReader &object, vrMKPRenderable &renderable)
    {
        const auto with = [&](const char *key, auto read) {
            if (const Json *value = object.Find(key)) read(*value, object.Pointer(key));
        };
        const auto with_bool = [&](const char *key, void (vrMKPRenderable::*set)(bool)) {
            with(key, [&](const Json &value, const std::string &at) { (renderable.*set)(Read_Bool(value, at)); });
        };
        const auto with_float = [&](const char *key, void (vrMKPRenderable::*set)(float)) {
            with(key, [&](const Json &value, const std::string &at) { (renderable.*set)(Read_Float(value, at)); });
        };
        const auto with_vector = [&](const char *key, void (vrMKPRenderable::*set)(const Vector3 &)) {
            with(key, [&](const Json &value, const std::string &at) {
                const auto numbers = Read_Floats(value, 3, at);
                (renderable.*set)({numbers[0], numbers[1], numbers[2]});
            });
        };
        with("name", [&](const Json &value, const std::string &at) { renderable.Set_Name(Short_Text(value, at)); });
        with_bool("always_simulate", &vrMKPRenderable::Set_Always_Simulate);
        with_bool("always_awake", &vrMKPRenderable::Set_Always_Awake);
        with_bool("velocity_aligned", &vrMKPRenderable::Set_Velocity_Aligned);
        with_float("sort_bias", &vrMKPRenderable::Set_File_Sort_Bias);
        with_vector("translate_offset", &vrMKPRenderable::Set_Translate_Offset);
        with_vector("rotate_offset", &vrMKPRenderable::Set_Rotate_Offset);
        with_float("scale_offset", &vrMKPRenderable::Set_Scale_Offset);
        with_float("start_delay", &vrMKPRenderable::Set_Start_Delay);
        with_float("start_delay_variation", &vrMKPRenderable::Set_Start_Delay_Variation);
        with("base_random_seed", [&](const Json &value, const std::string &at) {
            renderable.Set_Base_Random_Seed(Read_Int32(value, at));
        });
        // Left out, it is the one that every renderable has by default; null is none, which a load makes good again.
        renderable.Set_Physics(Slot<vrMKPRenderablePhysics>(object, "physics", vrMKPPlugin::RENDERABLE_PHYSICS_PLUGIN).Get());
        if (!object.Find("physics")) renderable.Complete_Definition();
        Each<vrMKPRenderableModifier>(object, "modifiers", vrMKPPlugin::RENDERABLE_MODIFIER_PLUGIN,
                                      [&](auto *modifier) { renderable.Add_Modifier(modifier); });
    }

    SmartPtr<vrMKPRenderable> Group(ObjectReader &object)
    {
        const SmartPtr<vrMKParticleGroup> group = new vrMKParticleGroup;
        Each<vrMKPLightSourceController>(object, "lights", vrMKPPlugin::LIGHT_CONTROLLER_PLUGIN,
                                         [&](auto *light) { group->Add_Light(light); });
        if (const Json *list = object.Find("layers"))
            for (size_t index = 0; index < Read_Array(*list, object.Pointer("layers")).size(); ++index)
                group->Add_Particle(Layer((*list)[index], Item_Pointer(object.Pointer("layers"), index)).Get());
        return group.Get();
    }

    SmartPtr<vrMKPRenderable> Model(ObjectReader &object)
    {
        const SmartPtr<vrMKPModel> model = new vrMKPModel;
        if (const Json *json = object.Find("attached_model"); json && !json->is_null()) {
            ObjectReader attached(*json, object.Pointer("attached_model"));
            const SmartPtr<vrMKPAttachedModelParameters> parameters = new vrMKPAttachedModelParameters;
            if (const Json *name = attached.Find("name"))
                parameters->Set_Name(Short_Text(*name, attached.Pointer("name")));
            if (const Json *animation = attached.Find("animation"))
                parameters->Set_Animation(Short_Text(*animation, attached.Pointer("animation")));
            if (const Json *enabled = attached.Find("enabled"))
                parameters->Set_Enabled(Read_Bool(*enabled, attached.Pointer("enabled")));
            attached.Refuse_Other_Keys();
            model->Set_Attached_Model(parameters.Get());
        }
        model->Set_Killer(Slot<vrMKPRenderableModifier>(object, "killer", vrMKPPlugin::RENDERABLE_KILLER_PLUGIN).Get());
        return model.Get();
    }

    SmartPtr<vrMKParticle> Layer(const Json &json, const std::string &pointer)
    {
        Count_Object(pointer);
        ObjectReader object(json, pointer);
        const SmartPtr<vrMKParticle> layer = new vrMKParticle;
        if (const Json *name = object.Find("name")) layer->Set_Name(Texts.To_Bytes(*name, object.Pointer("name")));
        layer->Set_Spawner(Slot<vrMKPSpawner>(object, "spawner", vrMKPPlugin::SPAWNER_PLUGIN).Get());
        layer->Set_Transformer(Slot<vrMKPTransformer>(object, "transformer", vrMKPPlugin::TRANSFORMER_PLUGIN).Get());
        layer->Set_Stomper(Slot<vrMKPStomper>(object, "stomper", vrMKPPlugin::STOMPER_PLUGIN).Get());
        layer->Set_Visualizer(Slot<vrMKPVisualizer>(object, "visualizer", vrMKPPlugin::VISUALIZER_PLUGIN).Get());
        Each<vrMKPModifier>(object, "modifiers", vrMKPPlugin::MODIFIER_PLUGIN,
                            [&](auto *modifier) { layer->Add_Modifier(modifier); });
        object.Refuse_Other_Keys();
        return layer;
    }

    template <typename Family>
    SmartPtr<Family> Slot(ObjectReader &object, const char *key, vrMKPPlugin::PluginType family)
    {
        const Json *json = object.Find(key);
        if (!json || json->is_null()) return nullptr;
        return static_cast<Family *>(Plugin(*json, object.Pointer(key), family).Get());
    }

    template <typename Family, typename Add>
    void Each(ObjectReader &object, const char *key, vrMKPPlugin::PluginType family, Add add)
    {
        const Json *list = object.Find(key);
        if (!list) return;
        for (size_t index = 0; index < Read_Array(*list, object.Pointer(key)).size(); ++index) {
            const auto plugin = Plugin((*list)[index], Item_Pointer(object.Pointer(key), index), family);
            add(static_cast<Family *>(plugin.Get()));
        }
    }

    SmartPtr<vrMKPPlugin> Plugin(const Json &json, const std::string &pointer, vrMKPPlugin::PluginType family)
    {
        Count_Object(pointer);
        ObjectReader object(json, pointer);
        const vrMKPPluginInfo &info = Kind(object, family);
        const SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(info.Id));
        if (const Json *list = object.Find("parameters")) {
            std::set<int> given;
            for (size_t index = 0; index < Read_Array(*list, object.Pointer("parameters")).size(); ++index) {
                const std::string place = Item_Pointer(object.Pointer("parameters"), index);
                if (!given.insert(Parameter_From_Json(plugin->Get_Parameters(), (*list)[index], place, Texts)).second)
                    throw JsonError(place, "this parameter is given twice");
            }
        }
        object.Refuse_Other_Keys();
        return plugin;
    }

    /// The kind by its id, or by a name that is unique in the family.
    static const vrMKPPluginInfo &Kind(ObjectReader &object, vrMKPPlugin::PluginType family)
    {
        const Json *id = object.Find("id");
        const Json *name = object.Find("name");
        if (!id && !name) throw JsonError(object.Pointer(), "a plugin needs an \"id\" or a \"name\"");
        const std::string text = name ? Read_Text(*name, object.Pointer("name")) : std::string();
        const vrMKPPluginInfo *info = nullptr;
        if (id) {
            info = Find_Plugin_Info(Read_Int32(*id, object.Pointer("id")));
            if (!info) throw JsonError(object.Pointer("id"), "there is no plugin of the id " + id->dump());
            if (name && text != info->Name)
                throw JsonError(object.Pointer("name"), "the plugin of the id " + id->dump() + " is \"" + info->Name + "\"");
        } else {
            for (int candidate = 0; const auto *row = Find_Plugin_Info(candidate); ++candidate)
                if (row->Family == family && text == row->Name) info = row;
            if (!info) throw JsonError(object.Pointer("name"), "no plugin that may stand here is named \"" + text + "\"");
        }
        if (info->Family != family)
            throw JsonError(object.Pointer(), std::string("\"") + info->Name + "\" is a " +
                                                  vrMKPPlugin::Get_Plugin_Type_Name(info->Family) + ", and a " +
                                                  vrMKPPlugin::Get_Plugin_Type_Name(family) + " stands here");
        return *info;
    }

    /// A load has the same limit: a few bytes of JSON are a plugin of kilobytes.
    void Count_Object(const std::string &pointer)
    {
        if (++Objects > vrMKPLoadLimit::MAX_OBJECTS)
            throw JsonError(pointer, "an effect has at most " + std::to_string(vrMKPLoadLimit::MAX_OBJECTS) +
                                         " renderables, layers and plugins");
    }

    /// A text that stands in a microchunk.
    std::string Short_Text(const Json &value, const std::string &pointer) const
    {
        const std::string bytes = Texts.To_Bytes(value, pointer);
        if (bytes.size() > PluginSlots::MAX_MICRO_CHUNK_TEXT)
            throw JsonError(pointer, "the text has " + std::to_string(bytes.size()) + " bytes, and a file holds at most " +
                                         std::to_string(PluginSlots::MAX_MICRO_CHUNK_TEXT) + " here");
        return bytes;
    }

    TextPlaces Texts;
    int Objects = 0;
};

} // namespace

SmartPtr<vrMKParticleEmitter> Effect_From_Json(const Json &document) { return EffectBuilder().Effect(document); }

} // namespace vro
