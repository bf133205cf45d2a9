#pragma once

struct vrParticleLight;

/// What a visualizer may know of the emitter that it plays in.
class vrMKPEmitterFace
{
public:
    /// The light sources of all its groups, in order.
    virtual int Get_Light_Source_Count() const = 0;
    /// As it shines in this frame. Expects an index in range.
    virtual const vrParticleLight &Get_Light_Source(int index) const = 0;
    /// By name, as a definition has it, before any of them shines; -1 where there is none. Ignores case.
    virtual int Find_Light_Source(const char *name) const = 0;
    /// The emitter is to take its step whether or not anyone sees it, and to last until it is told otherwise.
    virtual void Keep_Updating() = 0;

protected:
    ~vrMKPEmitterFace() = default;
};
