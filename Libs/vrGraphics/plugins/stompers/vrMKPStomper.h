#pragma once

/// The stomper family: the plugins of a layer that end its particles. A stomper gives each particle its greatest age,
/// advances its age and its normalised time, and removes the dead.

#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

/// The base of all stompers, with the parameters that each of them has, whether or not it heeds them.
class vrMKPStomper : public vrMKPPlugin
{
public:
    /// Called when the plugin's parameters were loaded or cloned: the lives are worked out anew.
    virtual bool Post_Load();

    /// Gives this frame's new particles their greatest age and their first Time, after the spawner's own draws.
    virtual void Init_New_Particles(vrMKPBuffer &buffer) const;
    /// First thing in a frame: ages all particles by the frame's step and removes the dead.
    void Age_Particles(vrMKPBuffer &buffer) const;
    /// The part of it that looks at the buffer as a whole. True when what is left is `Age_Span` for all live particles;
    /// false when everything is done.
    virtual bool Begin_Age(vrMKPBuffer &buffer) const;
    /// Ages one run of slots of which none dies, and others among them that don't live.
    virtual void Age_Span(vrMKPBuffer &buffer, vrMKPSpan span) const;
    /// Last thing in a frame: removes the particles for which the condition holds.
    void Kill_Particles(vrMKPBuffer &buffer) const;
    /// Whether `Kill_Particles` may remove anything.
    virtual bool Has_Condition() const { return true; }

    /// The longest life that a particle may get, in seconds: it sizes the buffer.
    virtual float Get_Max_Life(const vrMKPRenderState &state) const;
    /// Whether all particles live equally long. Expects the lives to be up to date.
    bool Has_Fixed_Life() const { return FixedLife; }
    bool Get_Kill_On_Removal() const;
    /// Works the lives out anew before they are used next: to be called when a parameter was changed.
    void Mark_Dirty() { Dirty = true; }
    /// Works out the lives if a parameter was changed. On the thread that owns the scene, between frames.
    virtual void Update_Life() const;

protected:
    vrMKPStomper();
    /// The condition: removes the particles that it holds for, and reports them when `spawnOnDeath`.
    virtual void Stomp(vrMKPBuffer & /*buffer*/, bool /*spawnOnDeath*/) const {}
    /// The head of every ageing: advances the clock, and empties the buffer where its renderable is gone. False when
    /// there is nothing to age.
    bool Begin_Frame(vrMKPBuffer &buffer) const;
    bool Updates_Time() const { return UpdateTime->Get_Value(); }
    /// "Kill On Removal" takes effect for a buffer with its first particles.
    void Note_Kill_On_Removal(vrMKPBuffer &buffer) const;

    // Worked out from the parameters; the definition's, not a buffer's.
    mutable bool Dirty = true;
    mutable bool FixedLife = true;
    mutable float BaseLife = 0.0f;
    mutable float LifeVariation = 0.0f;
    mutable float MaxLife = 0.0f;

private:
    void Give_Varied_Lives(vrMKPBuffer &buffer) const;
    void Remove_Expired(vrMKPBuffer &buffer, bool spawnOnDeath) const;

    RangedFloatParameter *StompTime;
    RangedFloatParameter *StompTimeVariation;
    BoolParameter *KillOnRemoval;
    BoolParameter *SpawnOnAge;
    BoolParameter *SpawnOnConditional;
    BoolParameter *UpdateTime;
    BoolParameter *FullRangeVariation;
};
