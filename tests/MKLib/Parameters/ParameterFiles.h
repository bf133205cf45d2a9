#pragma once

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/RAMFile.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterList.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include <cstdint>
#include <string_view>
#include <vector>

/// Parameters through files in memory, for the tests of this room.
namespace MKTest
{

using Bytes = std::vector<uint8_t>;

struct ModeRow
{
    const char *what;
    uint32_t mode;
};

constexpr ModeRow EveryMode[] = {
    {"binary", 0},
    {"zlib", 1},
    {"XML", 2},
    {"sectioned", 0x10},
    {"validated", 0x20},
    {"swapped", 0x40},
    {"zlib and sectioned, validated, swapped", 0x71},
};

/// The file that has one chunk, whose content `write` makes through a writer.
template <typename Write>
Bytes Chunk_File(uint32_t mode, Write &&write)
{
    RAMFileClass file;
    {
        ChunkFileWriterClass writer(&file, mode, 6, false);
        writer.Open_Chunk(77);
        write(writer);
        writer.Close_Chunk();
        writer.Close();
    }
    const auto size = static_cast<size_t>(file.Get_Size());
    return {file.Get_Buffer(), file.Get_Buffer() + size};
}

/// Calls `read` with a reader inside the one chunk of such a file; false when there is no chunk.
template <typename Read>
bool Read_Chunk_File(const Bytes &bytes, Read &&read)
{
    RAMFileClass file(bytes.data(), static_cast<int64_t>(bytes.size()));
    file.Open(MKPlatform::FILE_OPEN_GENERIC_READ);
    ChunkFileReaderClass reader(&file);
    if (!reader.Open_Chunk()) return false;
    const bool result = read(reader);
    return reader.Close_Chunk() && result;
}

inline Bytes Save_List(const ParameterListClass &list, uint32_t mode, bool *saved = nullptr)
{
    return Chunk_File(mode, [&](ChunkFileWriterClass &writer) {
        const bool result = list.Save(&writer);
        if (saved) *saved = result;
    });
}

inline bool Load_List(ParameterListClass &list, const Bytes &bytes)
{
    return Read_Chunk_File(bytes, [&](ChunkFileReaderClass &reader) { return list.Load(&reader); });
}

/// Writes one pair of a list: the id, and a value in chunk `form` (1 plain, 2 as sub-chunks).
template <typename Write>
void Write_Pair(ChunkFileWriterClass &writer, int32_t id, uint32_t form, Write &&write)
{
    writer.Open_Chunk(0);
    writer.Write_Int32(id);
    writer.Close_Chunk();
    writer.Open_Chunk(form);
    write(writer);
    writer.Close_Chunk();
}

} // namespace MKTest
