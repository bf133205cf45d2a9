#include "MKLib/Parameters/ParameterList.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/LoadReport.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ParameterValues.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include <algorithm>
#include <new>
#include <string>

namespace
{

enum ParameterListChunkIDs : uint32_t // on disk: never renumber
{
    CHUNK_PARAM_ID = 0,
    CHUNK_PARAM_PLAIN_VALUE = 1,
    CHUNK_PARAM_CHUNKED_VALUE = 2
};

/// What a slot counts in `Get_Memory_Usage`, whatever a pointer measures here.
constexpr size_t REPORTED_SLOT_BYTES = 4;

/// Finds parameters by id while a list loads. A file has them in the order of the list as a rule, so that the place
/// behind the last match is asked first; where ids aren't unique the first one must win, and the search starts over.
class IDFinder
{
public:
    explicit IDFinder(const std::vector<SmartPtr<ParameterClass>> &parameters) : Parameters(parameters)
    {
        IDs.reserve(parameters.size());
        for (const auto &parameter : parameters) {
            const int32_t id = parameter->Get_ID();
            AreAscending = AreAscending && (IDs.empty() || IDs.back() < id);
            IDs.push_back(id);
        }
    }

    ParameterClass *Find(int32_t id)
    {
        size_t place = Next;
        if (!AreAscending || place >= IDs.size() || IDs[place] != id)
            place = static_cast<size_t>(std::find(IDs.begin(), IDs.end(), id) - IDs.begin());
        if (place == IDs.size()) return nullptr;
        Next = place + 1;
        return Parameters[place].Get();
    }

private:
    const std::vector<SmartPtr<ParameterClass>> &Parameters;
    std::vector<int32_t> IDs;
    size_t Next = 0;
    bool AreAscending = true;
};

bool Load_Value(ChunkFileReaderClass &reader, int32_t id, ParameterClass *parameter, bool isPlain)
{
    const bool loaded = !parameter || (isPlain ? parameter->Load_Plain(reader) : parameter->Load_Chunked(reader));
    if (!LoadReport::Is_Wanted()) return loaded;
    if (!parameter)
        LoadReport::Add("unknown parameter " + std::to_string(id), "dropped");
    else if (!loaded)
        LoadReport::Add(std::string("unreadable value of \"") + parameter->Get_Name() + "\"", "keeps its value");
    else if (parameter->Is_Save_Excluded())
        LoadReport::Add(std::string("retired parameter \"") + parameter->Get_Name() + "\"",
                        "folded into today's parameters, and not saved");
    return loaded;
}

bool Save_Parameter(ChunkFileWriterClass &writer, const ParameterClass &parameter)
{
    bool saved = writer.Open_Chunk(CHUNK_PARAM_ID);
    saved &= writer.Write_Int32(parameter.Get_ID());
    saved &= writer.Close_Chunk();
    saved &= writer.Open_Chunk(parameter.Is_Plain_Value() ? CHUNK_PARAM_PLAIN_VALUE : CHUNK_PARAM_CHUNKED_VALUE);
    saved &= parameter.Save(writer);
    saved &= writer.Close_Chunk();
    return saved;
}

/// A static name against a text, ignoring case, without measuring the name first.
bool Is_Name(const char *name, std::string_view text)
{
    for (const char letter : text)
        if (*name == '\0' || MK::Lower(*name++) != MK::Lower(letter)) return false;
    return *name == '\0';
}

} // namespace

ParameterListClass::ParameterListClass()
{
    const auto expected = ExpectedParameters::Take();
    if (expected.Count == 0) return;
    Parameters.reserve(expected.Count);
    Storage.Expect(expected.Bytes);
}

ParameterListClass::~ParameterListClass() = default;

void ParameterListClass::Add_Parameter(ParameterClass *parameter)
{
    if (MK_VERIFY(parameter != nullptr, "parameter != NULL")) Parameters.emplace_back(parameter);
}

