#include "vro/ParameterJson.h"

#include "vro/TextEncoding.h"

#include "MKLib/MKString.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterList.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include <algorithm>
#include <cmath>

namespace vro
{

namespace
{

/// Bytes, as the string writer counts them in 16 bits.
constexpr size_t LONGEST_TEXT = 65535;

Json Floats(std::initializer_list<float> numbers)
{
    Json array = Json::array();
    for (const float number : numbers) array.push_back(Float_To_Json(number));
    return array;
}

// One pair of functions a value type; the templates below build the kinds from them.
Json To_Json(float value) { return Float_To_Json(value); }
Json To_Json(const Vector3 &value) { return Floats({value.x, value.y, value.z}); }
Json To_Json(const Vector4 &value) { return Floats({value.x, value.y, value.z, value.w}); }
Json To_Json(const RGBAClass &value) { return Floats({value.R, value.G, value.B, value.A}); }

void From_Json(float &value, const Json &json, const std::string &pointer) { value = Read_Float(json, pointer); }

void From_Json(Vector3 &value, const Json &json, const std::string &pointer)
{
    const auto numbers = Read_Floats(json, 3, pointer);
    value = {numbers[0], numbers[1], numbers[2]};
}

void From_Json(Vector4 &value, const Json &json, const std::string &pointer)
{
    const auto numbers = Read_Floats(json, 4, pointer);
    value = {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void From_Json(RGBAClass &value, const Json &json, const std::string &pointer)
{
    const auto numbers = Read_Floats(json, 4, pointer);
    value = {numbers[0], numbers[1], numbers[2], numbers[3]};
}

template <typename Parameter> Json Keyed_To_Json(const ParameterClass &parameter)
{
    const auto &curve = static_cast<const Parameter &>(parameter);
    Json keys = Json::array();
    for (const auto &key : curve.Get_Keys()) keys.push_back(Json::array({To_Json(key.Time), To_Json(key.Value)}));
    return {{"spline", curve.Is_Spline()}, {"keys", std::move(keys)}};
}

template <typename T> struct DocumentKey
{
    float Time;
    T Value;
    size_t Index; ///< in the document
};

/// In the order of time: a key that isn't the last one moves all behind it, which a long curve can't afford.
template <typename Parameter, typename T>
void Fill_Curve(Parameter &curve, std::vector<DocumentKey<T>> &list, const std::string &pointer)
{
    std::stable_sort(list.begin(), list.end(), [](const auto &left, const auto &right) { return left.Time < right.Time; });
    curve.Clear_Keys();
    for (size_t position = 0; position < list.size(); ++position) {
        if (position > 0 && list[position].Time == list[position - 1].Time)
            throw JsonError(Item_Pointer(pointer, list[position].Index), "a key of this time is there already");
        curve.Add_Key(list[position].Time, list[position].Value);
    }
}

template <typename Parameter>
void Keyed_From_Json(ParameterClass &parameter, const Json &value, const std::string &pointer)
{
    auto &curve = static_cast<Parameter &>(parameter);
    ObjectReader object(value, pointer);
    if (const Json *spline = object.Find("spline")) curve.Set_Spline(Read_Bool(*spline, object.Pointer("spline")));
    if (const Json *keys = object.Find("keys")) {
        const std::string keysPointer = object.Pointer("keys");
        std::vector<DocumentKey<decltype(Parameter::KeyStruct::Value)>> list(Read_Array(*keys, keysPointer).size());
        for (size_t index = 0; index < list.size(); ++index) {
            const std::string keyPointer = Item_Pointer(keysPointer, index);
            const Json &key = (*keys)[index];
            if (!key.is_array() || key.size() != 2) throw JsonError(keyPointer, "expected [time, value]");
            list[index] = {Read_Float(key[0], Item_Pointer(keyPointer, 0)), {}, index};
            From_Json(list[index].Value, key[1], Item_Pointer(keyPointer, 1));
            // To a curve it equals any other time.
            if (std::isnan(list[index].Time) && list.size() > 1)
                throw JsonError(keyPointer, "a key whose time is no number stands alone in its curve");
        }
        Fill_Curve(curve, list, keysPointer);
    }
    object.Refuse_Other_Keys();
}

Json Enum_To_Json(const EnumParameterClass &parameter)
{
    const char *label =
        parameter.Is_Index_Valid() ? parameter.Get_Labels()[static_cast<size_t>(parameter.Get_Index())] : "";
    return {{"index", parameter.Get_Index()}, {"label", label}};
}

int32_t Label_Index(const EnumParameterClass &parameter, const std::string &label, const std::string &pointer)
{
    const auto labels = parameter.Get_Labels();
    std::string known;
    for (size_t index = 0; index < labels.size(); ++index) {
        if (label == labels[index]) return static_cast<int32_t>(index);
        known += (index ? ", \"" : "\"") + std::string(labels[index]) + "\"";
    }
    throw JsonError(pointer, "unknown label \"" + label + "\"; known are " + known);
}

void Enum_From_Json(EnumParameterClass &parameter, const Json &value, const std::string &pointer)
{
    if (value.is_string()) return parameter.Set_Index(Label_Index(parameter, value.get<std::string>(), pointer));
    if (!value.is_object()) return parameter.Set_Index(Read_Int32(value, pointer));
    ObjectReader object(value, pointer);
    const Json *index = object.Find("index");
    const Json *label = object.Find("label");
    object.Refuse_Other_Keys();
    if (index) parameter.Set_Index(Read_Int32(*index, object.Pointer("index")));
    if (!label) return;
    // An index that the list doesn't have is told with an empty label.
    const std::string &text = Read_Text(*label, object.Pointer("label"));
    if (index && !parameter.Is_Index_Valid() && text.empty()) return;
    const int32_t labelled = Label_Index(parameter, text, object.Pointer("label"));
    if (index && labelled != parameter.Get_Index())
        throw JsonError(object.Pointer("label"), "the label \"" + text + "\" is that of index " +
                                                     std::to_string(labelled) + ", not of " +
                                                     std::to_string(parameter.Get_Index()));
    parameter.Set_Index(labelled);
}

Json UV_List_To_Json(const UVListParameterClass &parameter)
{
    Json list = Json::array();
    for (const Vector4 &rectangle : parameter.Get_Value()) list.push_back(To_Json(rectangle));
    return list;
}

void UV_List_From_Json(UVListParameterClass &parameter, const Json &value, const std::string &pointer)
{
    std::vector<Vector4> list(Read_Array(value, pointer).size());
    for (size_t index = 0; index < list.size(); ++index)
        From_Json(list[index], value[index], Item_Pointer(pointer, index));
    parameter.Set_Value(std::move(list));
}

/// The groups of a shape's eleven extra floats in the JSON.
constexpr struct
{
    const char *Key;
    int First;
    size_t Count;
} SHAPE_GROUPS[] = {{"cap", 0, 4}, {"cylinder", 4, 3}, {"torus", 7, 2}, {"radial", 9, 2}};

Json Shape_To_Json(const ShapeStruct &shape)
{
    Json json = {{"shape", shape.ShapeType},
                 {"center", To_Json(shape.Center)},
                 {"direction", To_Json(shape.Direction)},
                 {"ray", Floats({shape.A, shape.B})},
                 {"sphere", Floats({shape.C, shape.D})},
                 {"box", Json::array({To_Json(shape.BoxMinimum), To_Json(shape.BoxMaximum)})}};
    for (const auto &group : SHAPE_GROUPS) {
        Json numbers = Json::array();
        for (size_t i = 0; i < group.Count; ++i)
            numbers.push_back(Float_To_Json(shape.E[static_cast<size_t>(group.First) + i]));
        json[group.Key] = std::move(numbers);
    }
    return json;
}

void Read_Pair(ObjectReader &object, const char *key, float &first, float &second)
{
    const Json *value = object.Find(key);
    if (!value) return;
    const auto numbers = Read_Floats(*value, 2, object.Pointer(key));
    first = numbers[0];
    second = numbers[1];
}

void Shape_From_Json(ShapeParameterClass &parameter, const Json &value, const std::string &pointer)
{
    ShapeStruct shape = parameter.Get_Value();
    ObjectReader object(value, pointer);
    if (const Json *type = object.Find("shape")) shape.ShapeType = Read_UInt32(*type, object.Pointer("shape"));
    if (const Json *center = object.Find("center")) From_Json(shape.Center, *center, object.Pointer("center"));
    if (const Json *direction = object.Find("direction"))
        From_Json(shape.Direction, *direction, object.Pointer("direction"));
    Read_Pair(object, "ray", shape.A, shape.B);
    Read_Pair(object, "sphere", shape.C, shape.D);
    if (const Json *box = object.Find("box")) {
        if (!box->is_array() || box->size() != 2) throw JsonError(object.Pointer("box"), "expected two corners");
        From_Json(shape.BoxMinimum, (*box)[0], Item_Pointer(object.Pointer("box"), 0));
        From_Json(shape.BoxMaximum, (*box)[1], Item_Pointer(object.Pointer("box"), 1));
    }
    for (const auto &group : SHAPE_GROUPS) {
        const Json *numbers = object.Find(group.Key);
        if (!numbers) continue;
        const auto extras = Read_Floats(*numbers, group.Count, object.Pointer(group.Key));
        std::copy(extras.begin(), extras.end(), shape.E + group.First);
    }
    object.Refuse_Other_Keys();
    parameter.Set_Value(shape);
}

template <typename Parameter> void Simple_From_Json(ParameterClass &parameter, const Json &value, const std::string &at)
{
    auto &simple = static_cast<Parameter &>(parameter);
    auto number = simple.Get_Value();
    From_Json(number, value, at);
    simple.Set_Value(number);
}

} // namespace

Json TextPlaces::To_Json(std::string_view bytes, const std::string &pointer)
{
    if (Is_Valid_Utf8(bytes)) return std::string(bytes);
    Windows1252.insert(pointer);
    return Windows_1252_To_Utf8(bytes);
}

std::string TextPlaces::To_Bytes(const Json &value, const std::string &pointer) const
{
    std::string bytes = Read_Text(value, pointer);
    if (Windows1252.contains(pointer)) {
        Used.insert(pointer);
        if (!Utf8_To_Windows_1252(Read_Text(value, pointer), bytes))
            throw JsonError(pointer, "the text has a character that isn't in Windows-1252");
    }
    if (bytes.size() > LONGEST_TEXT)
        throw JsonError(pointer, "the text has " + std::to_string(bytes.size()) + " bytes, and a file holds at most " +
                                     std::to_string(LONGEST_TEXT));
    return bytes;
}

Json TextPlaces::Windows1252_List() const
{
    Json list = Json::array();
    for (const std::string &place : Windows1252) list.push_back(place);
    return list;
}

void TextPlaces::Read_Windows1252_List(const Json &list, const std::string &pointer)
{
    for (size_t index = 0; index < Read_Array(list, pointer).size(); ++index)
        Windows1252.insert(Read_Text(list[index], Item_Pointer(pointer, index)));
}

void TextPlaces::Refuse_Unused() const
{
    for (const std::string &place : Windows1252)
        if (!Used.contains(place)) throw JsonError("/windows_1252", "there is no text at " + place);
}

Json Value_To_Json(const ParameterClass &parameter, const std::string &pointer, TextPlaces &texts)
{
    switch (parameter.Get_Type()) {
    case ParameterType::Boolean: return static_cast<const BoolParameter &>(parameter).Get_Value();
    case ParameterType::RGBA: return To_Json(static_cast<const RGBAParameter &>(parameter).Get_Value());
    case ParameterType::Vector3: return To_Json(static_cast<const Vector3Parameter &>(parameter).Get_Value());
    case ParameterType::Integer: return static_cast<const IntParameter &>(parameter).Get_Value();
    case ParameterType::Float: return To_Json(static_cast<const FloatParameter &>(parameter).Get_Value());
    case ParameterType::String:
    case ParameterType::TextureName:
    case ParameterType::ShaderName:
        return texts.To_Json(static_cast<const StringParameterClass &>(parameter).Get_Value(), pointer);
    case ParameterType::KeyedRGBA: return Keyed_To_Json<KeyedRGBAParameter>(parameter);
    case ParameterType::KeyedFloat: return Keyed_To_Json<KeyedFloatParameterClass>(parameter);
    case ParameterType::KeyedUV: return Keyed_To_Json<KeyedUVParameter>(parameter);
    case ParameterType::UV: return To_Json(static_cast<const UVParameter &>(parameter).Get_Value());
    case ParameterType::Shape: return Shape_To_Json(static_cast<const ShapeParameterClass &>(parameter).Get_Value());
    case ParameterType::Enumeration: return Enum_To_Json(static_cast<const EnumParameterClass &>(parameter));
    case ParameterType::UVList: return UV_List_To_Json(static_cast<const UVListParameterClass &>(parameter));
    case ParameterType::Mask: return static_cast<const MaskParameter &>(parameter).Get_Value();
    case ParameterType::KeyedBoolean:
    case ParameterType::KeyedVector3:
    case ParameterType::KeyedInteger: break; // no class stands behind these
    }
    return nullptr;
}

void Value_From_Json(ParameterClass &parameter, const Json &value, const std::string &pointer, const TextPlaces &texts)
{
    switch (parameter.Get_Type()) {
    case ParameterType::Boolean:
        return static_cast<BoolParameter &>(parameter).Set_Value(Read_Bool(value, pointer));
    case ParameterType::RGBA: return Simple_From_Json<RGBAParameter>(parameter, value, pointer);
    case ParameterType::Vector3: return Simple_From_Json<Vector3Parameter>(parameter, value, pointer);
    case ParameterType::Integer:
        return static_cast<IntParameter &>(parameter).Set_Value(Read_Int32(value, pointer));
    case ParameterType::Float: return Simple_From_Json<FloatParameter>(parameter, value, pointer);
    case ParameterType::String:
    case ParameterType::TextureName:
    case ParameterType::ShaderName:
        return static_cast<StringParameterClass &>(parameter).Set_Value(texts.To_Bytes(value, pointer));
    case ParameterType::KeyedRGBA: return Keyed_From_Json<KeyedRGBAParameter>(parameter, value, pointer);
    case ParameterType::KeyedFloat: return Keyed_From_Json<KeyedFloatParameterClass>(parameter, value, pointer);
    case ParameterType::KeyedUV: return Keyed_From_Json<KeyedUVParameter>(parameter, value, pointer);
    case ParameterType::UV: return Simple_From_Json<UVParameter>(parameter, value, pointer);
    case ParameterType::Shape: return Shape_From_Json(static_cast<ShapeParameterClass &>(parameter), value, pointer);
    case ParameterType::Enumeration:
        return Enum_From_Json(static_cast<EnumParameterClass &>(parameter), value, pointer);
    case ParameterType::UVList:
        return UV_List_From_Json(static_cast<UVListParameterClass &>(parameter), value, pointer);
    case ParameterType::Mask:
        return static_cast<MaskParameter &>(parameter).Set_Value(Read_UInt32(value, pointer));
    case ParameterType::KeyedBoolean:
    case ParameterType::KeyedVector3:
    case ParameterType::KeyedInteger: break; // no class stands behind these
    }
}

Json Parameter_To_Json(const ParameterClass &parameter, const std::string &pointer, TextPlaces &texts)
{
    return {{"id", parameter.Get_ID()},
            {"name", parameter.Get_Name()},
            {"kind", Get_Parameter_Type_Name(parameter.Get_Type())},
            {"value", Value_To_Json(parameter, pointer + "/value", texts)}};
}

int Parameter_From_Json(ParameterListClass &parameters, const Json &entry, const std::string &pointer,
                        const TextPlaces &texts)
{
    ObjectReader object(entry, pointer);
    const Json *id = object.Find("id");
    const Json *name = object.Find("name");
    const Json *kind = object.Find("kind");
    const Json *value = object.Find("value");
    object.Refuse_Other_Keys();
    if (!id && !name) throw JsonError(pointer, "a parameter needs an \"id\" or a \"name\"");

    const auto matches = [&](const ParameterClass &parameter) {
        if (id && parameter.Get_ID() != Read_Int32(*id, object.Pointer("id"))) return false;
        return !name || MK::Equal_Ignoring_Case(parameter.Get_Name(), Read_Text(*name, object.Pointer("name")));
    };
    int index = 0;
    while (index < parameters.Get_Parameter_Count() && !matches(*parameters.Get_Parameter(index))) ++index;
    ParameterClass *parameter = parameters.Get_Parameter(index);
    if (!parameter)
        throw JsonError(pointer, "the plugin has no parameter with " + (id ? "the id " + id->dump() : std::string()) +
                                     (id && name ? " and " : "") + (name ? "the name " + name->dump() : std::string()));
    if (parameter->Is_Save_Excluded())
        throw JsonError(pointer, std::string("\"") + parameter->Get_Name() +
                                     "\" is retired: it is read from old files and never written");
    const char *expected = Get_Parameter_Type_Name(parameter->Get_Type());
    if (kind && Read_Text(*kind, object.Pointer("kind")) != expected)
        throw JsonError(object.Pointer("kind"), std::string("the parameter \"") + parameter->Get_Name() +
                                                    "\" is of the kind \"" + expected + "\"");
    if (value) Value_From_Json(*parameter, *value, object.Pointer("value"), texts);
    return index;
}

} // namespace vro
