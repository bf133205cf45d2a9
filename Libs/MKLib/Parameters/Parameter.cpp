#include "MKLib/Parameters/Parameter.h"

#include "MKLib/File/File.h"
#include "MKLib/MKString.h"
#include "MKLib/Parameters/ParameterStorage.h"

const char *Get_Parameter_Type_Name(ParameterType type)
{
    switch (type) {
    case ParameterType::Boolean: return "Boolean";
    case ParameterType::RGBA: return "RGBA";
    case ParameterType::Vector3: return "Vector3";
    case ParameterType::Integer: return "Integer";
    case ParameterType::Float: return "Float";
    case ParameterType::String: return "String";
    case ParameterType::KeyedBoolean: return "Keyed Boolean";
    case ParameterType::KeyedRGBA: return "Keyed RGBA";
    case ParameterType::KeyedVector3: return "Keyed Vector3";
    case ParameterType::KeyedInteger: return "Keyed Integer";
    case ParameterType::KeyedFloat: return "Keyed Float";
    case ParameterType::TextureName: return "Texture Name";
    case ParameterType::ShaderName: return "Shader Name";
    case ParameterType::UV: return "UV and dUV";
    case ParameterType::KeyedUV: return "Keyed UV and dUV";
    case ParameterType::Shape: return "Shape";
    case ParameterType::Enumeration: return "Enumeration";
    case ParameterType::UVList: return "UV List";
    case ParameterType::Mask: return "Mask";
    }
    return nullptr;
}

void ParameterClass::Delete_This()
{
    const uint16_t place = StoragePlace;
    if (place == 0) {
        delete this;
        return;
    }
    this->~ParameterClass();
    ParameterStorageClass::End_Object(this, place);
}

bool ParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &)
{
    Mark_Loaded();
    return false;
}

bool ParameterClass::Load_Chunked(ChunkFile::ChunkFileReaderClass &)
{
    Mark_Loaded();
    return false;
}

void ParameterClass::Dump_Table_Row(FileClass &file) const
{
    const char *kind = Get_Parameter_Type_Name(Get_Type());
    MK::String row;
    for (const char *cell : {Name, kind ? kind : "", Description}) row.append("|").append(cell);
    row += "|\n";
    file.Write(row.data(), static_cast<int64_t>(row.size()));
}

bool ParameterClass::Is_Same_Type(const ParameterClass &other, const char *text) const
{
    return MK_VERIFY(Get_Type() == other.Get_Type(), text);
}
