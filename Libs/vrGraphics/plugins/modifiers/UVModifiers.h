#pragma once

/// The modifiers that choose which rectangle of its texture a particle shows.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

#include <atomic>

class vrMKPConstantUVModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    UVParameter *TexCoords;
};

/// Holds each key's rectangle until the next key. Ahead of the first key it holds the first one, or, where it loops,
/// the last. Without keys the rectangles stay as they were. A loop over no time at all stands at its start.
class vrMKPKeyedUVModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_WIDE; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    bool Is_Loop() const;
    void Write_Looped(vrMKPBuffer &buffer, int first, int count) const;

    KeyedUVParameter *TexCoords;
    RangedFloatParameter *LoopCount;
    BoolParameter *UseGlobalTime;
    RangedFloatParameter *GlobalLength;
    BoolParameter *RandomStart;
};

/// Adds to the rectangle's origin in each frame, so that a modifier that writes it must stand ahead.
class vrMKPRandomUVModifier final : public vrMKPModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;
};

/// Gives a new particle a rectangle of the list by its ID; nothing without a list.
class vrMKPSlottedRandomUVModifier final : public vrMKPModifier
{
public:
    vrMKPSlottedRandomUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_NEW; }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    UVListParameterClass *Slots;
};

/// Gives new particles the rectangles of the list in turn; nothing without a list. Whoever shares the plugin shares the
/// turn, and then the frame runs on one thread, so that the turn always goes the same way.
class vrMKPSlottedUVModifier final : public vrMKPModifier
{
public:
    vrMKPSlottedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    WalkType Get_Walk() const override { return WALK_NEW; }
    bool Needs_Serial_Frame() const override;
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    UVListParameterClass *Slots;
    mutable std::atomic<uint32_t> Cursor = 0; ///< the list's next entry; run-time state, and the only such in a plugin
};

/// Plays the cells of a sheet, row by row. A sheet without cells, frames that aren't one at least and times that are no
/// number leave the rectangles as they were.
class vrMKPSequencedUVModifier final : public vrMKPModifier
{
public:
    vrMKPSequencedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Apply(vrMKPBuffer &buffer, int index, vrMKPSpan span) const override;

private:
    UVParameter *StartSlot;
    RangedIntParameter *FrameCount;
    BoolParameter *RandomStart;
    BoolParameter *RandomFlip;
    BoolParameter *Reverse;
    BoolParameter *PingPong;
    BoolParameter *NormalizedTime;
    RangedFloatParameter *FrameRate;
    RangedIntParameter *LoopCount;
};
