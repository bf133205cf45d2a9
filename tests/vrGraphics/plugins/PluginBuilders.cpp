#include "PluginBuilders.h"

#include "vrGraphics/plugins/vrMKPPluginTable.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include <cstdio>
#include <stdexcept>

namespace MKTest
{

namespace
{

enum : uint32_t
{
    ROOT_CHUNK = 7
};

void Append(std::string &text, float value)
{
    char number[32];
    std::snprintf(number, sizeof number, "%a ", static_cast<double>(value));
    text += number;
}

void Append(std::string &text, const Vector3 &value)
{
    for (int axis = 0; axis < 3; ++axis) Append(text, value[axis]);
}

void Append(std::string &text, const Vector4 &value)
{
    for (int axis = 0; axis < 4; ++axis) Append(text, value[axis]);
}

void Append(std::string &text, const RGBAClass &value)
{
    for (const float part : {value.R, value.G, value.B, value.A}) Append(text, part);
}

void Append(std::string &text, bool value)
{
    text += value ? "true" : "false";
}
void Append(std::string &text, int32_t value)
{
    text += std::to_string(value);
}
void Append(std::string &text, uint32_t value)
{
    text += std::to_string(value);
}

void Append(std::string &text, const ShapeStruct &shape)
{
    text += std::to_string(shape.ShapeType) + ": ";
    for (const Vector3 &part : {shape.Center, shape.Direction, shape.BoxMinimum, shape.BoxMaximum}) Append(text, part);
    for (const float part : {shape.A, shape.B, shape.C, shape.D}) Append(text, part);
    for (const float part : shape.E) Append(text, part);
}

Vector4 Changed(const Vector4 &value)
{
    return value + Vector4(0.25f, 0.5f, -0.25f, 0.125f);
}
RGBAClass Changed(const RGBAClass &value)
{
    return {value.R + 0.5f, value.G - 0.25f, value.B + 0.125f, value.A * 0.5f};
}
float Changed(float value)
{
    return value + 0.375f;
}

template <typename Keyed>
bool Change_Keyed(ParameterClass &parameter)
{
    auto *keyed = dynamic_cast<Keyed *>(&parameter);
    if (!keyed) return false;
    auto value = decltype(keyed->Get_Keys()[0].Value){};
    keyed->Set_Spline(!keyed->Is_Spline());
    keyed->Clear_Keys();
    for (const float time : {0.0f, 0.375f, 1.0f}) keyed->Add_Key(time, value = Changed(value));
    return true;
}

template <typename Keyed>
bool Describe_Keyed(std::string &text, const ParameterClass &parameter)
{
    const auto *keyed = dynamic_cast<const Keyed *>(&parameter);
    if (!keyed) return false;
    text += keyed->Is_Spline() ? "spline " : "linear ";
    for (const auto &key : keyed->Get_Keys()) {
        Append(text, key.Time);
        Append(text, key.Value);
    }
    return true;
}

template <typename Simple, typename Next>
bool Change_Simple(ParameterClass &parameter, Next next)
{
    auto *simple = dynamic_cast<Simple *>(&parameter);
    if (simple) simple->Set_Value(next(simple->Get_Value()));
    return simple != nullptr;
}

template <typename Simple>
bool Describe_Simple(std::string &text, const ParameterClass &parameter)
{
    const auto *simple = dynamic_cast<const Simple *>(&parameter);
    if (simple) Append(text, simple->Get_Value());
    return simple != nullptr;
}

using SimpleInteger = SimpleParameterClass<int32_t, ParameterType::Integer>;
using SimpleFloat = SimpleParameterClass<float, ParameterType::Float>;
using KeyedFloat = KeyedParameterClass<float, ParameterType::KeyedFloat>;

void Change_Shape(ShapeParameterClass &shape)
{
    ShapeStruct value = shape.Get_Value();
    value.ShapeType = (value.ShapeType + 1) % SHAPE_COUNT;
    value.Center += Vector3(1.0f, 2.0f, 3.0f);
    value.Direction += Vector3(0.5f, 0.25f, 0.125f);
    value.BoxMinimum -= Vector3(1.0f);
    value.BoxMaximum += Vector3(2.0f);
    for (float *part : {&value.A, &value.B, &value.C, &value.D}) *part += 0.75f;
    for (float &part : value.E) part += 0.25f;
    shape.Set_Value(value);
}

} // namespace

std::vector<int> All_Plugin_IDs()
{
    std::vector<int> ids;
    for (int id = 0; id < VRMKP_PLUGIN_COUNT; ++id) ids.push_back(id);
    return ids;
}

std::vector<int> Plugin_IDs_Of(vrMKPPlugin::PluginType family)
{
    std::vector<int> ids;
    for (const int id : All_Plugin_IDs())
        if (Find_Plugin_Info(id)->Family == family) ids.push_back(id);
    return ids;
}

std::string Plugin_Label(int id)
{
    return std::to_string(id) + " " + Find_Plugin_Info(id)->Name;
}

SmartPtr<vrMKPPlugin> Make_Plugin(int id)
{
    SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(id));
    if (!plugin) throw std::runtime_error("no plugin " + std::to_string(id));
    return plugin;
}

