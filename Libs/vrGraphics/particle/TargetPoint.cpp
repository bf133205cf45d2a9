#include "vrGraphics/particle/TargetPoint.h"

#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/particle/vrWorld.h"

int vrMKPBoneCache::Find(const vrCarrierModel *model, std::string_view name)
{
    if (model != Model) {
        Model = model;
        Bone = model ? model->Find_Bone(name) : -1;
    }
    return Bone;
}

Vector3 Get_Target_Point(vrMKPTargetPoint kind, const vrMKPRenderState &state, std::string_view boneName,
                         vrMKPBoneCache *cache)
{
    switch (kind) {
    case MKP_TARGET_BONE: {
        const int bone = cache ? cache->Find(state.Carrier, boneName) : -1;
        return bone < 0 ? state.TargetPosition : state.Carrier->Get_Bone_Transform(bone).Get_Translation();
    }
    case MKP_TARGET_SET: return state.TargetPosition;
    case MKP_TARGET_PROJECTILE_TARGET_START: return state.ProjectileTargetStart;
    case MKP_TARGET_PROJECTILE_TARGET_CURRENT: return state.ProjectileTarget;
    case MKP_TARGET_EMITTER: break;
    }
    return state.Get_Position();
}
