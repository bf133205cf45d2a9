#pragma once

#include "MKLib/Parameters/Parameter.h"

#include <vector>

/// A list of texture rectangles (u, v, du, dv).
class UVListParameterClass final : public ParameterClass
{
public:
    using ParameterClass::ParameterClass;

    const std::vector<Vector4> &Get_Value() const { return Value; }
    void Set_Value(std::vector<Vector4> value) { Value = std::move(value); }

    void Copy_From(const ParameterClass &other) override;
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return ParameterType::UVList; }
    size_t Get_Dynamic_Size() const override { return Value.capacity() * sizeof(Vector4); }
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    std::vector<Vector4> Value;
};
