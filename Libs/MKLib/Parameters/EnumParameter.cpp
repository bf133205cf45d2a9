#include "MKLib/Parameters/EnumParameter.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"

int32_t EnumParameterClass::Get_Value() const
{
    if (Count == 0) return 0;
    return Value_At(Is_Index_Valid() ? Index : 0);
}

void EnumParameterClass::Set_Value(int32_t value)
{
    for (int32_t index = 0; index < Count; ++index) {
        if (Value_At(index) != value) continue;
        Index = index;
        return;
    }
}

void EnumParameterClass::Copy_From(const ParameterClass &other)
{
    if (!Is_Same_Type(other)) return;
    Index = static_cast<const EnumParameterClass &>(other).Index;
}

bool EnumParameterClass::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    return writer.Write_Int32(Index);
}

bool EnumParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    Mark_Loaded();
    return reader.Read_Int32(Index);
}
