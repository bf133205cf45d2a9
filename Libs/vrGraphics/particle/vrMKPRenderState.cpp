#include "vrGraphics/particle/vrMKPRenderState.h"

#include <atomic>

namespace
{

std::atomic<uint32_t> nextSharedSeed{1};

} // namespace

vrMKPRenderState::vrMKPRenderState() : Random(nextSharedSeed.fetch_add(0x9e3779b9, std::memory_order_relaxed))
{
}

void vrMKPRenderState::Move_To(const Mat3DClass &transform)
{
    PreviousTransform = Transform;
    Transform = transform;
    InverseTransform = transform.Inverse();
}

void vrMKPRenderState::Place_At(const Mat3DClass &transform)
{
    Move_To(transform);
    PreviousTransform = transform;
}
