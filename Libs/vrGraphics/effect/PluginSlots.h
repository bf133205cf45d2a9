#pragma once

/// What everything that owns plugins does with a slot: reads one from a file, clones it, counts its bytes.

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// Bounds what a file can make a load allocate: a few bytes of a file are a plugin of kilobytes, and compressed they
/// are almost none. The outermost of a thread starts the count, and those within share it.
class vrMKPLoadLimit
{
public:
    static constexpr int MAX_OBJECTS = 32768; ///< renderables, layers and plugins of one file

    vrMKPLoadLimit();
    vrMKPLoadLimit(const vrMKPLoadLimit &) = delete;
    vrMKPLoadLimit &operator=(const vrMKPLoadLimit &) = delete;
    ~vrMKPLoadLimit();

    /// Counts one more object. False, with the reason in the log, when there may be no more.
    static bool Take(const ChunkFileReaderClass &reader);
    static bool Is_Exceeded();
};

namespace PluginSlots
{

/// A text in a micro-chunk, with the length and the tag of a validated file, must fit 255 bytes.
constexpr size_t MAX_MICRO_CHUNK_TEXT = 252;

/// The plugin that the current chunk holds, when it is of the family. Otherwise null, and the report tells what was
/// found and that `otherwise` becomes of it.
vrMKPPlugin *Read_Family(ChunkFileReaderClass &reader, vrMKPPlugin::PluginType family, const char *otherwise);

template <typename T>
SmartPtr<T> Read(ChunkFileReaderClass &reader, vrMKPPlugin::PluginType family, const char *otherwise)
{
    return static_cast<T *>(Read_Family(reader, family, otherwise));
}

template <typename T>
SmartPtr<T> Make(vrMKPPluginId id)
{
    return static_cast<T *>(vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(id)));
}

/// A clone of its own in the editor, and otherwise the same plugin.
template <typename T>
SmartPtr<T> Copy(const SmartPtr<T> &source, bool isDeep)
{
    return isDeep && source ? SmartPtr<T>(static_cast<T *>(source->Clone())) : source;
}

/// Writes a plugin in a chunk of its own.
bool Save(ChunkFile::ChunkFileWriterClass &writer, const char *name, uint32_t id, const vrMKPPlugin &plugin);

/// Reads the text of the current micro-chunk and cuts what a save couldn't write again.
bool Read_Micro_Chunk_Text(ChunkFileReaderClass &reader, NameTableRef &text);

/// Bytes of a plugin and its parameters; 0 for null.
size_t Get_Memory_Usage(const vrMKPPlugin *plugin);

/// Tells the load report of a chunk that no reader knows.
void Report_Unknown_Chunk(const ChunkFileReaderClass &reader, const char *result);

} // namespace PluginSlots
