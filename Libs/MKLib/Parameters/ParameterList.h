#pragma once

#include "MKLib/Parameters/ParameterStorage.h"
#include "MKLib/Parameters/ParametersFwd.h"
#include "MKLib/RefCount.h"

#include <span>
#include <string_view>
#include <vector>

class FileClass;

namespace ChunkFile
{
class ChunkFileReaderClass;
class ChunkFileWriterClass;
} // namespace ChunkFile

/// The parameters of one plugin, in the order in which its constructor added them, which is the order of saving.
class ParameterListClass
{
public:
    ParameterListClass();
    ParameterListClass(const ParameterListClass &) = delete;
    ParameterListClass &operator=(const ParameterListClass &) = delete;
    ~ParameterListClass();

    /// Appends and takes a reference; the owner sets the id right after. The named forms below do both.
    void Add_Parameter(ParameterClass *parameter);

    // Each makes a parameter, gives it its id and appends it; the list owns it, the pointer is for the plugin's own
    // use. Texts and labels must be static.
    BoolParameter *Add_Bool(int32_t id, const char *name, bool value, const char *description);
    IntParameter *Add_Int(int32_t id, const char *name, int32_t value, const char *description);
    RangedIntParameter *Add_Int(int32_t id, const char *name, int32_t value, int32_t minimum, int32_t maximum,
                                const char *description);
    FloatParameter *Add_Float(int32_t id, const char *name, float value, const char *description);
    RangedFloatParameter *Add_Float(int32_t id, const char *name, float value, float minimum, float maximum,
                                    const char *description);
    RGBAParameter *Add_RGBA(int32_t id, const char *name, const RGBAClass &value, const char *description);
    Vector3Parameter *Add_Vector3(int32_t id, const char *name, const Vector3 &value, const char *description);
    UVParameter *Add_UV(int32_t id, const char *name, const Vector4 &value, const char *description);
    MaskParameter *Add_Mask(int32_t id, const char *name, uint32_t value, const char *description);
    StringParameterClass *Add_String(int32_t id, const char *name, std::string_view value, const char *description);
    TextureNameParameterClass *Add_Texture(int32_t id, const char *name, std::string_view value,
                                           const char *description);
    ShaderNameParameterClass *Add_Shader(int32_t id, const char *name, std::string_view value, const char *description);
    EnumParameterClass *Add_Enum(int32_t id, const char *name, std::span<const char *const> labels, int32_t index,
                                 const char *description);
    KeyedRGBAParameter *Add_Keyed_RGBA(int32_t id, const char *name, const char *description);
    KeyedFloatParameterClass *Add_Keyed_Float(int32_t id, const char *name, const char *description);
    KeyedUVParameter *Add_Keyed_UV(int32_t id, const char *name, const char *description);
    ShapeParameterClass *Add_Shape(int32_t id, const char *name, int shapeType, const char *description);
    UVListParameterClass *Add_UV_List(int32_t id, const char *name, const char *description);

    int Get_Parameter_Count() const { return static_cast<int>(Parameters.size()); }
    /// Null for an index out of range.
    ParameterClass *Get_Parameter(int index) const;
    /// Index of the first parameter of that name, ignoring case, or -1.
    int Find_Parameter(std::string_view name) const;
    /// The first parameter with that id, or null.
    ParameterClass *Find_Parameter_By_ID(int32_t id) const;

    bool Save(ChunkFile::ChunkFileWriterClass *writer) const;
    /// Reads from the current chunk of the reader. Unknown ids are skipped; what the file lacks keeps its default.
    bool Load(ChunkFile::ChunkFileReaderClass *reader);

    /// By position; lists of another length assert and copy nothing.
    void Copy_From(const ParameterListClass &other);
    /// Each parameter of `other`, in order, goes to every parameter of this list with an equal name, ignoring case.
    void Copy_From_By_Name(const ParameterListClass &other);

    size_t Get_Memory_Usage() const;
    /// Bytes that the parameters which the list made take in its own storage.
    size_t Get_Storage_Size() const { return Storage.Get_Used(); }
    void Dump_Table(FileClass &file) const;

private:
    template <typename T, typename... Arguments> T *Append(int32_t id, const Arguments &...arguments);

    ParameterStorageClass Storage;
    std::vector<SmartPtr<ParameterClass>> Parameters;
};
