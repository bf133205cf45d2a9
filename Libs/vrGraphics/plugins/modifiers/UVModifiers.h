#pragma once

/// The modifiers that choose which rectangle of its texture a particle shows.

#include "vrGraphics/plugins/modifiers/Interpolating.h"

class vrMKPConstantUVModifier final : public vrMKPConstantModifier
{
public:
    vrMKPConstantUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Holds each key's rectangle until the next key.
class vrMKPKeyedUVModifier final : public vrMKPKeyedModifier
{
public:
    vrMKPKeyedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Adds to the rectangle's origin in each frame, so that a modifier that writes it must stand ahead.
class vrMKPRandomUVModifier final : public vrMKPModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Gives a new particle a rectangle of the list by its random value.
class vrMKPSlottedRandomUVModifier final : public vrMKPModifier
{
public:
    vrMKPSlottedRandomUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Gives new particles the rectangles of the list in turn.
class vrMKPSlottedUVModifier final : public vrMKPModifier
{
public:
    vrMKPSlottedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Plays the cells of a sheet, row by row.
class vrMKPSequencedUVModifier final : public vrMKPModifier
{
public:
    vrMKPSequencedUVModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
