#pragma once

#include "MKLib/Parameters/CubicInterpolator.h"
#include "MKLib/Parameters/Parameter.h"

#include <vector>

/// A curve over time: keys in ascending time, kept as one flat array so that an evaluation is one binary search.
template <typename T, ParameterType Type>
class KeyedParameterClass : public ParameterClass
{
public:
    struct KeyStruct
    {
        float Time;
        T Value;
    };

    using ParameterClass::ParameterClass;

    void Copy_From(const ParameterClass &other) override;
    bool Is_Plain_Value() const override { return false; }
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    bool Load_Chunked(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return Type; }
    bool Is_Keyed() const override { return true; }
    size_t Get_Dynamic_Size() const override { return Keys.size() * sizeof(KeyStruct); }
    size_t Get_Object_Size() const override { return sizeof(*this); }

    virtual void Set_Spline(bool spline) { IsSpline = spline; }
    virtual bool Is_Spline() const { return IsSpline; }
    virtual void Clear_Keys() { Keys.clear(); }
    /// Inserts a key; a key of exactly that time stays as it was, and the new value is dropped.
    virtual void Add_Key(float time, const T &value);
    /// False for an index out of range.
    virtual bool Get_Key(int index, float &time, T &value) const;
    /// The curve at `time`: linear between keys, or eased with 3u^2 - 2u^3 when `smooth`; the end keys hold outside.
    /// Without keys `value` becomes the type's zero (opaque white for a colour; a rectangle stays as the caller gave
    /// it).
    virtual void Evaluate(float time, bool smooth, T &value) const;
    /// `Evaluate` at each of `count` times, to the bit; one call a block of particles. Allocates nothing, and the
    /// arrays don't overlap.
    virtual void Evaluate_Many(const float *times, int count, bool smooth, T *values) const;

    int Get_Key_Count() const { return static_cast<int>(Keys.size()); }
    const std::vector<KeyStruct> &Get_Keys() const { return Keys; }

protected:
    bool Load_Keys(ChunkFile::ChunkFileReaderClass &reader, uint32_t count);

    std::vector<KeyStruct> Keys;
    bool IsSpline = false;
};

extern template class KeyedParameterClass<RGBAClass, ParameterType::KeyedRGBA>;
extern template class KeyedParameterClass<float, ParameterType::KeyedFloat>;
extern template class KeyedParameterClass<Vector4, ParameterType::KeyedUV>;

/// The float curve, the only one with a spline path.
class KeyedFloatParameterClass final : public KeyedParameterClass<float, ParameterType::KeyedFloat>
{
public:
    using KeyedParameterClass::KeyedParameterClass;

    void Copy_From(const ParameterClass &other) override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    bool Load_Chunked(ChunkFile::ChunkFileReaderClass &reader) override;
    void Clear_Keys() override;
    /// A key of an equal time is dropped here, and its point still goes to the spline.
    void Add_Key(float time, const float &value) override;
    /// With the spline flag and more than two points the natural cubic spline, which `smooth` doesn't touch.
    void Evaluate(float time, bool smooth, float &value) const override;
    void Evaluate_Many(const float *times, int count, bool smooth, float *values) const override;
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    bool Uses_Spline() const { return IsSpline && Spline.Get_Point_Count() > 2; }
    /// Solves the spline where it is in use, so that the threads of a frame only read.
    void Prepare() const;

    CubicInterpolator Spline;
};
