#pragma once

#include "vrGraphics/particle/MKPAttributes.h"

#include <string>
#include <vector>

class vrMKParticle;
class vrMKParticleEmitter;

namespace vro
{

/// Prints frames of an effect on standard output as they come, so that a run of any length takes no more memory than
/// one frame's text. Reads the channels where they lie.
class SimulateJson
{
public:
    SimulateJson(std::vector<MKPAttribTypes> channels, bool printsVertices);

    /// The state of all layers after a frame. `time` is in seconds. False when standard output takes no more.
    bool Add_Frame(int frame, float time, const vrMKParticleEmitter &emitter);
    /// The end of the document.
    bool Finish();

private:
    bool Add_Layer(int renderable, int layer, const vrMKParticle &particle);
    /// The vertices that the visualizer has built and not yet drawn.
    bool Add_Vertices(const vrMKParticle &particle);
    bool Flush();

    std::vector<MKPAttribTypes> Channels;
    std::string Text;
    bool PrintsVertices;
    bool HasFrames = false;
};

} // namespace vro