template <typename T, typename... Arguments>
T *ParameterListClass::Append(int32_t id, const Arguments &...arguments)
{
    static_assert(alignof(T) <= ParameterStorageClass::ALIGNMENT);
    uint16_t place = 0;
    T *parameter = new (Storage.Allocate(sizeof(T), place)) T(arguments...);
    parameter->Set_Storage_Place(place);
    parameter->Set_ID(id);
    Parameters.push_back(SmartPtr<ParameterClass>::Of_Fresh(parameter));
    return parameter;
}

BoolParameter *ParameterListClass::Add_Bool(int32_t id, const char *name, bool value, const char *description)
{
    return Append<BoolParameter>(id, name, description, value);
}

IntParameter *ParameterListClass::Add_Int(int32_t id, const char *name, int32_t value, const char *description)
{
    return Append<IntParameter>(id, name, description, value);
}

RangedIntParameter *ParameterListClass::Add_Int(int32_t id, const char *name, int32_t value, int32_t minimum,
                                                int32_t maximum, const char *description)
{
    return Append<RangedIntParameter>(id, name, description, value, minimum, maximum);
}

FloatParameter *ParameterListClass::Add_Float(int32_t id, const char *name, float value, const char *description)
{
    return Append<FloatParameter>(id, name, description, value);
}

RangedFloatParameter *ParameterListClass::Add_Float(int32_t id, const char *name, float value, float minimum,
                                                    float maximum, const char *description)
{
    return Append<RangedFloatParameter>(id, name, description, value, minimum, maximum);
}

RGBAParameter *ParameterListClass::Add_RGBA(int32_t id, const char *name, const RGBAClass &value,
                                            const char *description)
{
    return Append<RGBAParameter>(id, name, description, value);
}

Vector3Parameter *ParameterListClass::Add_Vector3(int32_t id, const char *name, const Vector3 &value,
                                                  const char *description)
{
    return Append<Vector3Parameter>(id, name, description, value);
}

UVParameter *ParameterListClass::Add_UV(int32_t id, const char *name, const Vector4 &value, const char *description)
{
    return Append<UVParameter>(id, name, description, value);
}

MaskParameter *ParameterListClass::Add_Mask(int32_t id, const char *name, uint32_t value, const char *description)
{
    return Append<MaskParameter>(id, name, description, value);
}

StringParameterClass *ParameterListClass::Add_String(int32_t id, const char *name, std::string_view value,
                                                     const char *description)
{
    return Append<StringParameterClass>(id, name, description, value);
}

TextureNameParameterClass *ParameterListClass::Add_Texture(int32_t id, const char *name, std::string_view value,
                                                           const char *description)
{
    return Append<TextureNameParameterClass>(id, name, description, value);
}

ShaderNameParameterClass *ParameterListClass::Add_Shader(int32_t id, const char *name, std::string_view value,
                                                         const char *description)
{
    return Append<ShaderNameParameterClass>(id, name, description, value);
}

EnumParameterClass *ParameterListClass::Add_Enum(int32_t id, const char *name, std::span<const char *const> labels,
                                                 int32_t index, const char *description)
{
    return Append<EnumParameterClass>(id, name, description, labels, index);
}

KeyedRGBAParameter *ParameterListClass::Add_Keyed_RGBA(int32_t id, const char *name, const char *description)
{
    return Append<KeyedRGBAParameter>(id, name, description);
}

KeyedFloatParameterClass *ParameterListClass::Add_Keyed_Float(int32_t id, const char *name, const char *description)
{
    return Append<KeyedFloatParameterClass>(id, name, description);
}

KeyedUVParameter *ParameterListClass::Add_Keyed_UV(int32_t id, const char *name, const char *description)
{
    return Append<KeyedUVParameter>(id, name, description);
}

ShapeParameterClass *ParameterListClass::Add_Shape(int32_t id, const char *name, int shapeType, const char *description)
{
    return Append<ShapeParameterClass>(id, name, description, static_cast<ShapeTypeEnum>(shapeType));
}

UVListParameterClass *ParameterListClass::Add_UV_List(int32_t id, const char *name, const char *description)
{
    return Append<UVListParameterClass>(id, name, description);
}

