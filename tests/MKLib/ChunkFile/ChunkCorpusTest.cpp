#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace MKTest;
using namespace ChunkFile;

/// The seeds of the chunk reader's fuzz target: fuzz/corpus/chunk. A changed list is written anew by
/// MK_REMAKE_CORPUS=1 MKLibChunkFileTest --gtest_filter='ChunkCorpus.*'

namespace
{

struct Seed
{
    std::string name;
    Bytes bytes;
};

Bytes Of_Text(std::string_view text)
{
    return Bytes(text.begin(), text.end());
}

Bytes Content_Of(const Bytes &file)
{
    return Written(COMPRESSION_NONE, [&](ChunkFileWriterClass &writer) {
        MemoryReader reader(file);
        EXPECT_TRUE(reader->Is_Initialized());
        Copy(writer, *reader);
    });
}

std::vector<Seed> All_Seeds()
{
    std::vector<Seed> seeds;
    for (const ModeRow &mode : All_Modes()) {
        const auto write = mode.mode == COMPRESSION_XML ? Write_Sample_Tree : Write_All_Types;
        seeds.push_back({mode.what, Written(mode.mode, write)});
    }
    seeds.push_back({"xml-by-hand",
                     Of_Text("<ChunkFile><Header><UserData>1, -2</UserData></Header><Chunk Id=\"1\"><Int8>-1</Int8>"
                             "<Float>1.5e3</Float><Wstring>&#xe9;</Wstring><Bool>TRUE</Bool><BitStream>a5</BitStream>"
                             "<Pointer>ff</Pointer><Raw>00FF</Raw><Vector3i>1 2 3</Vector3i><MicroChunk Id=\"9\">"
                             "<String><![CDATA[<&]]></String></MicroChunk></Chunk></ChunkFile>")});
    seeds.push_back({"version-2.0", ByteList().Add(Header_Bytes(0, 0, 9, 0, 0, 0)).Word(5).Word(1).Raw({7}).Get()});
    seeds.push_back({"string-without-length", Plain_File(ByteList().Word(1).Word(5).Text("Smoke").Get())});
    seeds.push_back({"children-that-lie", Plain_File(ByteList().Word(1).Word(0xffffffff).Word(2).Word(0).Get())});
    return seeds;
}

} // namespace

TEST(ChunkCorpus, HoldsASmallFileOfEachKind)
{
    Reports reports;
    const std::filesystem::path folder = MK_CHUNK_CORPUS;
    const bool remakes = std::getenv("MK_REMAKE_CORPUS") != nullptr;
    for (const Seed &seed : All_Seeds()) {
        const std::string path = (folder / (seed.name + ".chunk")).string();
        if (remakes) Write_Whole_File(path, seed.bytes);
        const Bytes kept = Read_Whole_File(path);
        EXPECT_LT(kept.size(), 2048u) << seed.name;
        EXPECT_EQ(Content_Of(kept), Content_Of(seed.bytes)) << seed.name; // zlib's versions may differ in their bytes
    }
}
