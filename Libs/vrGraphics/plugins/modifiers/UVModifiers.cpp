#include "vrGraphics/plugins/modifiers/UVModifiers.h"

#include "MKLib/Parameters/KeySearch.h"
#include "MKLib/Parameters/UVListParameter.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/modifiers/CellSequence.h"

#include <algorithm>
#include <bit>

namespace
{

constexpr float UNIT_BYTE = 0.003921569f; ///< 1 / 255
constexpr float ALL_WHOLE = 8388608.0f;   ///< floats of this size and above have no fraction

MK_INLINE void Write(vrMKPBuffer &buffer, int slot, const Vector4 &rectangle)
{
    buffer.UV[slot] = {rectangle.x, rectangle.y};
    buffer.DUV[slot] = {rectangle.z, rectangle.w};
}

MK_SIMD void Write_Same(float *__restrict origins, float *__restrict sizes, int count, Vector4 rectangle)
{
    for (int i = 0; i < count; ++i) {
        origins[2 * i] = rectangle.x;
        origins[2 * i + 1] = rectangle.y;
        sizes[2 * i] = rectangle.z;
        sizes[2 * i + 1] = rectangle.w;
    }
}

/// x less the whole number below it; 0 for what has no such place.
MK_INLINE float Place_In_Loop(float x)
{
    const float raised = x > -ALL_WHOLE ? x : -ALL_WHOLE;
    const float bounded = raised < ALL_WHOLE ? raised : ALL_WHOLE;
    const float rest = bounded - static_cast<float>(static_cast<int32_t>(bounded));
    // A mask in place of a choice, for which the compiler would make a jump and then not take the loop.
    const uint32_t isBelow = 0u - static_cast<uint32_t>(rest < 0.0f);
    return rest + std::bit_cast<float>(isBelow & std::bit_cast<uint32_t>(1.0f));
}

MK_SIMD void Find_Loop_Places(float *__restrict places, const float *__restrict times, int count, float loops)
{
    for (int i = 0; i < count; ++i) places[i] = Place_In_Loop(times[i] * loops);
}

MK_SIMD void Find_Loop_Places_From_Random(float *__restrict places, const float *__restrict times,
                                          const uint32_t *__restrict ids, int count, float loops)
{
    for (int i = 0; i < count; ++i) places[i] = Place_In_Loop((Particle::Unit_ID(ids[i]) + times[i]) * loops);
}

/// The last key that isn't above each time. Ahead of all keys stands the key of the index `before`.
void Write_Held_Keys(vrMKPBuffer &buffer, int first, int count, const KeyedUVParameter &curve, const float *times,
                     int before)
{
    using Key = KeyedUVParameter::KeyStruct;
    static_assert(MKP_CURVE_BLOCK <= KeySearch::BLOCK);
    const Key *keys = curve.Get_Keys().data();
    int places[MKP_CURVE_BLOCK];
    KeySearch::Find_Places<&Key::Time>(keys, curve.Get_Key_Count(), times, count, places);
    for (int i = 0; i < count; ++i) Write(buffer, first + i, keys[places[i] > 0 ? places[i] - 1 : before].Value);
}

MK_SIMD void Add_Random(float *__restrict origins, const uint32_t *__restrict ids, int count)
{
    for (int i = 0; i < count; ++i) {
        origins[2 * i] += static_cast<float>(static_cast<int32_t>(ids[i] & 0xff)) * UNIT_BYTE;
        origins[2 * i + 1] += static_cast<float>(static_cast<int32_t>((ids[i] >> 8) & 0xff)) * UNIT_BYTE;
    }
}

UVListParameterClass *Add_Slots(ParameterListClass &parameters, const char *description)
{
    return parameters.Add_UV_List(200, "Slot UV Coordinates", description);
}

} // namespace

vrMKPConstantUVModifier::vrMKPConstantUVModifier()
{
    TexCoords = Parameters.Add_UV(200, "TexCoords", Vector4(0.0f, 0.0f, 1.0f, 1.0f), "Texture coordinates of particle");
}

void vrMKPConstantUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Write_Same(&buffer.UV[span.First].x, &buffer.DUV[span.First].x, span.Count, TexCoords->Get_Value());
}

vrMKPKeyedUVModifier::vrMKPKeyedUVModifier()
{
    TexCoords = Parameters.Add_Keyed_UV(300, "TexCoords", "Texture Coordinates");
    LoopCount = Parameters.Add_Float(301, "Loop Count", 1.0f, 1.0f, 50.0f,
                                     "Number of times to loop over the lifetime of the particle");
    UseGlobalTime =
        Parameters.Add_Bool(302, "Use Global Time", false, "Use a global timer instead of particle lifetime");
    GlobalLength = Parameters.Add_Float(303, "Global Anim. Length", 1.0f, 0.0f, 120.0f,
                                        "Time in seconds that counts as one 'lifetime' when global time active");
    RandomStart =
        Parameters.Add_Bool(304, "Random Start Key", false, "Pick a random keyframe to start looped animation from.");
}

void vrMKPKeyedUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    if (TexCoords->Get_Key_Count() == 0) return;
    For_Each_Curve_Block(span, [&](int first, int count) {
        if (Is_Loop())
            Write_Looped(buffer, first, count);
        else
            Write_Held_Keys(buffer, first, count, *TexCoords, buffer.Time + first, 0);
    });
}

