#include "MKLib/Parameters/KeyedParameters.h"

#include "MKLib/MKDebug/Logger.h"
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

float Between(float from, float to, float fraction)
{
    return from + fraction * (to - from);
}
Vector4 Between(const Vector4 &from, const Vector4 &to, float fraction)
{
    return from + fraction * (to - from);
}
RGBAClass Between(const RGBAClass &from, const RGBAClass &to, float fraction)
{
    return Lerp(from, to, fraction);
}

float Linear_Fraction(float time, float begin, float span)
{
    const float fraction = (time - begin) / span;
    return fraction > 0.0f ? std::min(fraction, 1.0f) : 0.0f;
}

float Smooth_Fraction(float time, float begin, float end, float span)
{
    if (time <= begin) return 0.0f;
    if (time >= end) return 1.0f;
    const float u = (time - begin) / span;
    return (3.0f - 2.0f * u) * u * u;
}

/// By time, so that each key goes to the end of those before it: a long curve in another order would take hours. Of
/// equal times the first in the file stays first. A first time that is no number equals all others and keeps them out.
template <typename KeyStruct> void Sort_For_Adding(std::vector<KeyStruct> &keys)
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
    if (upper == Keys.end() || std::fabs(upper->Time - low.Time) <= SHORTEST_SPAN) {
        value = low.Value;
        return;
    }
    const float span = upper->Time - low.Time;
    const float fraction =
        smooth ? Smooth_Fraction(time, low.Time, upper->Time, span) : Linear_Fraction(time, low.Time, span);
    value = Between(low.Value, upper->Value, fraction);
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
    if (IsSpline && Spline.Get_Point_Count() > 2) {
        value = Spline.Get_Value(time);
        return;
    }
    KeyedParameterClass::Evaluate(time, smooth && !IsSpline, value);
}

void KeyedFloatParameterClass::Prepare() const
{
    if (IsSpline && Spline.Get_Point_Count() > 2) Spline.Solve();
}