void Change(ParameterClass &parameter)
{
    if (Change_Simple<BoolParameter>(parameter, [](bool value) { return !value; })) return;
    if (Change_Simple<SimpleInteger>(parameter, [](int32_t value) { return value + 3; })) return;
    if (Change_Simple<SimpleFloat>(parameter, [](float value) { return Changed(value); })) return;
    if (Change_Simple<MaskParameter>(parameter, [](uint32_t value) { return value ^ 0x80000005u; })) return;
    if (Change_Simple<RGBAParameter>(parameter, [](const RGBAClass &value) { return Changed(value); })) return;
    if (Change_Simple<UVParameter>(parameter, [](const Vector4 &value) { return Changed(value); })) return;
    if (Change_Simple<Vector3Parameter>(parameter,
                                        [](const Vector3 &value) { return value + Vector3(1.0f, -2.0f, 0.5f); }))
        return;
    if (Change_Keyed<KeyedFloat>(parameter) || Change_Keyed<KeyedRGBAParameter>(parameter)) return;
    if (Change_Keyed<KeyedUVParameter>(parameter)) return;
    if (auto *text = dynamic_cast<StringParameterClass *>(&parameter)) {
        text->Set_Value("Changed " + std::string(text->Get_Value().data(), text->Get_Value().size()));
    } else if (auto *choice = dynamic_cast<EnumParameterClass *>(&parameter)) {
        choice->Set_Index((choice->Get_Index() + 1) % choice->Get_Count());
    } else if (auto *list = dynamic_cast<UVListParameterClass *>(&parameter)) {
        auto rectangles = list->Get_Value();
        rectangles.push_back({0.25f, 0.5f, 0.125f, 0.0625f});
        list->Set_Value(rectangles);
    } else {
        Change_Shape(dynamic_cast<ShapeParameterClass &>(parameter));
    }
}

void Change_All(vrMKPPlugin &plugin)
{
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        Change(*plugin.Get_Parameters().Get_Parameter(index));
}

std::string Describe(const ParameterClass &parameter)
{
    std::string text = std::string(parameter.Get_Name()) + " = ";
    if (Describe_Simple<BoolParameter>(text, parameter) || Describe_Simple<SimpleInteger>(text, parameter) ||
        Describe_Simple<SimpleFloat>(text, parameter) || Describe_Simple<MaskParameter>(text, parameter) ||
        Describe_Simple<RGBAParameter>(text, parameter) || Describe_Simple<UVParameter>(text, parameter) ||
        Describe_Simple<Vector3Parameter>(text, parameter) || Describe_Keyed<KeyedFloat>(text, parameter) ||
        Describe_Keyed<KeyedRGBAParameter>(text, parameter) || Describe_Keyed<KeyedUVParameter>(text, parameter))
        return text;
    if (const auto *string = dynamic_cast<const StringParameterClass *>(&parameter)) {
        text.append(string->Get_Value().data(), string->Get_Value().size());
    } else if (const auto *choice = dynamic_cast<const EnumParameterClass *>(&parameter)) {
        Append(text, choice->Get_Index());
    } else if (const auto *list = dynamic_cast<const UVListParameterClass *>(&parameter)) {
        for (const Vector4 &rectangle : list->Get_Value()) Append(text, rectangle);
    } else {
        Append(text, dynamic_cast<const ShapeParameterClass &>(parameter).Get_Value());
    }
    return text;
}

