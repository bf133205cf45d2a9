#pragma once

/// A cube of weather that follows the camera: all particles are made at the start, and the modifier, the transformer
/// and the stomper keep the same ones alive within the cube. Each has a "Cube Size" of its own, which the artist keeps
/// equal.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

class vrMKPWeatherCubeSpawner final : public vrMKPSpawner
{
public:
    vrMKPWeatherCubeSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPWeatherCubeModifier final : public vrMKPModifier
{
public:
    vrMKPWeatherCubeModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPWeatherCubeTransformer final : public vrMKPTransformer
{
public:
    vrMKPWeatherCubeTransformer();
    bool Needs_Camera() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPWeatherCubeStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
