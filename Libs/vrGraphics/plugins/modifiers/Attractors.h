#pragma once

/// Forces toward, away from and around a point or an axis, by the distance from it.

#include "vrGraphics/plugins/modifiers/vrMKPTargetModifier.h"

/// Toward or from the place of the group, with the same force at any distance.
class vrMKPAttractAccelerationModifier final : public vrMKPModifier
{
public:
    vrMKPAttractAccelerationModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPAttractorModifier final : public vrMKPTargetModifier
{
public:
    vrMKPAttractorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

class vrMKPAxisAttractorModifier final : public vrMKPTargetModifier
{
public:
    vrMKPAxisAttractorModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Around an axis through the target.
class vrMKPTorqueModifier final : public vrMKPTargetModifier
{
public:
    vrMKPTorqueModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Speeds particles up without turning them. It has no plugin id, and so never stands in a file.
class vrMKPTargetAccelerationFieldModifier final : public vrMKPTargetModifier
{
public:
    vrMKPTargetAccelerationFieldModifier();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
