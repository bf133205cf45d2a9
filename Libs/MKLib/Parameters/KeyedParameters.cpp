#include "MKLib/Parameters/KeyedParameters.h"

#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MKMath/Simd.h"
#include "MKLib/Parameters/KeySearch.h"
#include "MKLib/Parameters/ParameterValues.h"

#include <algorithm>
#include <cmath>

static MKDebug::Logger ParameterLog("ParameterLog");

namespace
{

enum KeyedParameterChunkIDs : uint32_t // on disk: never renumber
{
    CHUNK_KEYED_PARAM_VARS = 0,
    CHUNK_KEYED_PARAM_KEYS = 1,
    VAR_KEYED_PARAM_KEY_COUNT = 0,
    VAR_KEYED_PARAM_IS_SPLINE = 1
};

constexpr float SHORTEST_SPAN = 0.0001f; ///< keys nearer than this make a step

void Set_Without_Keys(float &value)
{
    value = 0.0f;
}
void Set_Without_Keys(RGBAClass &value)
{
    value = RGBAClass();
}
void Set_Without_Keys(Vector4 &)
{
}

MK_INLINE float Between(float from, float to, float fraction)
{
    return from + fraction * (to - from);
}
MK_INLINE Vector4 Between(const Vector4 &from, const Vector4 &to, float fraction)
{
    return from + fraction * (to - from);
}
MK_INLINE RGBAClass Between(const RGBAClass &from, const RGBAClass &to, float fraction)
{
    return Lerp(from, to, fraction);
}

// Selects in place of jumps: what isn't selected may be a NaN.
MK_INLINE float Linear_Fraction(float time, float begin, float end)
{
    const float fraction = (time - begin) / (end - begin);
    const float raised = fraction > 0.0f ? fraction : 0.0f;
    return raised < 1.0f ? raised : 1.0f;
}

MK_INLINE float Smooth_Fraction(float time, float begin, float end)
{
    const float u = (time - begin) / (end - begin);
    const float eased = (3.0f - 2.0f * u) * u * u;
    const float ended = time >= end ? 1.0f : eased;
    return time <= begin ? 0.0f : ended;
}

template <bool Smooth>
MK_INLINE float Fraction(float time, float begin, float end)
{
    return Smooth ? Smooth_Fraction(time, begin, end) : Linear_Fraction(time, begin, end);
}

/// Whether the curve stays at the earlier of two neighbours until the later one.
MK_INLINE bool Is_Step(float begin, float end)
{
    return std::fabs(end - begin) <= SHORTEST_SPAN;
}

/// The values at times of which each has `places` keys at or below it.
template <bool Smooth, typename Key, typename T>
MK_SIMD void Blend(const Key *__restrict keys, int keyCount, const float *__restrict times, int count,
                   const int *__restrict places, T *__restrict values)
{
    for (int i = 0; i < count; ++i) {
        const int low = places[i] > 0 ? places[i] - 1 : 0;
        const int high = places[i] < keyCount ? places[i] : keyCount - 1;
        const float begin = keys[low].Time;
        const float end = keys[high].Time;
        const T from = keys[low].Value;
        const T between = Between(from, keys[high].Value, Fraction<Smooth>(times[i], begin, end));
        const bool isStep = Is_Step(begin, end);
        values[i] = isStep || low == high ? from : between;
    }
}

/// By time, so that each key goes to the end of those before it: a long curve in another order would take hours. Of
/// equal times the first in the file stays first. A first time that is no number equals all others and keeps them out.
template <typename KeyStruct>
void Sort_For_Adding(std::vector<KeyStruct> &keys)
{
    if (keys.empty() || std::isnan(keys.front().Time)) return;
    const auto numbersEnd =
        std::stable_partition(keys.begin(), keys.end(), [](const KeyStruct &key) { return !std::isnan(key.Time); });
    std::stable_sort(keys.begin(), numbersEnd,
                     [](const KeyStruct &left, const KeyStruct &right) { return left.Time < right.Time; });
}

bool Load_Variables(ChunkFileReaderClass &reader, uint32_t &keyCount, bool &isSpline)
{
    bool loaded = true;
    while (reader.Open_Micro_Chunk()) {
        switch (reader.Cur_Micro_Chunk_ID()) {
        case VAR_KEYED_PARAM_KEY_COUNT: loaded &= reader.Read_UInt32(keyCount); break;
        case VAR_KEYED_PARAM_IS_SPLINE: loaded &= reader.Read_Bool(isSpline); break;
        }
        loaded &= reader.Close_Micro_Chunk();
    }
    return loaded;
}

} // namespace