bool vrMKPKeyedUVModifier::Is_Loop() const
{
    return UseGlobalTime->Get_Value() || RandomStart->Get_Value() || LoopCount->Get_Value() != 1.0f;
}

void vrMKPKeyedUVModifier::Write_Looped(vrMKPBuffer &buffer, int first, int count) const
{
    float globalTimes[MKP_CURVE_BLOCK];
    const float *times = buffer.Time + first;
    if (UseGlobalTime->Get_Value()) {
        std::fill_n(globalTimes, count, buffer.State->RunningTime / GlobalLength->Get_Value());
        times = globalTimes;
    }
    float places[MKP_CURVE_BLOCK];
    if (RandomStart->Get_Value())
        Find_Loop_Places_From_Random(places, times, buffer.ID + first, count, LoopCount->Get_Value());
    else
        Find_Loop_Places(places, times, count, LoopCount->Get_Value());
    Write_Held_Keys(buffer, first, count, *TexCoords, places, TexCoords->Get_Key_Count() - 1);
}

void vrMKPRandomUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    Add_Random(&buffer.UV[span.First].x, buffer.ID + span.First, span.Count);
}

vrMKPSlottedRandomUVModifier::vrMKPSlottedRandomUVModifier()
{
    Slots = Add_Slots(Parameters, "UV Coordinates for each random 'slot'.");
}

void vrMKPSlottedRandomUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const std::vector<Vector4> &slots = Slots->Get_Value();
    if (slots.empty()) return;
    const auto slotCount = static_cast<uint32_t>(slots.size());
    for (int slot = span.First; slot < span.First + span.Count; ++slot)
        Write(buffer, slot, slots[buffer.ID[slot] % slotCount]);
}

vrMKPSlottedUVModifier::vrMKPSlottedUVModifier()
{
    Slots = Add_Slots(Parameters, "UV Coordinates for each 'slot'.");
}

bool vrMKPSlottedUVModifier::Needs_Serial_Frame() const
{
    return Get_Ref_Count() > 1 && Slots->Get_Value().size() > 1;
}

void vrMKPSlottedUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const std::vector<Vector4> &slots = Slots->Get_Value();
    if (slots.empty()) return;
    size_t cursor = Cursor.load(std::memory_order_relaxed) % slots.size();
    for (int slot = span.First; slot < span.First + span.Count; ++slot) {
        Write(buffer, slot, slots[cursor]);
        cursor = cursor + 1 < slots.size() ? cursor + 1 : 0;
    }
    Cursor.store(static_cast<uint32_t>(cursor), std::memory_order_relaxed);
}

vrMKPSequencedUVModifier::vrMKPSequencedUVModifier()
{
    StartSlot = Parameters.Add_UV(200, "Start Slot", Vector4(0.0f, 0.0f, 0.125f, 0.125f),
                                  "The starting frame of the animation.");
    FrameCount = Parameters.Add_Int(
        201, "Num Frames", 10, 1, 1000,
        "The number of frames to play.\nEach slot will be the same size as the starting slot, and be "
        "played in sequence from upper left to lower right.");
    RandomStart = Parameters.Add_Bool(202, "Random Start", false,
                                      "Pick a random starting frame between Start Slot and the last slot from which to "
                                      "begin playback.\n");
    RandomFlip = Parameters.Add_Bool(208, "Random Flip", false,
                                     "Randomly flip the sequence horizontally, vertically, or both.\n");
    Reverse = Parameters.Add_Bool(203, "Reverse", false,
                                  "Plays the animation in reverse, ending on the starting slot and beginning at the "
                                  "last slot.");
    PingPong = Parameters.Add_Bool(204, "Ping Pong", false,
                                   "Reverses the direction fo playback once the last frame of each loop is reached.");
    NormalizedTime = Parameters.Add_Bool(207, "Normalized Time", false,
                                         "Use this to ignore framerate and instead play a fixed number of loops over "
                                         "the lifetime of each particle.");
    FrameRate = Parameters.Add_Float(205, "Frame Rate", 15.0f, 0.0f, 180.0f, "The playback speed.");
    LoopCount = Parameters.Add_Int(206, "Num Loops", 0, 0, 100,
                                   "The number of times to loop.  A value of 0 represents a continuous loop.");
}

void vrMKPSequencedUVModifier::Apply(vrMKPBuffer &buffer, int, vrMKPSpan span) const
{
    const auto frames = static_cast<float>(FrameCount->Get_Value());
    const auto loops = static_cast<float>(LoopCount->Get_Value());
    const bool isNormalized = NormalizedTime->Get_Value();
    vrMKPCellSequence sequence;
    if (!sequence.Set_Sheet(StartSlot->Get_Value(), frames)) return;
    sequence.Set_Loops(loops, Reverse->Get_Value(), PingPong->Get_Value());
    sequence.Set_Flips(RandomFlip->Get_Value());
    sequence.FramesPerTime = isNormalized ? loops * frames : FrameRate->Get_Value();
    sequence.RandomFrames = RandomStart->Get_Value() ? frames - 1.0f : 0.0f;
    const float *times = (isNormalized ? buffer.Time : buffer.Age) + span.First;
    sequence.Write(&buffer.UV[span.First].x, &buffer.DUV[span.First].x, times, buffer.ID + span.First, span.Count);
}
