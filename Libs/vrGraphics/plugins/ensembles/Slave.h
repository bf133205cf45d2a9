#pragma once

/// A layer whose particles are those of another layer of its group, drawn in another way: the spawner copies the
/// parent's buffer, the modifiers copy single channels of it, and the transformer and the stomper leave all to the
/// parent. A child that stands ahead of its parent in the group shows the parent's last frame. Without a parent, and
/// where a layer names itself, they do nothing.

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"

class vrMKPSlaveSpawner final : public vrMKPSpawner
{
public:
    vrMKPSlaveSpawner();
    bool Sets_Live_Slots() const override { return true; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    bool Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const override;
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    /// Makes the whole ring equal to the parent's, moved by "Position Offset", with sizes of 1 and no rotation.
    void Spawn(vrMKPBuffer &buffer) const override;
    bool Follows_Parent() const override { return true; }

private:
    StringParameterClass *ParentName;
    Vector3Parameter *PositionOffset;
};

/// The base of the four modifiers: their "Parent Name" has the id of the spawner's. Each copies the whole of its
/// channels, since the slots of the two rings correspond.
class vrMKPSlaveModifier : public vrMKPModifier
{
public:
    vrMKPBufferPluginData *Create_Buffer_Data(const vrMKPRenderState &state) const override;
    WalkType Get_Walk() const final { return WALK_WHOLE; }
    bool Copies_Slots() const final { return true; }
    /// May resize the buffer, which ends its particles.
    void Modify(vrMKPBuffer &buffer, int index) const final;

protected:
    vrMKPSlaveModifier();
    /// Expects rings of the same capacity.
    virtual void Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const = 0;

private:
    StringParameterClass *ParentName;
};

class vrMKPSlaveRotationModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    void Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const override;
};

class vrMKPSlaveSizeModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    void Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const override;
};

class vrMKPSlaveColorModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    void Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const override;
};

/// Copies UV and dUV.
class vrMKPSlaveUVModifier final : public vrMKPSlaveModifier
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    void Copy_Channels(vrMKPBuffer &buffer, const vrMKPBuffer &parent) const override;
};

/// Leaves the world positions as the spawner copied them.
class vrMKPNULLTransformer final : public vrMKPTransformer
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Neither ages nor removes anything.
class vrMKPNULLStomper final : public vrMKPStomper
{
public:
    size_t Get_Object_Size() const override { return sizeof(*this); }
    void Init_New_Particles(vrMKPBuffer & /*buffer*/) const override {}
    bool Begin_Age(vrMKPBuffer & /*buffer*/) const override { return false; }
    bool Has_Condition() const override { return false; }
};
