#include "SampleMaker/OldFormWriter.h"

OldFormWriter::OldFormWriter(FileClass &file) : Writer(&file, ChunkFile::COMPRESSION_NONE, 0, true)
{
}

void OldFormWriter::Plugin(uint32_t slot, vrMKPPluginId kind)
{
    Plugin(slot, kind, [] {});
}

void OldFormWriter::Keyed_Parameter(int32_t id, FloatKeys keys)
{
    Chunk(0, [&] { Value(id); });
    Chunk(1, [&] {
        Value(static_cast<uint32_t>(keys.size()));
        for (const auto &[time, value] : keys) {
            Value(time);
            Value(value);
        }
    });
}

/// All forms of a shape begin alike.
void OldFormWriter::Shape_Head(uint32_t type, float inner, float outer)
{
    Value(type);
    Value(Vector3(0.0f));                                   // centre
    Value(Vector3(0.0f, 0.0f, 1.0f));                       // direction
    for (const float number : {0.0f, 10.0f}) Value(number); // of a ray
    for (const float number : {inner, outer}) Value(number);
    Value(Vector3(-10.0f)); // of a box
    Value(Vector3(10.0f));
}

void OldFormWriter::Sphere_Parameter(int32_t id, float inner, float outer)
{
    Chunk(0, [&] { Value(id); });
    Chunk(1, [&] {
        Shape_Head(2, inner, outer);
        for (const float number : {0.5f, 0.0f, 10.0f, 10.0f, -10.0f, 10.0f}) Value(number);
    });
}

void OldFormWriter::Cylinder_Parameter(int32_t id, float radius, float bottom, float top)
{
    Chunk(0, [&] { Value(id); });
    Chunk(1, [&] {
        Chunk(1, [&] {
            Shape_Head(5, 0.0f, 10.0f);
            for (const float number : {0.0f, 0.5f, 0.0f, 10.0f, radius, bottom, top, 10.0f, 5.0f}) Value(number);
        });
    });
}