template <typename T, ParameterType Type>
void KeyedParameterClass<T, Type>::Copy_From(const ParameterClass &other)
{
    if (!this->Is_Same_Type(other)) return;
    const auto &curve = static_cast<const KeyedParameterClass &>(other);
    Keys = curve.Keys;
    IsSpline = curve.IsSpline;
}

template <typename T, ParameterType Type>
bool KeyedParameterClass<T, Type>::Save(ChunkFile::ChunkFileWriterClass &writer) const
{
    bool saved = writer.Open_Chunk("CHUNK_KEYED_PARAM_VARS", CHUNK_KEYED_PARAM_VARS);
    saved &= writer.Open_Micro_Chunk("VAR_KEYED_PARAM_KEY_COUNT", VAR_KEYED_PARAM_KEY_COUNT);
    saved &= writer.Write_UInt32(static_cast<uint32_t>(Keys.size()));
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Open_Micro_Chunk("VAR_KEYED_PARAM_IS_SPLINE", VAR_KEYED_PARAM_IS_SPLINE);
    saved &= writer.Write_Bool(IsSpline);
    saved &= writer.Close_Micro_Chunk();
    saved &= writer.Close_Chunk();

    saved &= writer.Open_Chunk("CHUNK_KEYED_PARAM_KEYS", CHUNK_KEYED_PARAM_KEYS);
    for (const KeyStruct &key : Keys) {
        saved &= writer.Write_Float(key.Time);
        saved &= ParameterValues::Write(writer, key.Value);
    }
    saved &= writer.Close_Chunk();
    return saved;
}

template <typename T, ParameterType Type>
bool KeyedParameterClass<T, Type>::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    this->Mark_Loaded();
    uint32_t count = 0;
    return reader.Read_UInt32(count) && Load_Keys(reader, count);
}

template <typename T, ParameterType Type>
bool KeyedParameterClass<T, Type>::Load_Chunked(ChunkFile::ChunkFileReaderClass &reader)
{
    this->Mark_Loaded();
    if (!ParameterValues::Is_Walkable(reader)) return false;
    uint32_t count = 0;
    bool loaded = true;
    while (reader.Open_Chunk()) {
        switch (reader.Cur_Chunk_ID()) {
        case CHUNK_KEYED_PARAM_VARS: loaded &= Load_Variables(reader, count, IsSpline); break;
        case CHUNK_KEYED_PARAM_KEYS: loaded &= Load_Keys(reader, count); break;
        }
        loaded &= reader.Close_Chunk();
    }
    return loaded;
}

template <typename T, ParameterType Type>
bool KeyedParameterClass<T, Type>::Load_Keys(ChunkFile::ChunkFileReaderClass &reader, uint32_t count)
{
    if (count > reader.Cur_Chunk_Remaining() / sizeof(KeyStruct)) {
        MK_LOG(ParameterLog, MKDebug::LogLevel::Warning, "%s: curve \"%s\" has %u keys in %u bytes",
               reader.Get_File_Name().c_str(), this->Get_Name(), count, reader.Cur_Chunk_Remaining());
        return false;
    }
    std::vector<KeyStruct> read;
    read.reserve(std::min(count, ParameterValues::MAX_UNREAD_ENTRIES));
    KeyStruct next{};
    while (read.size() < count && reader.Read_Float(next.Time) && ParameterValues::Read(reader, next.Value))
        read.push_back(next);
    Sort_For_Adding(read);
    Clear_Keys();
    Keys.reserve(read.size());
    for (const KeyStruct &key : read) Add_Key(key.Time, key.Value);
    return read.size() == count;
}

template <typename T, ParameterType Type>
void KeyedParameterClass<T, Type>::Add_Key(float time, const T &value)
{
    const auto place = std::lower_bound(Keys.begin(), Keys.end(), time,
                                        [](const KeyStruct &key, float wanted) { return key.Time < wanted; });
    // Asked this way round, a time that is no number equals any other, and so never breaks the order of the rest.
    if (place != Keys.end() && !(time < place->Time)) return;
    Keys.insert(place, KeyStruct{time, value});
}

