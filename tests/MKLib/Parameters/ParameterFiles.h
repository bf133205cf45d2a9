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
#include "common/EmitterBuilder.h"

#include <functional>
#include <utility>

/// Parameters through files in memory, for the tests of this room.
namespace MKTest
{

/// Binary, zlib, XML, and zlib that is sectioned, validated and swapped.
constexpr uint32_t EVERY_MODE[] = {0, 1, 2, 0x71};

/// The file that has one chunk, whose content `write` makes through a writer.
inline Bytes Chunk_File(uint32_t mode, std::function<void(ChunkFileWriterClass &)> write)
{
    return Build(Chunk{77, {}, std::move(write)}, mode);
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

} // namespace MKTest