ParameterClass *ParameterListClass::Get_Parameter(int index) const
{
    if (index < 0 || index >= Get_Parameter_Count()) return nullptr;
    return Parameters[static_cast<size_t>(index)].Get();
}

int ParameterListClass::Find_Parameter(std::string_view name) const
{
    const auto found = std::find_if(Parameters.begin(), Parameters.end(),
                                    [name](const auto &parameter) { return Is_Name(parameter->Get_Name(), name); });
    return found == Parameters.end() ? -1 : static_cast<int>(found - Parameters.begin());
}

ParameterClass *ParameterListClass::Find_Parameter_By_ID(int32_t id) const
{
    const auto found = std::find_if(Parameters.begin(), Parameters.end(),
                                    [id](const auto &parameter) { return parameter->Get_ID() == id; });
    return found == Parameters.end() ? nullptr : found->Get();
}

bool ParameterListClass::Save(ChunkFile::ChunkFileWriterClass *writer) const
{
    if (!MK_VERIFY(writer != nullptr, "writer != NULL")) return false;
    bool saved = true;
    for (const auto &parameter : Parameters) {
        if (parameter->Is_Save_Excluded()) continue;
        if (!MK_VERIFY(parameter->Get_ID() != -1, "cid == -1")) return false;
        saved &= Save_Parameter(*writer, *parameter);
    }
    return saved;
}

bool ParameterListClass::Load(ChunkFile::ChunkFileReaderClass *reader)
{
    if (!MK_VERIFY(reader != nullptr, "reader != NULL")) return false;
    if (reader->Cur_Chunk_Depth() > 0 && !ParameterValues::Is_Walkable(*reader)) return false;
    IDFinder finder(Parameters);
    int32_t id = -1;
    bool loaded = true;
    while (reader->Open_Chunk()) {
        const uint32_t chunk = reader->Cur_Chunk_ID();
        switch (chunk) {
        case CHUNK_PARAM_ID: loaded &= reader->Read_Int32(id); break;
        case CHUNK_PARAM_PLAIN_VALUE: loaded &= Load_Value(*reader, id, finder.Find(id), true); break;
        case CHUNK_PARAM_CHUNKED_VALUE: loaded &= Load_Value(*reader, id, finder.Find(id), false); break;
        }
        loaded &= reader->Close_Chunk();
        if (chunk <= CHUNK_PARAM_CHUNKED_VALUE) continue;
        if (LoadReport::Is_Wanted())
            LoadReport::Add("unknown chunk " + std::to_string(chunk) + " among parameters",
                            "ends them: what follows in them is dropped");
        return false;
    }
    return loaded;
}

void ParameterListClass::Copy_From(const ParameterListClass &other)
{
    if (!MK_VERIFY(Parameters.size() == other.Parameters.size(), "Parameters.size() != count")) return;
    for (size_t index = 0; index < Parameters.size(); ++index) Parameters[index]->Copy_From(*other.Parameters[index]);
}

void ParameterListClass::Copy_From_By_Name(const ParameterListClass &other)
{
    for (const auto &source : other.Parameters) {
        const std::string_view name = source->Get_Name();
        for (const auto &parameter : Parameters)
            if (Is_Name(parameter->Get_Name(), name)) parameter->Copy_From(*source);
    }
}

size_t ParameterListClass::Get_Memory_Usage() const
{
    size_t bytes = Parameters.capacity() * REPORTED_SLOT_BYTES;
    for (const auto &parameter : Parameters) bytes += parameter->Get_Object_Size() + parameter->Get_Dynamic_Size();
    return bytes;
}

void ParameterListClass::Dump_Table(FileClass &file) const
{
    constexpr std::string_view HEADING = "|Parameter Name|Parameter Type|Parameter Description|\n";
    file.Write(HEADING.data(), static_cast<int64_t>(HEADING.size()));
    for (const auto &parameter : Parameters) parameter->Dump_Table_Row(file);
}
