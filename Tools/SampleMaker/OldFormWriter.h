#pragma once

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "vrGraphics/plugins/base/vrMKPPluginIds.h"

#include <initializer_list>
#include <string_view>
#include <utility>

/// Writes chunks the way the oldest tools did: parameter values stand bare in their chunks, keyed values too, and
/// shapes as a run of numbers. Today's writer has none of these forms left, and today's reader takes them all.
class OldFormWriter
{
public:
    using FloatKeys = std::initializer_list<std::pair<float, float>>;

    /// Writes into `file`, uncompressed.
    explicit OldFormWriter(FileClass &file);

    /// A chunk whose content `body` writes.
    template <typename Body>
    void Chunk(uint32_t id, Body body)
    {
        Written &= Writer.Open_Chunk(id);
        body();
        Written &= Writer.Close_Chunk();
    }
    /// A plugin in a chunk of the given id; `parameters` writes them.
    template <typename Body>
    void Plugin(uint32_t slot, vrMKPPluginId kind, Body parameters)
    {
        Chunk(slot, [&] {
            Chunk(0, [&] { Value(static_cast<int32_t>(kind)); });
            Chunk(1, [&] { Chunk(0, parameters); });
        });
    }
    void Plugin(uint32_t slot, vrMKPPluginId kind);

    template <typename T>
    void Micro_Chunk(uint32_t id, const T &value)
    {
        Written &= Writer.Open_Micro_Chunk(id);
        Value(value);
        Written &= Writer.Close_Micro_Chunk();
    }

    template <typename T>
    void Parameter(int32_t id, const T &value)
    {
        Chunk(0, [&] { Value(id); });
        Chunk(1, [&] { Value(value); });
    }
    void Keyed_Parameter(int32_t id, FloatKeys keys);
    /// A ball of the given inner and outer radius about the origin, in the form without sub-chunks.
    void Sphere_Parameter(int32_t id, float inner, float outer);
    /// An upright cylinder, in the form that came next: sub-chunk 1, without the speeds of radial shapes.
    void Cylinder_Parameter(int32_t id, float radius, float bottom, float top);

    void Value(bool value) { Written &= Writer.Write_Bool(value); }
    void Value(int32_t value) { Written &= Writer.Write_Int32(value); }
    void Value(uint32_t value) { Written &= Writer.Write_UInt32(value); }
    void Value(float value) { Written &= Writer.Write_Float(value); }
    void Value(std::string_view value) { Written &= Writer.Write_String(value); }
    void Value(const char *value) { Value(std::string_view(value)); }
    void Value(const Vector3 &value) { Written &= Writer.Write_Vector3(value); }
    void Value(const Vector4 &value) { Written &= Writer.Write_Vector4(value); }
    void Value(const RGBAClass &value) { Written &= Writer.Write_RGBA(value); }

    /// Finishes the file. False when any write failed.
    bool Close() { return Writer.Close() && Written; }

private:
    void Shape_Head(uint32_t type, float inner, float outer);

    ChunkFileWriterClass Writer;
    bool Written = true;
};
