#pragma once

#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace MKTest
{

using Bytes = std::vector<uint8_t>;

/// Every plugin id, and those of one family.
std::vector<int> All_Plugin_IDs();
std::vector<int> Plugin_IDs_Of(vrMKPPlugin::PluginType family);
/// "39 Enhanced Trail", for failure messages.
std::string Plugin_Label(int id);

/// A plugin with its default values. Throws for an unknown id.
SmartPtr<vrMKPPlugin> Make_Plugin(int id);

/// The parameter of that name as `T`; throws when there is none or when it is of another class.
template <typename T>
T &Parameter_Of(const vrMKPPlugin &plugin, std::string_view name)
{
    return dynamic_cast<T &>(*plugin.Get_Parameter_By_Name(name));
}

/// Gives a parameter, whatever its kind, a value that it doesn't have.
void Change(ParameterClass &parameter);
void Change_All(vrMKPPlugin &plugin);

/// The value of a parameter as text, exact to the bit, made without the file format.
std::string Describe(const ParameterClass &parameter);
std::string Describe(const vrMKPPlugin &plugin);

/// A chunk file in memory: `write` fills it, `Read_Chunks` hands it to a reader.
Bytes Write_Chunks(const std::function<void(ChunkFile::ChunkFileWriterClass &)> &write);
void Read_Chunks(const Bytes &file, const std::function<void(ChunkFile::ChunkFileReaderClass &)> &read);
/// A chunk with the value of one int32.
void Write_Int_Chunk(ChunkFile::ChunkFileWriterClass &writer, uint32_t chunk, int32_t value);
/// One entry of a parameter list, as the simple kinds are saved.
void Write_Simple_Value(ChunkFile::ChunkFileWriterClass &writer, int32_t id, float value);
void Write_Simple_Value(ChunkFile::ChunkFileWriterClass &writer, int32_t id, bool value);
void Write_Simple_Value(ChunkFile::ChunkFileWriterClass &writer, int32_t id, int32_t value);

/// `Write_Plugin` into a file of one chunk, and `Read_Plugin` from it.
Bytes Save_Plugin(const vrMKPPlugin &plugin);
SmartPtr<vrMKPPlugin> Load_Plugin(const Bytes &file);
/// A plugin that loads the parameter list that `write` wrote.
SmartPtr<vrMKPPlugin> Load_Values(int id, const std::function<void(ChunkFile::ChunkFileWriterClass &)> &write);

/// The ids of the parameters in list order.
std::vector<int> Parameter_IDs(const vrMKPPlugin &plugin);

} // namespace MKTest
