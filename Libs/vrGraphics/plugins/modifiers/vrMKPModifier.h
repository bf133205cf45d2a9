#pragma once

/// The modifier family: the plugins of a layer that change the attributes of its living particles, once a frame, in the
/// order in which the layer lists them. A modifier keeps nothing about a particle: what varies between particles comes
/// from the channels of the buffer, so that a modifier may be added, removed or moved at any time.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

template <typename Slots>
struct vrMKPWalkSlots;

/// The base of all modifiers. It has no parameters of its own.
class vrMKPModifier : public vrMKPPlugin
{
public:
    /// Which slots a modifier works on.
    enum WalkType : int
    {
        WALK_LIVE, ///< each live particle by itself: `Apply` gets the ring in runs, in ring order
        WALK_WIDE, ///< likewise, but the runs are those of `vrMKPBuffer::Wide_Spans`
        WALK_NEW,  ///< likewise the particles of this frame alone
        WALK_WHOLE ///< `Modify` is called once for the whole buffer, because particles or draws depend on each other
    };

    /// The one call a frame, on a buffer with live particles; `index` is the modifier's place in the layer and that of
    /// its data in the buffer. The base prepares, and applies the modifier to all runs of its walk.
    virtual void Modify(vrMKPBuffer &buffer, int index) const;
    /// What the base does there, with runs that were found before.
    void Modify_Runs(vrMKPBuffer &buffer, int index, const vrMKPWalkSlots<vrMKPSpans> &runs) const;
    /// A layer may hand blocks of a few thousand slots to all of its modifiers in turn, instead of the whole ring to
    /// one after the other, where none in between walks the whole. The result is the same.
    virtual WalkType Get_Walk() const { return WALK_LIVE; }
    /// Once a frame, ahead of the first `Apply`: what advances with time and not with particles.
    virtual void Prepare_Frame(vrMKPBuffer & /*buffer*/, int /*index*/) const {}
    /// The work on one run of slots. Reads the parameters, then loops over plain arrays.
    virtual void Apply(vrMKPBuffer & /*buffer*/, int /*index*/, vrMKPSpan /*span*/) const {}
    /// Whether what it does to a particle depends on how many there are, so that it waits for this frame's births.
    virtual bool Depends_On_Count() const { return false; }
    /// Whether it copies slots of another layer that don't live there, so that these have to keep what they held.
    virtual bool Copies_Slots() const { return false; }
    /// Whether the next frame has to run on one thread, since what it does first is seen by the whole process.
    virtual bool Needs_Serial_Frame() const { return false; }
    /// Called when a layer with this modifier joins a renderable: what it tells about the renderable as a whole.
    virtual void Modifier_Post_Load(vrMKPRenderState & /*state*/) const {}
};

/// The slots for each kind of walk, as one run or as all runs of a ring.
template <typename Slots>
struct vrMKPWalkSlots
{
    Slots Live;
    Slots Wide;
    Slots New;

    Slots Get(vrMKPModifier::WalkType walk) const
    {
        if (walk == vrMKPModifier::WALK_WIDE) return Wide;
        return walk == vrMKPModifier::WALK_NEW ? New : Live;
    }
};

/// Those of a whole buffer, found once for all modifiers of a frame.
inline vrMKPWalkSlots<vrMKPSpans> Find_Walk_Runs(const vrMKPBuffer &buffer)
{
    return {buffer.Live_Spans(), buffer.Wide_Spans(), buffer.New_Spans()};
}
