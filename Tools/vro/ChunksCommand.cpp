#include "vro/Commands.h"

#include "vro/ChunkNames.h"
#include "vro/InputFile.h"
#include "vro/JsonText.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"

#include <cinttypes>
#include <cstdio>

namespace vro
{

namespace
{

/// Prints while it walks: a small file can hold a tree of any size, which must not be kept.
class TreePrinter
{
public:
    TreePrinter(ChunkFileReaderClass &reader, bool asJson) : Reader(reader), AsJson(asJson) {}

    void Print_Level(ChunkPlace place)
    {
        bool first = true;
        while (Reader.Open_Chunk()) {
            if (AsJson) std::printf(first ? "\n%*s" : ",\n%*s", Indent(), "");
            first = false;
            Print_Chunk(place);
            Reader.Close_Chunk();
        }
        if (AsJson && !first) std::printf("\n%*s", Indent() > 2 ? Indent() - 2 : 2, "");
    }

private:
    int Indent() const { return AsJson ? 2 + 2 * Reader.Cur_Chunk_Depth() : 2 * (Reader.Cur_Chunk_Depth() - 1); }

    void Print_Chunk(ChunkPlace place)
    {
        const uint32_t id = Reader.Cur_Chunk_ID();
        const ChunkName name = Find_Chunk_Name(place, id);
        if (AsJson)
            Print_Json_Head(id, name.Name);
        else
            Print_Line(id, name.Name);
        if (Reader.Contains_Chunks()) {
            if (AsJson) std::printf(", \"chunks\": [");
            Print_Level(name.Inside);
            if (AsJson) std::printf("]");
        } else if (name.HasMicroChunks) {
            Print_Micro_Chunks(name.Inside);
        }
        if (AsJson) std::printf(" }");
    }

    void Print_Json_Head(uint32_t id, const char *name)
    {
        std::printf("{ \"id\": %" PRIu32 ", \"name\": %s, \"depth\": %d, ", id, name ? Json(name).dump().c_str() : "null",
                    Reader.Cur_Chunk_Depth());
        std::printf(Reader.Contains_Chunks() ? "\"count\": %" PRIu32 : "\"size\": %" PRIu32, Reader.Cur_Chunk_Length());
    }

    void Print_Line(uint32_t id, const char *name)
    {
        const uint32_t length = Reader.Cur_Chunk_Length();
        std::printf("%*s0x%04" PRIx32 "%s%s  %" PRIu32 " %s%s\n", Indent(), "", id, name ? "  " : "", name ? name : "",
                    length, Reader.Contains_Chunks() ? "chunk" : "byte", length == 1 ? "" : "s");
    }

    void Print_Micro_Chunks(ChunkPlace place)
    {
        if (AsJson) std::printf(", \"micro_chunks\": [");
        for (bool first = true; Reader.Cur_Chunk_Remaining() > 0 && Reader.Open_Micro_Chunk(); first = false) {
            const uint32_t id = Reader.Cur_Micro_Chunk_ID();
            const uint32_t length = Reader.Cur_Micro_Chunk_Length();
            const char *name = Find_Micro_Chunk_Name(place, id);
            if (AsJson)
                std::printf("%s{ \"id\": %" PRIu32 ", \"name\": %s, \"size\": %" PRIu32 " }", first ? "" : ", ", id,
                            name ? Json(name).dump().c_str() : "null", length);
            else
                std::printf("%*smicro %" PRIu32 "%s%s  %" PRIu32 " byte%s\n", Indent() + 2, "", id, name ? "  " : "",
                            name ? name : "", length, length == 1 ? "" : "s");
            Reader.Close_Micro_Chunk();
        }
        if (AsJson) std::printf("]");
    }

    ChunkFileReaderClass &Reader;
    const bool AsJson;
};

const char *Compression_Name(uint8_t mode)
{
    switch (mode & ChunkFile::COMPRESSION_MASK) {
    case ChunkFile::COMPRESSION_NONE: return "binary";
    case ChunkFile::COMPRESSION_ZLIB: return "zlib";
    default: return "xml";
    }
}

} // namespace

int Run_Chunks(const std::string &file, bool asJson)
{
    std::string error;
    const auto input = InputFile::Open(file, error);
    if (!input) return Fail(file, error);
    ChunkFileReaderClass reader(&input->Get_File());
    if (!reader.Is_Initialized()) return Fail(file, "not a chunk file");

    const auto &header = reader.Get_Header();
    const uint8_t mode = header.Mode;
    if (asJson)
        std::printf("{ \"version\": \"%d.%d\", \"compression\": \"%s\", \"sectioned\": %s, \"validated\": %s, "
                    "\"swapped\": %s, \"user_data\": [%" PRIu32 ", %" PRIu32 "],\n  \"chunks\": [",
                    header.Major, header.Minor, Compression_Name(mode), mode & ChunkFile::MODE_SECTIONED ? "true" : "false",
                    mode & ChunkFile::MODE_VALIDATED ? "true" : "false",
                    mode & ChunkFile::MODE_SWAPPED ? "true" : "false", header.UserInt32[0], header.UserInt32[1]);
    else
        std::printf("version %d.%d, %s%s%s%s\n", header.Major, header.Minor, Compression_Name(mode),
                    mode & ChunkFile::MODE_SECTIONED ? ", sectioned" : "",
                    mode & ChunkFile::MODE_VALIDATED ? ", validated" : "", mode & ChunkFile::MODE_SWAPPED ? ", swapped" : "");
    TreePrinter(reader, asJson).Print_Level(ChunkPlace::File);
    if (asJson) std::printf("] }\n");
    return reader.Is_Damaged() ? Fail(file, "the chunk tree is damaged; what was read up to there is printed") : EXIT_WELL;
}

} // namespace vro
