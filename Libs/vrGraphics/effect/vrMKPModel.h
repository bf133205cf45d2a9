#pragma once

#include "vrGraphics/effect/vrMKPRenderable.h"

class vrMKParticleGroup;

/// Which model an effect shows, and how.
class vrMKPAttachedModelParameters final : public RefCountClass
{
public:
    bool Load(ChunkFile::ChunkFileReaderClass &reader); ///< the current chunk
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const;

    const MK::String &Get_Name() const { return Name.Get_String(); } ///< of the model
    void Set_Name(std::string_view name) { Name = NameTableRef(name); }
    const MK::String &Get_Animation() const { return Animation.Get_String(); }
    void Set_Animation(std::string_view animation) { Animation = NameTableRef(animation); }
    bool Get_Enabled() const { return Enabled; }
    void Set_Enabled(bool enabled) { Enabled = enabled; }

private:
    bool Load_Variables(ChunkFile::ChunkFileReaderClass &reader);

    NameTableRef Name;
    NameTableRef Animation;
    bool Enabled = false;
};

/// A renderable that shows a model, and that a plugin can end.
class vrMKPModel final : public vrMKPRenderable
{
public:
    MK_RUN_TIME_TYPE

    vrMKPModel() = default;

    vrMKPModel *Clone(vrCloneType type) const override;
    bool Load(ChunkFile::ChunkFileReaderClass *reader) override;
    bool Save(ChunkFile::ChunkFileWriterClass *writer) override;

    /// Null for a model without them.
    vrMKPAttachedModelParameters *Get_Attached_Model() const { return AttachedModel.Get(); }
    void Set_Attached_Model(vrMKPAttachedModelParameters *parameters) { AttachedModel = parameters; }
    /// Null for none. A killer is a plugin of the family of renderable killers.
    vrMKPRenderableModifier *Get_Killer() const { return Killer.Get(); }
    void Set_Killer(vrMKPRenderableModifier *killer) { Killer = killer; }

    /// Makes this model what a group of an old file had attached: it stands where the group stands, and shows the model
    /// that the parameters tell. When the group had physics, the model takes them and a killer, and the group follows.
    void Split_From_Group(vrMKParticleGroup &group, vrMKPAttachedModelParameters *parameters);

    void Start() override;

    size_t Get_Object_Size() const override { return sizeof(*this); }
    size_t Get_Memory_Usage(bool includePlugins) const override;
    bool Is_Same_Definition(const vrMKPRenderable &other) const override;

protected:
    /// The killer after the others.
    void Update_Modifiers(vrMKPRenderableModifierContext context) override;

private:
    vrMKPModel(const vrMKPModel &other);
    bool Load_Chunk(ChunkFile::ChunkFileReaderClass &reader, bool &isKnown);
    bool Load_Killer(ChunkFile::ChunkFileReaderClass &reader);

    SmartPtr<vrMKPAttachedModelParameters> AttachedModel;
    SmartPtr<vrMKPRenderableModifier> Killer;
    SmartPtr<vrMKPBufferPluginData> KillerData;
};
