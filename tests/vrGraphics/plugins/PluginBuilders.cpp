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

#include <stdexcept>

namespace MKTest
{

namespace
{

enum : uint32_t
{
    ROOT_CHUNK = 7
};

using SimpleInteger = SimpleParameterClass<int32_t, ParameterType::Integer>;
using SimpleFloat = SimpleParameterClass<float, ParameterType::Float>;
using KeyedFloat = KeyedParameterClass<float, ParameterType::KeyedFloat>;

/// Gives a parameter a value by its kind.
struct Assign
{
    ParameterClass &To;

    void operator()(float number) const
    {
        if (auto *real = dynamic_cast<SimpleFloat *>(&To))
            real->Set_Value(number);
        else if (auto *flag = dynamic_cast<BoolParameter *>(&To))
            flag->Set_Value(number != 0.0f);
        else if (auto *choice = dynamic_cast<EnumParameterClass *>(&To))
            choice->Set_Index(static_cast<int32_t>(number));
        else
            dynamic_cast<SimpleInteger &>(To).Set_Value(static_cast<int32_t>(number));
    }
    void operator()(int number) const { (*this)(static_cast<float>(number)); }
    void operator()(bool flag) const { (*this)(flag ? 1.0f : 0.0f); }
    void operator()(const Vector3 &value) const
    {
        ShapeStruct point;
        point.Center = value;
        if (auto *shape = dynamic_cast<ShapeParameterClass *>(&To))
            shape->Set_Value(point);
        else
            dynamic_cast<Vector3Parameter &>(To).Set_Value(value);
    }
    void operator()(const Vector4 &value) const { dynamic_cast<UVParameter &>(To).Set_Value(value); }
    void operator()(const RGBAClass &value) const { dynamic_cast<RGBAParameter &>(To).Set_Value(value); }
    void operator()(const char *value) const { dynamic_cast<StringParameterClass &>(To).Set_Value(value); }
    void operator()(const FloatKeys &keys) const { Set_Keys(dynamic_cast<KeyedFloat &>(To), keys); }
    void operator()(const ColorKeys &keys) const { Set_Keys(dynamic_cast<KeyedRGBAParameter &>(To), keys); }

private:
    template <typename Curve, typename Keys>
    static void Set_Keys(Curve &curve, const Keys &keys)
    {
        curve.Clear_Keys();
        for (const auto &[time, value] : keys) curve.Add_Key(time, value);
    }
};

/// Gives a parameter, whatever its kind, a value that no plugin has for a default.
void Change(ParameterClass &parameter)
{
    const Assign assign{parameter};
    const Vector4 rectangle(0.25f, 0.5f, 0.125f, 0.0625f);
    if (auto *flag = dynamic_cast<BoolParameter *>(&parameter))
        flag->Set_Value(!flag->Get_Value());
    else if (auto *choice = dynamic_cast<EnumParameterClass *>(&parameter))
        choice->Set_Index((choice->Get_Index() + 1) % choice->Get_Count());
    else if (auto *mask = dynamic_cast<MaskParameter *>(&parameter))
        mask->Set_Value(0x80000005u);
    else if (auto *list = dynamic_cast<UVListParameterClass *>(&parameter))
        list->Set_Value({rectangle});
    else if (auto *rectangles = dynamic_cast<KeyedUVParameter *>(&parameter))
        rectangles->Add_Key(0.375f, rectangle);
    else if (dynamic_cast<KeyedRGBAParameter *>(&parameter))
        assign(ColorKeys{{0.375f, {0.5f, -0.25f, 0.125f, 2.0f}}});
    else if (dynamic_cast<KeyedFloat *>(&parameter))
        assign(FloatKeys{{0.0f, 0.375f}, {0.375f, -7.0f}, {1.0f, 2.5f}});
    else if (dynamic_cast<RGBAParameter *>(&parameter))
        assign(RGBAClass(0.5f, -0.25f, 0.125f, 2.0f));
    else if (dynamic_cast<UVParameter *>(&parameter))
        assign(rectangle);
    else if (dynamic_cast<StringParameterClass *>(&parameter))
        assign("Changed");
    else if (dynamic_cast<SimpleFloat *>(&parameter))
        assign(123.375f);
    else if (dynamic_cast<SimpleInteger *>(&parameter))
        assign(12345);
    else
        assign(Vector3(1.5f, -2.25f, 77.0f)); // a shape, too
}

template <typename Visit>
void For_All_Parameters(vrMKPPlugin &plugin, Visit visit)
{
    for (int index = 0; index < plugin.Get_Parameters().Get_Parameter_Count(); ++index)
        visit(*plugin.Get_Parameters().Get_Parameter(index));
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

SmartPtr<vrMKPPlugin> Make_Plugin(int id, const Values &values)
{
    SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(id));
    if (!plugin) throw std::runtime_error("no plugin " + std::to_string(id));
    Set_Values(*plugin, values);
    return plugin;
}

void Set_Value(const vrMKPPlugin &plugin, std::string_view name, const Value &value)
{
    ParameterClass *const parameter = plugin.Get_Parameter_By_Name(name);
    if (!parameter) throw std::runtime_error("no parameter " + std::string(name));
    std::visit(Assign{*parameter}, value);
}

void Set_Values(const vrMKPPlugin &plugin, const Values &values)
{
    for (const auto &[name, value] : values) Set_Value(plugin, name, value);
}

void Set_All_Numbers(vrMKPPlugin &plugin, float value, int whole)
{
    For_All_Parameters(plugin, [&](ParameterClass &parameter) {
        if (auto *number = dynamic_cast<SimpleFloat *>(&parameter)) number->Set_Value(value);
        if (auto *vector = dynamic_cast<Vector3Parameter *>(&parameter)) vector->Set_Value(Vector3(value));
        if (auto *count = dynamic_cast<SimpleInteger *>(&parameter)) count->Set_Value(whole);
        if (auto *flag = dynamic_cast<BoolParameter *>(&parameter)) flag->Set_Value(whole > 0);
        if (auto *choice = dynamic_cast<EnumParameterClass *>(&parameter)) choice->Set_Index(whole);
        if (auto *curve = dynamic_cast<KeyedFloat *>(&parameter))
            Assign{*curve}(FloatKeys{{0.0f, value}, {value, value}});
    });
}

void Change_All(vrMKPPlugin &plugin)
{
    For_All_Parameters(plugin, Change);
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

void Write_Simple_Value(ChunkFileWriterClass &writer, int32_t id, const Value &value)
{
    Write_Int_Chunk(writer, 0, id);
    writer.Open_Chunk(2);
    writer.Open_Chunk(0);
    writer.Open_Micro_Chunk(0);
    if (const bool *flag = std::get_if<bool>(&value))
        writer.Write_Bool(*flag);
    else
        writer.Write_Float(std::get<float>(value));
    writer.Close_Micro_Chunk();
    writer.Close_Chunk();
    writer.Close_Chunk();
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

} // namespace MKTest
