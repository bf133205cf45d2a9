#include "common/EmitterBuilder.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"

#include <stdexcept>

namespace MKTest
{

namespace
{

using Writer = ChunkFile::ChunkFileWriterClass;

struct ValueWriter
{
    Writer &File;
    bool operator()(bool value) const { return File.Write_Bool(value); }
    bool operator()(int32_t value) const { return File.Write_Int32(value); }
    bool operator()(uint32_t value) const { return File.Write_UInt32(value); }
    bool operator()(float value) const { return File.Write_Float(value); }
    bool operator()(const std::string &value) const { return File.Write_String(value); }
    bool operator()(const Vector3 &value) const { return File.Write_Vector3(value); }
    bool operator()(const RGBAClass &value) const { return File.Write_RGBA(value); }
};

} // namespace

void Write_Chunk(Writer &writer, const Chunk &chunk)
{
    writer.Open_Chunk(chunk.id);
    for (const Chunk &child : chunk.children) Write_Chunk(writer, child);
    if (chunk.payload) chunk.payload(writer);
    writer.Close_Chunk();
}

Chunk Parent(uint32_t id, std::vector<Chunk> children)
{
    return {id, std::move(children), {}};
}

Chunk Leaf(uint32_t id, ChunkValue value)
{
    return {id, {}, [value = std::move(value)](Writer &writer) { std::visit(ValueWriter{writer}, value); }};
}

Chunk Bytes_Leaf(uint32_t id, std::string bytes)
{
    return {id, {}, [bytes = std::move(bytes)](Writer &writer) {
                writer.Write_Bytes(bytes.data(), static_cast<uint32_t>(bytes.size()));
            }};
}

Chunk Micros(uint32_t id, std::vector<Micro> values)
{
    return {id, {}, [values = std::move(values)](Writer &writer) {
                for (const Micro &micro : values) {
                    writer.Open_Micro_Chunk(micro.id);
                    std::visit(ValueWriter{writer}, micro.value);
                    writer.Close_Micro_Chunk();
                }
            }};
}

Chunk Emitter(std::vector<Chunk> children)
{
    return Parent(0x1500, std::move(children));
}

Chunk Group(std::vector<Chunk> children)
{
    return Parent(0x1780, std::move(children));
}

Chunk Model(std::vector<Chunk> children)
{
    return Parent(0x1800, std::move(children));
}

Chunk Block(std::string name, std::vector<Micro> variables, std::vector<Chunk> plugins)
{
    variables.insert(variables.begin(), Micro{0, std::move(name)});
    Chunk block = Parent(0x1700, {Micros(0x1701, std::move(variables))});
    if (!plugins.empty()) block.children.push_back(Parent(0x1680, std::move(plugins)));
    return block;
}

Chunk Layer(std::vector<Chunk> children)
{
    return Parent(0x1540, std::move(children));
}

Chunk Layer(std::string name, int spawner, int transformer, int stomper, int visualizer,
            std::initializer_list<int> modifiers)
{
    Chunk layer = Layer({Leaf(0, std::move(name)), Plugin(1, spawner), Plugin(2, transformer), Plugin(3, stomper),
                         Plugin(4, visualizer)});
    for (const int id : modifiers) layer.children.push_back(Plugin(5, id));
    return layer;
}

Chunk Attached_Model(std::string name, std::string animation, bool enabled)
{
    return Parent(0x16a0, {Micros(0x16a1, {{0, std::move(name)}, {1, std::move(animation)}, {2, enabled}})});
}

Chunk Plugin(uint32_t chunk, int id, std::vector<Micro> parameters)
{
    Chunk list = Parent(0, {});
    for (const Micro &parameter : parameters) {
        list.children.push_back(Leaf(0, static_cast<int32_t>(parameter.id)));
        list.children.push_back(Parent(2, {Micros(0, {{0, parameter.value}})}));
    }
    return Parent(chunk, {Leaf(0, id), Parent(1, {std::move(list)})});
}

Chunk Light(int id)
{
    return Parent(0x16c0, {Plugin(0x16c1, id)});
}

Bytes Build(std::vector<Chunk> roots, uint32_t mode)
{
    RAMFileClass file;
    Writer writer(&file, mode, 6, false);
    for (const Chunk &root : roots) Write_Chunk(writer, root);
    if (!writer.Close()) throw std::runtime_error("the file can't be written");
    return Bytes(file.Get_Buffer(), file.Get_Buffer() + file.Get_Size());
}

Bytes Build(Chunk root, uint32_t mode)
{
    return Build(std::vector<Chunk>{std::move(root)}, mode);
}

std::vector<uint32_t> All_Emitter_Modes()
{
    std::vector<uint32_t> modes{ChunkFile::COMPRESSION_XML};
    // Bit 0 is zlib, and the three switches stand from bit 4 on.
    for (uint32_t bits = 0; bits < 16; ++bits) modes.push_back((bits & 1) | (bits >> 1) << 4);
    return modes;
}

} // namespace MKTest
