#pragma once

/// What the building of vertices has in common: the head that each draw begins with, and the loop over its blocks.

#include "vrGraphics/plugins/visualizers/ParticleColors.h"
#include "vrGraphics/plugins/visualizers/QuadBlock.h"
#include "vrGraphics/plugins/visualizers/vrMKPAspect.h"
#include "vrGraphics/particle/vrMKPBuffer.h"

#include "MKLib/MKMath/Mat3D.h"

struct vrMKPRenderState;
struct vrPreRenderContext;

/// How the particles of a draw are put into order.
struct vrMKPSorting
{
    bool IsOn = false;
    /// Particles from that age on keep the place that they had; negative for all to be sorted at every age.
    float MaxAge = -1.0f;
};

/// One draw of one buffer, for one view: all that stays the same for its particles. Lives while the vertices are built.
class vrMKPQuadDraw
{
public:
    /// Factor for sizes as they are drawn.
    static float Get_Size_Multiplier(const vrMKPBuffer &buffer);
    /// What an earlier frame left undrawn is gone from the scratch memory. The two below begin with it.
    static void Drop_Vertices(vrMKPBuffer &buffer);
    /// Sets everything up but the order, which `Sort` does. False when there is nothing to draw. A buffer without data
    /// asserts, and draws nothing. `usesSceneLighting` multiplies by what the environment has for particles.
    bool Begin(vrMKPBuffer &buffer, const vrPreRenderContext &context, bool usesSceneLighting);
    /// The same for a kind that draws all living particles, whatever was selected.
    bool Begin_All(vrMKPBuffer &buffer, const vrPreRenderContext &context);
    /// Fills the entries with the visible particles.
    void Sort(const vrMKPSorting &sorting);
    /// Room for the vertices of so many quads, which the data holds from then on. False, with a line in the log, when
    /// there is none. `className` is the one of the kind that the line names.
    bool Allocate(int quads, vrPrimVertexType type, const char *className);

    /// Builds a quad for each entry: for one block after the other `build(run, quads)` works out the corners, of which
    /// `quads` has position, size, texture and colour; then they are mapped where the layer scales at its draw, and
    /// `shade(run, quads)` gives normals that depend on where corners are. Expects the entries, and room for them all.
    template <typename Build, typename Shade>
    void Write_Quads(vrMKPQuadBlock &quads, const vrMKPAspect &aspect, Build &&build, Shade &&shade)
    {
        const int count = Get_Count();
        for (int first = 0; first < count; first += vrMKPParticleRun::SIZE) {
            const vrMKPParticleRun run = Get_Run(first);
            Fetch(run, aspect, quads);
            build(run, quads);
            if (MapsPositions) quads.Map_Corners(PositionScale, PositionOffset);
            shade(run, quads);
            Write(quads, first);
        }
    }
    template <typename Build>
    void Write_Quads(vrMKPQuadBlock &quads, const vrMKPAspect &aspect, Build &&build)
    {
        Write_Quads(quads, aspect, build, [](const vrMKPParticleRun &, vrMKPQuadBlock &) {});
    }

    int Get_Count() const { return static_cast<int>(Data->SortEntries.size()); }
    vrMKPParticleRun Get_Run(int first) const;
    /// Position, size, texture and colour of a block.
    void Fetch(const vrMKPParticleRun &run, const vrMKPAspect &aspect, vrMKPQuadBlock &quads) const;
    /// The vertices of a block, the first of which is quad `first` of the draw.
    void Write(const vrMKPQuadBlock &quads, int first) const;
    /// Whether the vertices have tangents and binormals.
    bool Is_Bump() const { return Type == VR_LIT_BUMP_VERTEX; }

    vrMKPBuffer *Buffer = nullptr;
    const vrMKPRenderState *State = nullptr;
    vrMKPSimpleVisualizerData *Data = nullptr;
    Mat3DClass Camera;
    float SizeMultiplier = 1.0f;
    vrMKPColorPath Colors;
    bool MapsPositions = false; ///< corners are scaled and moved
    float PositionScale = 1.0f;
    Vector3 PositionOffset{0.0f};

private:
    bool Set_Up(vrMKPBuffer &buffer, const vrPreRenderContext &context, bool usesSceneLighting);

    bool IsSorted = false;
    vrPrimVertexType Type = VR_LIT_VERTEX;
};
