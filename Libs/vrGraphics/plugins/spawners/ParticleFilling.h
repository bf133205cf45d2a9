#pragma once

/// How granted slots become particles: the one place that writes a newborn's channels, whichever spawner it comes from.
///
/// A spawner describes the births in a `vrMKPFilling` and hands it a source, a small struct of its own that tells where
/// and how fast a particle starts:
///
///     struct PointSource
///     {
///         Vector3 Position(RandomClass &) { return Vector3(0.0f); }                    // in the spawner's local frame
///         Vector3 Velocity(RandomClass &random, const Vector3 &localPosition) { ... }
///     };
///     vrMKPFilling filling(*buffer.State);
///     filling.Count = buffer.Grant_Slots(count, filling.First);
///     filling.Births = ...; filling.Rules = ...;
///     filling.Fill(buffer, PointSource{});
///
/// Everything that doesn't change from particle to particle belongs into the source's members, resolved before: its two
/// operations are inlined into the loop, and are called in turn for each slot, so that a source may keep the position
/// for the velocity. They draw from the generator that they are given and from no other: what a seed means is the order
/// position, velocity, random value for each slot. A source that can draw many at once, with the same result, has
/// `Draws_Blocks` and `Draw_Block` too, as `vrMKPShapeSource` has. A spawner at a rate gets the filling from
/// `Begin_Filling` instead.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/spawners/Newborns.h"

#include <algorithm>
#include <type_traits>

/// When the particles of one filling are born.
struct vrMKPBirths
{
    int ClusterSize = 1;      ///< particles that are born at one time; at least 1
    float ClusterStep = 0.0f; ///< seconds from one cluster to the next
    float FirstTime = 0.0f;   ///< the spawner's own clock at the first birth
    float Lead = 0.0f;        ///< seconds into the frame of the first birth
    float Span = 0.0f;        ///< seconds from the first birth to the end of the frame, the age of the first particle
};

/// What becomes of the positions and velocities that a source draws.
struct vrMKPFillRules
{
    float VelocityFactor = 1.0f;
    bool VelocityInLocalSpace = true;
    bool DistanceAsTime = false;
    bool TerrainSnap = false;
    float TerrainOffset = 0.0f;
    float TerrainOffsetVariation = 0.0f;
    // World space only.
    bool InheritVelocity = false;
    float InheritedVelocityScale = 1.0f;
    float MaxInheritSpeed = 1000.0f;
    bool HiResRotate = false;
};

class vrMKPFilling
{
public:
    /// In the frame of the renderable. The transforms are borrowed until the slots are filled.
    explicit vrMKPFilling(const vrMKPRenderState &state)
        : Transform(&state.Transform), InverseTransform(&state.InverseTransform),
          PreviousTransform(&state.PreviousTransform)
    {
    }

    /// Writes all channels of the granted slots, in ring order. World-space particles lie along the way from the
    /// previous place to the present one. Invalid positions and velocities are asserted, once. Leaves the time of the
    /// last birth in `LastSpawnTime`.
    template <typename Source>
    void Fill(vrMKPBuffer &buffer, Source &&source);

    int First = 0; ///< the first granted slot
    int Count = 0;
    vrMKPBirths Births;
    vrMKPFillRules Rules;
    // From the spawner's local frame to the world: the renderable's, unless particles come from a place of their own.
    const Mat3DClass *Transform;
    const Mat3DClass *InverseTransform;
    const Mat3DClass *PreviousTransform;

private:
    using Newborns = vrMKPNewborns; ///< whose block of all channels stays in the first cache
    static constexpr int LEAST_BLOCK = RandomLanes::GROUP;

    /// How far the births have come.
    struct Clock
    {
        int InCluster = 0;
        float Remaining = 0.0f; ///< seconds until the end of the frame
        float Next = 0.0f;
        float Fraction = 0.0f; ///< of the way from the previous place to the present one
        float FractionStep = 0.0f;
    };

