#pragma once

#include "MKLib/Parameters/Parameter.h"

#include <span>

/// One of a fixed list of values. A file holds the index into the list, so the order of the entries is a file format.
/// A loaded index is kept as it stands, in the list or not: reading the value of one that isn't yields that of entry 0.
class EnumParameterClass final : public ParameterClass
{
public:
    /// Both arrays must be static and equally long; without `values` an entry's value is its index.
    EnumParameterClass(const char *name, const char *description, std::span<const char *const> labels, int32_t index,
                       const int32_t *values = nullptr)
        : ParameterClass(name, description), Labels(labels.data()), Values(values),
          Count(static_cast<int32_t>(labels.size())), Index(index)
    {
    }

    std::span<const char *const> Get_Labels() const { return {Labels, static_cast<size_t>(Count)}; }
    int32_t Get_Count() const { return Count; }

    int32_t Get_Index() const { return Index; }
    void Set_Index(int32_t index) { Index = index; }
    bool Is_Index_Valid() const { return Index >= 0 && Index < Count; }

    /// The value at the index.
    int32_t Get_Value() const;
    /// Selects the first entry of that value; without one the index stays.
    void Set_Value(int32_t value);

    void Copy_From(const ParameterClass &other) override;
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return ParameterType::Enumeration; }
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    int32_t Value_At(int32_t index) const { return Values ? Values[index] : index; }

    const char *const *Labels;
    const int32_t *Values;
    int32_t Count;
    int32_t Index;
};
