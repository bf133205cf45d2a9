#pragma once

#include "common/TempFiles.h"

#include "MKLib/MKMath/Vectors.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace ChunkFile
{
class ChunkFileWriterClass;
}

/// Emitter files put together by hand, chunk by chunk, so that a test sees what a load makes of a file that no save of
/// ours writes: `Build(Emitter({Group({Block("fire"), Layer({Plugin(1, 34)})})}))`.
namespace MKTest
{

/// A value as the typed writers of the chunk file write it.
using ChunkValue = std::variant<bool, int32_t, uint32_t, float, std::string, Vector3, RGBAClass>;

/// A chunk with its sub-chunks, or with a payload.
struct Chunk
{
    uint32_t id;
    std::vector<Chunk> children;
    std::function<void(ChunkFile::ChunkFileWriterClass &)> payload;
};

/// A micro-chunk of one value.
struct Micro
{
    uint32_t id;
    ChunkValue value;
};

Chunk Parent(uint32_t id, std::vector<Chunk> children);
Chunk Leaf(uint32_t id, ChunkValue value);
Chunk Bytes_Leaf(uint32_t id, std::string bytes);
Chunk Micros(uint32_t id, std::vector<Micro> values);

/// The root chunk.
Chunk Emitter(std::vector<Chunk> children);
Chunk Group(std::vector<Chunk> children);
Chunk Model(std::vector<Chunk> children);
/// What groups and models have in common, with a name and further variables and plugin chunks.
Chunk Block(std::string name, std::vector<Micro> variables = {}, std::vector<Chunk> plugins = {});
Chunk Layer(std::vector<Chunk> children);
/// A layer with a name and one plugin in each slot, by plugin id.
Chunk Layer(std::string name, int spawner, int transformer, int stomper, int visualizer,
            std::initializer_list<int> modifiers = {});
Chunk Attached_Model(std::string name, std::string animation, bool enabled);
/// A plugin in a chunk of the owner's id; each parameter is an id and a value in the form of the simple kinds.
Chunk Plugin(uint32_t chunk, int id, std::vector<Micro> parameters = {});
/// The chunk of a light, with the light's plugin in it.
Chunk Light(int id);

void Write_Chunk(ChunkFile::ChunkFileWriterClass &writer, const Chunk &chunk);
/// The bytes of a file with these chunks at the root level.
Bytes Build(std::vector<Chunk> roots, uint32_t mode = 0);
Bytes Build(Chunk root, uint32_t mode = 0);

/// Every mode of the writer: 16 binary ones and XML.
std::vector<uint32_t> All_Emitter_Modes();

} // namespace MKTest
