#pragma once

#include "MKLib/RefCount.h"

#include <cstddef>
#include <cstdint>

class vrMKParticleEmitter;

/// Effects and worlds out of any bytes: every kind of plugin, with values at and beyond their ranges.
namespace RandomEffect
{

/// Bytes to choose by; zeros when they are used up.
class Bytes
{
public:
    Bytes(const uint8_t *data, size_t size) : Data(data), Size(size) {}

    bool Is_Empty() const { return At >= Size; }
    uint32_t Take_Byte() { return At < Size ? Data[At++] : 0; }
    /// 0 to `count` - 1.
    int Choose(int count) { return static_cast<int>(Take_Byte()) % count; }
    /// Everyday numbers, ends of ranges, and what is none: infinities, no number, the greatest and the least.
    float Take_Float();
    int32_t Take_Int();

private:
    const uint8_t *Data;
    size_t Size;
    size_t At = 0;
};

/// An emitter of one to three groups with up to four layers each, with a count of 0. Layers name each other, themselves
/// and nobody as their parents.
vrMKParticleEmitter *Build(Bytes &bytes);

/// Plays it for `frames` frames in a world that the bytes choose too: places, targets, terrain, restarts, hiding.
void Play(vrMKParticleEmitter &emitter, Bytes &bytes, int frames);

} // namespace RandomEffect
