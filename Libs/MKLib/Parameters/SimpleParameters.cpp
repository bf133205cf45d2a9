#include "MKLib/Parameters/SimpleParameters.h"

#include "MKLib/Parameters/ParameterValues.h"

namespace
{

enum SimpleParameterChunkIDs : uint32_t // on disk: never renumber
{
    CHUNK_SIMPLE_PARAM_VARS = 0,
    VAR_SIMPLE_PARAM_VALUE = 0
};

template <typename T>
bool Load_Variables(ChunkFileReaderClass &reader, T &value)
{
    bool loaded = true;
    while (reader.Open_Micro_Chunk()) {
        if (reader.Cur_Micro_Chunk_ID() == VAR_SIMPLE_PARAM_VALUE) loaded &= ParameterValues::Read(reader, value);
        loaded &= reader.Close_Micro_Chunk();
    }
    return loaded;
}

} // namespace

template <typename T, ParameterType Type>
void SimpleParameterClass<T, Type>::Copy_From(const ParameterClass &other)
{
    if (!this->Is_Same_Type(other)) return;
    Value = static_cast<const SimpleParameterClass &>(other).Value;
}

template <typename T, ParameterType Type>
bool SimpleParameterClass<T, Type>::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("CHUNK_SIMPLE_PARAM_VARS", CHUNK_SIMPLE_PARAM_VARS);
    saved &= writer.Open_Micro_Chunk("VAR_SIMPLE_PARAM_VALUE", VAR_SIMPLE_PARAM_VALUE);
    saved &= ParameterValues::Write(writer, Value);
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Close_Chunk();
    return saved;
}

template <typename T, ParameterType Type>
bool SimpleParameterClass<T, Type>::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    this->Mark_Loaded();
    return ParameterValues::Read(reader, Value);
}

template <typename T, ParameterType Type>
bool SimpleParameterClass<T, Type>::Load_Chunked(ChunkFile::ChunkFileReaderClass &reader)
{
    this->Mark_Loaded();
    if (!ParameterValues::Is_Walkable(reader)) return false;
    bool loaded = true;
    while (reader.Open_Chunk()) {
        if (reader.Cur_Chunk_ID() == CHUNK_SIMPLE_PARAM_VARS) loaded &= Load_Variables(reader, Value);
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

template <typename T, ParameterType Type>
void RangedParameterClass<T, Type>::Copy_From(const ParameterClass &other)
{
    if (!this->Is_Same_Type(other, "(SimpleParameterClass<T, Ttype>::Get_Type() != other->Get_Type())")) return;
    this->Value = static_cast<const SimpleParameterClass<T, Type> &>(other).Get_Value();
}

template class SimpleParameterClass<bool, ParameterType::Boolean>;
template class SimpleParameterClass<RGBAClass, ParameterType::RGBA>;
template class SimpleParameterClass<Vector3, ParameterType::Vector3>;
template class SimpleParameterClass<int32_t, ParameterType::Integer>;
template class SimpleParameterClass<float, ParameterType::Float>;
template class SimpleParameterClass<Vector4, ParameterType::UV>;
template class SimpleParameterClass<uint32_t, ParameterType::Mask>;
template class RangedParameterClass<int32_t, ParameterType::Integer>;
template class RangedParameterClass<float, ParameterType::Float>;
