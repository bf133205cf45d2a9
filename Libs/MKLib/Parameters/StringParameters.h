#pragma once

#include "MKLib/MKString.h"
#include "MKLib/Parameters/Parameter.h"

/// A text. Its two children differ by kind alone, so that an editor can treat them as file names.
class StringParameterClass : public ParameterClass
{
public:
    StringParameterClass(const char *name, const char *description, std::string_view value)
        : ParameterClass(name, description), Value(value)
    {
    }

    const MK::String &Get_Value() const { return Value; }
    void Set_Value(std::string_view value) { Value.assign(value.data(), value.size()); }

    void Copy_From(const ParameterClass &other) override;
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return ParameterType::String; }
    size_t Get_Dynamic_Size() const override { return Value.capacity(); }
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    MK::String Value;
};

class TextureNameParameterClass final : public StringParameterClass
{
public:
    using StringParameterClass::StringParameterClass;
    ParameterType Get_Type() const override { return ParameterType::TextureName; }
};

class ShaderNameParameterClass final : public StringParameterClass
{
public:
    using StringParameterClass::StringParameterClass;
    ParameterType Get_Type() const override { return ParameterType::ShaderName; }
};