std::string Describe(const vrMKPPlugin &plugin)
{
    std::string text;
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        text += Describe(*plugin.Get_Parameters().Get_Parameter(index)) + "\n";
    return text;
}

Bytes Write_Chunks(const std::function<void(ChunkFileWriterClass &)> &write)
{
    RAMFileClass file;
    ChunkFileWriterClass writer(&file, ChunkFile::COMPRESSION_NONE, 0, true);
    write(writer);
    if (!writer.Close()) throw std::runtime_error("the chunk file wasn't written");
    return {file.Get_Buffer(), file.Get_Buffer() + file.Get_Size()};
}

void Read_Chunks(const Bytes &bytes, const std::function<void(ChunkFileReaderClass &)> &read)
{
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    ChunkFileReaderClass reader(&file);
    if (!reader.Is_Initialized()) throw std::runtime_error("not a chunk file");
    read(reader);
}

void Write_Int_Chunk(ChunkFileWriterClass &writer, uint32_t chunk, int32_t value)
{
    writer.Open_Chunk(chunk);
    writer.Write_Int32(value);
    writer.Close_Chunk();
}

namespace
{

template <typename Write>
void Write_Simple(ChunkFileWriterClass &writer, int32_t id, Write write)
{
    Write_Int_Chunk(writer, 0, id);
    writer.Open_Chunk(2);
    writer.Open_Chunk(0);
    writer.Open_Micro_Chunk(0);
    write();
    writer.Close_Micro_Chunk();
    writer.Close_Chunk();
    writer.Close_Chunk();
}

} // namespace

void Write_Simple_Value(ChunkFileWriterClass &writer, int32_t id, float value)
{
    Write_Simple(writer, id, [&] { writer.Write_Float(value); });
}

void Write_Simple_Value(ChunkFileWriterClass &writer, int32_t id, bool value)
{
    Write_Simple(writer, id, [&] { writer.Write_Bool(value); });
}

void Write_Simple_Value(ChunkFileWriterClass &writer, int32_t id, int32_t value)
{
    Write_Simple(writer, id, [&] { writer.Write_Int32(value); });
}

Bytes Save_Plugin(const vrMKPPlugin &plugin)
{
    return Write_Chunks([&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(ROOT_CHUNK);
        if (!vrMKPPlugin::Write_Plugin(&writer, &plugin)) throw std::runtime_error("the plugin wasn't written");
        writer.Close_Chunk();
    });
}

SmartPtr<vrMKPPlugin> Load_Plugin(const Bytes &file)
{
    SmartPtr<vrMKPPlugin> plugin;
    Read_Chunks(file, [&](ChunkFileReaderClass &reader) {
        if (!reader.Open_Chunk()) throw std::runtime_error("an empty file");
        plugin = vrMKPPlugin::Read_Plugin(&reader);
    });
    return plugin;
}

SmartPtr<vrMKPPlugin> Load_Values(int id, const std::function<void(ChunkFileWriterClass &)> &write)
{
    return Load_Plugin(Write_Chunks([&](ChunkFileWriterClass &writer) {
        writer.Open_Chunk(ROOT_CHUNK);
        Write_Int_Chunk(writer, vrMKPPlugin::VR_CHUNK_MKPPLUGIN_ID, id);
        writer.Open_Chunk(vrMKPPlugin::VR_CHUNK_MKPPLUGIN_DATA);
        writer.Open_Chunk(0u);
        write(writer);
        writer.Close_Chunk();
        writer.Close_Chunk();
        writer.Close_Chunk();
    }));
}

std::vector<int> Parameter_IDs(const vrMKPPlugin &plugin)
{
    std::vector<int> ids;
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        ids.push_back(plugin.Get_Parameters().Get_Parameter(index)->Get_ID());
    return ids;
}

} // namespace MKTest
