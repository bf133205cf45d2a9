#include "MKLib/Parameters/StringParameters.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"

void StringParameterClass::Copy_From(const ParameterClass &other)
{
    if (!Is_Same_Type(other, "(other->Get_Type() != Get_Type())")) return;
    Value = static_cast<const StringParameterClass &>(other).Value;
}

bool StringParameterClass::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    return writer.Write_String(Value);
}

bool StringParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    Mark_Loaded();
    return reader.Read_String(Value);
}
