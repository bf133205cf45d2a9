#include "EffectTestFiles.h"

#include "common/Reports.h"

#include "MKLib/ChunkFile/ChunkTypes.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace MKTest;

/// Damaged and hostile files: a load ends, keeps within bounds, and what it made can be saved and loaded again.

namespace
{

/// A load of these bytes, whatever they are. What is made must survive its own save.
void Load_And_Save(const Bytes &file)
{
    const LoadedEmitter loaded = Load_Emitter(file);
    loaded->Set_Name("smoke"); // which a file that isn't an emitter doesn't give
    const Bytes saved = Save_Emitter(*loaded.emitter);
    const LoadedEmitter again = Load_Emitter(saved);
    EXPECT_TRUE(again.result);
    EXPECT_EQ(Save_Emitter(*again.emitter), saved);
}

TEST(DamagedEmitter, EveryPrefixLoadsOrFailsAndNoneCountsAsWhole)
{
    const Reports quiet;
    for (const uint32_t mode : {0u, 1u, 0x11u, 0x20u, 0x40u, 0x10u}) {
        SCOPED_TRACE(mode);
        const Bytes whole = Small_File(mode);
        for (size_t size = 0; size < whole.size(); ++size) {
            const Bytes prefix(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
            // zlib ends with a checksum that no chunk needs.
            if (!(mode & 1)) {
                EXPECT_FALSE(Load_Emitter(prefix).result) << size << " of " << whole.size();
            }
            Load_And_Save(prefix);
            if (HasFailure()) return;
        }
    }
}

TEST(DamagedEmitter, EverySingleBitFlippedLoadsOrFails)
{
    const Reports quiet;
    for (const uint32_t mode : {0u, 0x20u}) {
        Bytes file = Small_File(mode);
        for (size_t bit = 0; bit < file.size() * 8; ++bit) {
            file[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
            Load_And_Save(file);
            file[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
            ASSERT_FALSE(HasFailure()) << "mode " << mode << ", bit " << bit;
        }
    }
}

TEST(DamagedEmitter, LeavesWhereChunksBelongAndChunksWhereValuesBelongAreSurvived)
{
    const std::string junk(37, '\x7f');
    const Chunk files[] = {
        Bytes_Leaf(0x1500, junk),
        Emitter({Bytes_Leaf(0x1780, junk)}),
        Emitter({Group({Bytes_Leaf(0x1700, junk), Bytes_Leaf(0x1540, junk), Bytes_Leaf(0x16a0, junk)})}),
        Emitter({Group({Parent(0x1700, {Parent(0x1701, {Leaf(0, 1)}), Bytes_Leaf(0x1680, junk)})})}),
        Emitter({Group({Layer({Parent(0, {Leaf(0, 1)}), Bytes_Leaf(1, junk), Bytes_Leaf(5, junk)})})}),
        Emitter({Group({Layer({Parent(1, {Leaf(0, 34), Bytes_Leaf(1, junk)})})})}),
        Emitter({Group({Layer({Parent(1, {Leaf(0, 34), Parent(1, {Bytes_Leaf(0, junk)})})})})}),
        Emitter({Parent(0x1502, {Leaf(0, 1)}), Parent(1, {Leaf(0, 1)}), Bytes_Leaf(0x1520, junk),
                 Bytes_Leaf(0x1600, junk)}),
        Emitter({Bytes_Leaf(0x1800, junk), Model({Bytes_Leaf(0x1680, junk), Bytes_Leaf(0x16a0, junk)})}),
    };
    const Reports quiet;
    for (const Chunk &file : files) Load_And_Save(Build(file));
}

/// A kilobyte of zlib is a megabyte of layers, each of which would be hundreds of bytes with plugins of kilobytes.
TEST(DamagedEmitter, AFileOfNothingButChunkHeadersEndsAtTheLimit)
{
    const std::pair<const char *, Chunk> rows[] = {
        {"layers", Parent(0x1540, {})},
        {"spawners", Parent(0x1540, {Parent(1, {Leaf(0, 34)})})},
        {"attached models", Parent(0x16a0, {})},
        {"groups", Parent(0x1780, {})},
    };
    for (const auto &[what, chunk] : rows) {
        SCOPED_TRACE(what);
        const std::vector<Chunk> many(40000, chunk);
        const bool isGroup = chunk.id == 0x1780;
        const Bytes file = Build(isGroup ? Emitter(many) : Emitter({Group(many)}), ChunkFile::COMPRESSION_ZLIB);
        const Reports reports;
        const LoadedEmitter loaded = Load_Emitter(file);
        EXPECT_FALSE(loaded.result);
        EXPECT_EQ(reports.Count_Logs("more than 32768 renderables, layers and plugins"), 1);
        EXPECT_LE(loaded->Get_Particle_Renderable_Count(), 32768);
        EXPECT_LT(loaded->Get_Memory_Usage(true), 200u << 20);
    }
}

TEST(DamagedEmitter, TheSeedsOfTheFuzzerAreEmitters)
{
    const Reports quiet;
    int seeds = 0;
    for (const auto &entry : std::filesystem::directory_iterator(MK_EMITTER_CORPUS)) {
        SCOPED_TRACE(entry.path());
        const Bytes file = Read_Whole_File(entry.path());
        EXPECT_TRUE(Load_Emitter(file).result);
        EXPECT_GE(Load_Emitter(file)->Get_Particle_Renderable_Count(), 1);
        Load_And_Save(file);
        ++seeds;
    }
    EXPECT_GE(seeds, 9);
}

TEST(DamagedEmitter, AReportKeepsWithinItsLimit)
{
    const std::vector<Chunk> unknown(5000, Leaf(77, 1));
    const LoadedEmitter loaded = Load_Emitter(Build(Emitter(unknown)));
    EXPECT_EQ(loaded.findings.size(), LoadReport::Collector::MAX_FINDINGS);
    EXPECT_TRUE(loaded.result);
}

} // namespace