    template <typename Source>
    void Draw(vrMKPBuffer &buffer, Newborns &newborns, int count, Source &source) const;
    template <typename Source>
    void Draw_One_By_One(const vrMKPBuffer &buffer, RandomClass &random, Newborns &newborns, int first, int count,
                         Source &source) const;
    void Begin(const vrMKPBuffer &buffer);
    void Finish(vrMKPBuffer &buffer, vrMKPSpan block, Newborns &newborns);
    void End(vrMKPBuffer &buffer) const;

    void Run_Clock(Newborns &newborns, int count);
    void Place_Local(Newborns &newborns, int count) const;
    void Place_World(const vrMKPBuffer &buffer, Newborns &newborns, int count) const;
    /// Places and turns with the rotation as it was at each birth, and leaves the starts as they were drawn.
    void Turn_Along_The_Way(Newborns &newborns, int count) const;
    Vector3 Snap_Local(const vrMKPBuffer &buffer, const Vector3 &position) const;
    float Get_Snapped_Height(const vrMKPRenderState &state, const Vector3 &worldPosition) const;
    Vector3 Get_Inherited_Velocity(const vrMKPRenderState &state) const;

    bool IsWorld = false;
    bool SnapsToTerrain = false;
    Clock Progress;
    Vector3 Way{0.0f}; ///< from the previous place to the present one
    Vector3 Inherited{0.0f};
    float LastTime = 0.0f;
    bool ArePositionsValid = true;
    bool AreVelocitiesValid = true;
};

template <typename Source>
void vrMKPFilling::Fill(vrMKPBuffer &buffer, Source &&source)
{
    if (Count <= 0) return;
    Newborns newborns; // written before they are read
    Begin(buffer);
    for (const vrMKPSpan span : vrMKPSpans(First, Count, buffer.Capacity)) {
        for (int done = 0; done < span.Count; done += Newborns::BLOCK) {
            const int left = span.Count - done;
            const vrMKPSpan block{span.First + done, left < Newborns::BLOCK ? left : Newborns::BLOCK};
            Draw(buffer, newborns, block.Count, source);
            Finish(buffer, block, newborns);
        }
    }
    End(buffer);
}

template <typename Source>
void vrMKPFilling::Draw(vrMKPBuffer &buffer, Newborns &newborns, int count, Source &source) const
{
    RandomClass random(buffer.Random.Get_State()); // in a register, which that of the buffer can't be
    int done = 0;
    if constexpr (requires { &std::remove_reference_t<Source>::Draw_Block; }) {
        if (source.Draws_Blocks() && !(SnapsToTerrain && !IsWorld)) {
            if (source.Draw_Block(random, newborns, 0, count)) done = count;
            // Where one newborn's numbers are drawn again, those around it needn't be drawn one by one.
            for (; done < count; done += LEAST_BLOCK) {
                const int part = std::min(LEAST_BLOCK, count - done);
                if (!source.Draw_Block(random, newborns, done, part))
                    Draw_One_By_One(buffer, random, newborns, done, part, source);
            }
        }
    }
    if (done < count) Draw_One_By_One(buffer, random, newborns, done, count - done, source);
    buffer.Random.Seed(random.Get_State());
}

template <typename Source>
void vrMKPFilling::Draw_One_By_One(const vrMKPBuffer &buffer, RandomClass &random, Newborns &newborns, int first,
                                   int count, Source &source) const
{
    const bool snaps = SnapsToTerrain && !IsWorld;
    for (int at = first; at < first + count; ++at) {
        Vector3 position = source.Position(random);
        if (snaps) position = Snap_Local(buffer, position);
        newborns.Starts.Put(at, position);
        newborns.Velocities.Put(at, source.Velocity(random, position));
        newborns.IDs[at] = random.Get_Word();
    }
    Newborns::Fill_Up(newborns.Starts, first + count);
    Newborns::Fill_Up(newborns.Velocities, first + count);
}
