#pragma once

#include "MKLib/MKMath/Vectors.h"

#include <string_view>

class vrCarrierModel;
struct vrMKPRenderState;

/// The points in the world that the facts of a frame tell by themselves.
enum vrMKPTargetPoint : int
{
    MKP_TARGET_EMITTER,                 ///< the renderable's place
    MKP_TARGET_BONE,                    ///< a bone of the carrying model; without it, what game code set
    MKP_TARGET_SET,                     ///< what game code set
    MKP_TARGET_PROJECTILE_TARGET_START, ///< where a projectile's target was when the effect started
    MKP_TARGET_PROJECTILE_TARGET_CURRENT
};

/// Remembers the index of a bone, so that its name is looked up once for each carrying model. A part of what a plugin
/// keeps for a buffer: a change of the name shows after a reset.
class vrMKPBoneCache
{
public:
    void Reset() { *this = vrMKPBoneCache(); }
    /// The bone's index, or -1 where there is no model or no such bone.
    int Find(const vrCarrierModel *model, std::string_view name);

private:
    const vrCarrierModel *Model = nullptr; ///< the one that `Bone` belongs to; compared, never followed
    int Bone = -1;
};

/// The point in the world. A kind that isn't in the list is taken for the renderable's place. Without a cache there is
/// no bone to find.
Vector3 Get_Target_Point(vrMKPTargetPoint kind, const vrMKPRenderState &state, std::string_view boneName,
                         vrMKPBoneCache *cache);
