#pragma once

#include "MKLib/Parameters/Parameter.h"

/// A value of a plain type, with no check of any kind.
template <typename T, ParameterType Type>
class SimpleParameterClass : public ParameterClass
{
public:
    SimpleParameterClass(const char *name, const char *description, const T &value)
        : ParameterClass(name, description), Value(value)
    {
    }

    const T &Get_Value() const { return Value; }
    void Set_Value(const T &value) { Value = value; }

    void Copy_From(const ParameterClass &other) override;
    bool Is_Plain_Value() const override { return false; }
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    bool Load_Chunked(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return Type; }
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    T Value;
};

/// A simple value with a range. The range informs the user interface only: setting, copying and loading never clamp.
template <typename T, ParameterType Type>
class RangedParameterClass final : public SimpleParameterClass<T, Type>
{
public:
    RangedParameterClass(const char *name, const char *description, T value, T minimum, T maximum)
        : SimpleParameterClass<T, Type>(name, description, value), Minimum(minimum), Maximum(maximum)
    {
    }

    T Get_Minimum() const { return Minimum; }
    T Get_Maximum() const { return Maximum; }

    void Copy_From(const ParameterClass &other) override;
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    T Minimum;
    T Maximum;
};

// The kinds, instantiated in SimpleParameters.cpp.
extern template class SimpleParameterClass<bool, ParameterType::Boolean>;
extern template class SimpleParameterClass<RGBAClass, ParameterType::RGBA>;
extern template class SimpleParameterClass<Vector3, ParameterType::Vector3>;
extern template class SimpleParameterClass<int32_t, ParameterType::Integer>;
extern template class SimpleParameterClass<float, ParameterType::Float>;
extern template class SimpleParameterClass<Vector4, ParameterType::UV>;
extern template class SimpleParameterClass<uint32_t, ParameterType::Mask>;
extern template class RangedParameterClass<int32_t, ParameterType::Integer>;
extern template class RangedParameterClass<float, ParameterType::Float>;