template <typename T, ParameterType Type>
bool KeyedParameterClass<T, Type>::Get_Key(int index, float &time, T &value) const
{
    if (index < 0 || index >= Get_Key_Count()) return false;
    time = Keys[static_cast<size_t>(index)].Time;
    value = Keys[static_cast<size_t>(index)].Value;
    return true;
}

template <typename T, ParameterType Type>
void KeyedParameterClass<T, Type>::Evaluate(float time, bool smooth, T &value) const
{
    if (Keys.empty()) return Set_Without_Keys(value);
    const auto upper = std::upper_bound(Keys.begin(), Keys.end(), time,
                                        [](float wanted, const KeyStruct &key) { return wanted < key.Time; });
    if (upper == Keys.begin()) {
        value = upper->Value;
        return;
    }
    const KeyStruct &low = *(upper - 1);
    if (upper == Keys.end() || Is_Step(low.Time, upper->Time)) {
        value = low.Value;
        return;
    }
    const float fraction =
        smooth ? Fraction<true>(time, low.Time, upper->Time) : Fraction<false>(time, low.Time, upper->Time);
    value = Between(low.Value, upper->Value, fraction);
}

template <typename T, ParameterType Type>
void KeyedParameterClass<T, Type>::Evaluate_Many(const float *times, int count, bool smooth, T *values) const
{
    if (Keys.empty()) {
        for (int i = 0; i < count; ++i) Set_Without_Keys(values[i]);
        return;
    }
    int places[KeySearch::BLOCK];
    for (int first = 0; first < count; first += KeySearch::BLOCK) {
        const int size = std::min(count - first, KeySearch::BLOCK);
        KeySearch::Find_Places<&KeyStruct::Time>(Keys.data(), Get_Key_Count(), times + first, size, places);
        if (smooth)
            Blend<true>(Keys.data(), Get_Key_Count(), times + first, size, places, values + first);
        else
            Blend<false>(Keys.data(), Get_Key_Count(), times + first, size, places, values + first);
    }
}

template class KeyedParameterClass<RGBAClass, ParameterType::KeyedRGBA>;
template class KeyedParameterClass<float, ParameterType::KeyedFloat>;
template class KeyedParameterClass<Vector4, ParameterType::KeyedUV>;

void KeyedFloatParameterClass::Copy_From(const ParameterClass &other)
{
    KeyedParameterClass::Copy_From(other);
    const auto *curve = dynamic_cast<const KeyedFloatParameterClass *>(&other);
    if (!curve) return;
    Spline = curve->Spline;
    Prepare();
}

bool KeyedFloatParameterClass::Load_Plain(ChunkFile::ChunkFileReaderClass &reader)
{
    const bool loaded = KeyedParameterClass::Load_Plain(reader);
    Prepare();
    return loaded;
}

bool KeyedFloatParameterClass::Load_Chunked(ChunkFile::ChunkFileReaderClass &reader)
{
    const bool loaded = KeyedParameterClass::Load_Chunked(reader);
    Prepare();
    return loaded;
}

void KeyedFloatParameterClass::Clear_Keys()
{
    KeyedParameterClass::Clear_Keys();
    Spline.Clear();
}

void KeyedFloatParameterClass::Add_Key(float time, const float &value)
{
    KeyedParameterClass::Add_Key(time, value);
    Spline.Add_Point(time, value);
}

void KeyedFloatParameterClass::Evaluate(float time, bool smooth, float &value) const
{
    if (Uses_Spline())
        value = Spline.Get_Value(time);
    else
        KeyedParameterClass::Evaluate(time, smooth && !IsSpline, value);
}

void KeyedFloatParameterClass::Evaluate_Many(const float *times, int count, bool smooth, float *values) const
{
    if (Uses_Spline())
        Spline.Get_Values(times, count, values);
    else
        KeyedParameterClass::Evaluate_Many(times, count, smooth && !IsSpline, values);
}

void KeyedFloatParameterClass::Prepare() const
{
    if (Uses_Spline()) Spline.Solve();
}
