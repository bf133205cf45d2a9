#include "MKLib/Parameters/ShapeParameter.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/MKDebug/Logger.h"

#include <glm/geometric.hpp>

static MKDebug::Logger ParameterLog("ParameterLog");

namespace
{

enum ShapeParameterChunkIDs : uint32_t // on disk: never renumber
{
    CHUNK_SHAPE_WITHOUT_SPEEDS_AND_LOW_CAP = 0, ///< the extra floats 1 to 8
    CHUNK_SHAPE_WITHOUT_SPEEDS = 1,             ///< 0 to 8
    CHUNK_SHAPE = 2                             ///< all
};

/// Which extra floats a stored form holds.
struct ExtraRange
{
    int First;
    int Last;
};

constexpr ExtraRange RAW_FORM{1, 6};
constexpr ExtraRange CHUNK_FORMS[] = {{1, 8}, {0, 8}, {0, 10}};

} // namespace

ShapeParameterClass::ShapeParameterClass(const char *name, const char *description, ShapeTypeEnum type)
    : ParameterClass(name, description)
{
    Value.ShapeType = type;
    Update_Normal_Direction();
}

void ShapeParameterClass::Set_Value(const ShapeStruct &value)
{
    Value = value;
    Update_Normal_Direction();
    Prepare_Surface_Table();
}

void ShapeParameterClass::Copy_From(const ParameterClass &other)
{
    if (!Is_Same_Type(other)) return;
    const auto &shape = static_cast<const ShapeParameterClass &>(other);
    Value = shape.Value;
    NormalDirection = shape.NormalDirection;
    SurfaceTable = shape.SurfaceTable;
}

bool ShapeParameterClass::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("CHUNK_SHAPE", CHUNK_SHAPE);
    saved &= writer.Write_UInt32(Value.ShapeType);
    saved &= writer.Write_Vector3(Value.Center);
    saved &= writer.Write_Vector3(Value.Direction);
    for (const float field : {Value.A, Value.B, Value.C, Value.D}) saved &= writer.Write_Float(field);
    saved &= writer.Write_Vector3(Value.BoxMinimum);
    saved &= writer.Write_Vector3(Value.BoxMaximum);
    for (const float extra : Value.E) saved &= writer.Write_Float(extra);
    saved &= writer.Close_Chunk();
    return saved;
}

bool ShapeParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    Mark_Loaded();
    bool loaded = true;
    if (!reader.Contains_Chunks()) {
        loaded = Load_Fields(reader, RAW_FORM.First, RAW_FORM.Last);
    } else {
        while (reader.Open_Chunk()) {
            const uint32_t form = reader.Cur_Chunk_ID();
            if (form <= CHUNK_SHAPE) {
                loaded &= Load_Fields(reader, CHUNK_FORMS[form].First, CHUNK_FORMS[form].Last);
            } else {
                MK_LOG(ParameterLog, MKDebug::LogLevel::Warning,
                       "%s: shape \"%s\" in an unknown form %u was left alone", reader.Get_File_Name().c_str(),
                       Get_Name(), form);
            }
            loaded &= reader.Close_Chunk();
        }
    }
    Update_Normal_Direction();
    return loaded;
}

bool ShapeParameterClass::Load_Fields(ChunkFile::ChunkFileReaderClass &reader, int firstExtra, int lastExtra)
{
    // The first failure ends it: in a chunk that was cut short, what follows would be read into the wrong fields.
    for (int extra = 0; extra < firstExtra; ++extra) Value.E[extra] = 0.0f;
    bool loaded = reader.Read_UInt32(Value.ShapeType) && reader.Read_Vector3(Value.Center) &&
                  reader.Read_Vector3(Value.Direction) && reader.Read_Float(Value.A) && reader.Read_Float(Value.B) &&
                  reader.Read_Float(Value.C) && reader.Read_Float(Value.D) && reader.Read_Vector3(Value.BoxMinimum) &&
                  reader.Read_Vector3(Value.BoxMaximum);
    for (int extra = firstExtra; loaded && extra <= lastExtra; ++extra) loaded = reader.Read_Float(Value.E[extra]);
    return loaded;
}

void ShapeParameterClass::Update_Normal_Direction()
{
    const float length = glm::length(Value.Direction);
    NormalDirection = length > 0.0f ? Value.Direction / length : Vector3(0.0f);
}
