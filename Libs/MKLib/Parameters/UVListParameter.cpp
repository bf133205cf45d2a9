#include "MKLib/Parameters/UVListParameter.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/Parameters/ParameterValues.h"

#include <algorithm>

static MKDebug::Logger ParameterLog("ParameterLog");

void UVListParameterClass::Copy_From(const ParameterClass &other)
{
    if (!Is_Same_Type(other)) return;
    Value = static_cast<const UVListParameterClass &>(other).Value;
}

bool UVListParameterClass::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Write_UInt32(static_cast<uint32_t>(Value.size()));
    for (const Vector4 &rectangle : Value) saved &= writer.Write_Vector4(rectangle);
    return saved;
}

bool UVListParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    Mark_Loaded();
    uint32_t count = 0;
    if (!reader.Read_UInt32(count)) return false;
    if (count > reader.Cur_Chunk_Remaining() / sizeof(Vector4)) {
        MK_LOG(ParameterLog, MKDebug::LogLevel::Warning, "%s: \"%s\" has %u rectangles in %u bytes",
               reader.Get_File_Name().c_str(), Get_Name(), count, reader.Cur_Chunk_Remaining());
        return false;
    }
    Value.clear();
    Value.reserve(std::min(count, ParameterValues::MAX_UNREAD_ENTRIES));
    for (Vector4 rectangle{0.0f}; Value.size() < count; Value.push_back(rectangle))
        if (!reader.Read_Vector4(rectangle)) return false;
    return true;
}
