#pragma once

#include "MKLib/Parameters/ParametersFwd.h"
#include "MKLib/RefCount.h"

#include <cstddef>

class FileClass;

namespace ChunkFile
{
class ChunkFileReaderClass;
class ChunkFileWriterClass;
} // namespace ChunkFile

/// The name of a kind as the table dump and the effect JSON print it; null for values without a row.
const char *Get_Parameter_Type_Name(ParameterType type);

/// One named, typed, artist-visible value of a plugin. Definition only: written while loading and by the tool's user
/// interface on the main thread, read by worker threads. Owned by its list.
class ParameterClass : public RefCountClass
{
public:
    /// Both texts must be static: they are kept, never copied.
    ParameterClass(const char *name, const char *description) : Name(name), Description(description) {}

    const char *Get_Name() const { return Name; }
    const char *Get_Description() const { return Description; }

    /// The identity of the parameter in a file, unique within one plugin; -1 until the owner assigns it.
    int32_t Get_ID() const { return ID; }
    void Set_ID(int32_t id) { ID = id; }

    /// A parameter that is read and never written: a retired one of old files.
    bool Is_Save_Excluded() const { return SaveExcluded; }
    void Set_Save_Excluded(bool excluded) { SaveExcluded = excluded; }

    /// True once a load touched the parameter, whether or not it went well.
    bool Was_Loaded() const { return Loaded; }
    void Clear_Loaded() { Loaded = false; }

    /// Tells where in its list's storage the object lies.
    void Set_Storage_Place(uint16_t place) { StoragePlace = place; }
    void Delete_This() override;

    /// Takes the value of a parameter of the same kind; another kind asserts and copies nothing.
    virtual void Copy_From(const ParameterClass &other) = 0;
    /// True when the value stands directly in its chunk, false when that chunk holds sub-chunks.
    virtual bool Is_Plain_Value() const { return true; }
    virtual bool Save(ChunkFile::ChunkFileWriterClass &writer) const = 0;
    /// Reads a value that stands directly in the current chunk. A failed read leaves the field as it was.
    virtual bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader);
    /// Reads a value stored as sub-chunks.
    virtual bool Load_Chunked(ChunkFile::ChunkFileReaderClass &reader);
    /// Writes "|name|kind|description|\n".
    virtual void Dump_Table_Row(FileClass &file) const;
    virtual ParameterType Get_Type() const = 0;
    virtual bool Is_Keyed() const { return false; }
    /// Bytes held outside the object.
    virtual size_t Get_Dynamic_Size() const { return 0; }
    virtual size_t Get_Object_Size() const = 0;

protected:
    void Mark_Loaded() { Loaded = true; }
    /// Whether `other` is of this kind; asserts `text` when it isn't.
    bool Is_Same_Type(const ParameterClass &other, const char *text = "Get_Type() != other->Get_Type()") const;

private:
    int32_t ID = -1; // ahead of the pointers, where the count leaves room for it
    const char *Name;
    const char *Description;
    bool SaveExcluded : 1 = false;
    bool Loaded : 1 = false;
    uint16_t StoragePlace = 0; ///< 0 for an object of its own
};
