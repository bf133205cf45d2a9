#pragma once

/// A layer whose particles are those of another layer of its group, drawn in another way: the spawner copies the
/// parent's buffer, the modifiers copy single channels of it, and the transformer and the stomper leave all to the
/// parent.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

class vrMKPSlaveSpawner final : public vrMKPSpawner
{
public:
    vrMKPSlaveSpawner();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// The base of the four modifiers: their "Parent Name" has the id of the spawner's.
class vrMKPSlaveModifier : public vrMKPModifier
{
protected:
    vrMKPSlaveModifier();
};

class vrMKPSlaveRotationModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPSlaveSizeModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPSlaveColorModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Copies UV and dUV.
class vrMKPSlaveUVModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPNULLTransformer final : public vrMKPTransformer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPNULLStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
