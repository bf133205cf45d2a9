#pragma once

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace MKTest
{

using Bytes = std::vector<uint8_t>;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

using FloatKeys = std::vector<std::pair<float, float>>;
using ColorKeys = std::vector<std::pair<float, RGBAClass>>;
/// The value of a parameter. A number serves every kind that is one, a flag and the index of a label among them; a
/// vector is a shape's point, too.
using Value = std::variant<float, int, bool, Vector3, Vector4, RGBAClass, FloatKeys, ColorKeys, const char *>;
using Values = std::vector<std::pair<const char *, Value>>;

/// Every plugin id, and those of one family.
std::vector<int> All_Plugin_IDs();
std::vector<int> Plugin_IDs_Of(vrMKPPlugin::PluginType family);
/// "39 Enhanced Trail", for failure messages.
std::string Plugin_Label(int id);

/// A plugin with its default values but for these. Throws for an unknown id.
SmartPtr<vrMKPPlugin> Make_Plugin(int id, const Values &values = {});

/// The parameter of that name as `T`; throws when there is none or when it is of another class.
template <typename T>
T &Parameter_Of(const vrMKPPlugin &plugin, std::string_view name)
{
    return dynamic_cast<T &>(*plugin.Get_Parameter_By_Name(name));
}

void Set_Value(const vrMKPPlugin &plugin, std::string_view name, const Value &value);
void Set_Values(const vrMKPPlugin &plugin, const Values &values);
/// Floats, vectors and curves take the one value, ints and labels the other; flags are on where that is above 0.
void Set_All_Numbers(vrMKPPlugin &plugin, float value, int whole);

/// Gives all parameters values that they don't have.
void Change_All(vrMKPPlugin &plugin);

/// A chunk file in memory: `write` fills it, `Read_Chunks` hands it to a reader.
Bytes Write_Chunks(const std::function<void(ChunkFile::ChunkFileWriterClass &)> &write);
void Read_Chunks(const Bytes &file, const std::function<void(ChunkFile::ChunkFileReaderClass &)> &read);
/// A chunk with the value of one int32.
void Write_Int_Chunk(ChunkFile::ChunkFileWriterClass &writer, uint32_t chunk, int32_t value);
/// One entry of a parameter list with a float or a bool, as the simple kinds are saved.
void Write_Simple_Value(ChunkFile::ChunkFileWriterClass &writer, int32_t id, const Value &value);

/// `Write_Plugin` into a file of one chunk, and `Read_Plugin` from it.
Bytes Save_Plugin(const vrMKPPlugin &plugin);
SmartPtr<vrMKPPlugin> Load_Plugin(const Bytes &file);

} // namespace MKTest
