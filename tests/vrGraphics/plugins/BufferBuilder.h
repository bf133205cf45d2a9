#pragma once

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

namespace MKTest
{

/// A running buffer with a renderable's facts to play in: at the origin of a world with nothing in it, in a scene, with
/// a frame of 0.1 seconds.
struct BufferBuilder
{
    vrMKPRenderState State;
    SmartPtr<vrMKPBuffer> Buffer;

    explicit BufferBuilder(int capacity = 16, vrMKPTransformType space = MKP_TRANSFORM_WORLD)
        : Buffer(vrMKPBuffer::Create(capacity, "test"))
    {
        State.FrameTime = 0.1f;
        State.InScene = true;
        Buffer->Active = true;
        Buffer->State = &State;
        Buffer->TransformType = space;
        Buffer->Random.Seed(1);
    }

    /// Starts the ring at a slot, so that it wraps where a test wants it to.
    BufferBuilder &Start_At(int slot)
    {
        Buffer->Head = slot;
        Buffer->Tail = (slot - 1 + Buffer->Capacity) % Buffer->Capacity;
        return *this;
    }

    /// A new particle with an age of 0 of 1 second, size (1, 1), white, its number as its ID. Answers its slot.
    int Add(const Vector3 &position = Vector3(0.0f), const Vector3 &velocity = Vector3(0.0f), float time = 0.0f)
    {
        int slot = 0;
        Buffer->Grant_Slots(1, slot);
        for (const auto &channel : {Buffer->PreviousPosition, Buffer->Position, Buffer->WorldPosition})
            channel.Put(slot, position);
        Buffer->Velocity.Put(slot, velocity);
        Buffer->Age[slot] = time;
        Buffer->MaxAge[slot] = 1.0f;
        Buffer->Time[slot] = time;
        Buffer->Flags[slot] = 0;
        Buffer->ID[slot] = Buffer->Number[slot] = Buffer->NextSerial++;
        Buffer->Size[slot] = {1.0f, 1.0f};
        Buffer->Rotation[slot] = 0;
        Buffer->Color[slot] = VR_WHITE;
        return slot;
    }

    /// Makes the particles so far old ones.
    void End_Frame() { Buffer->SpawnedThisFrame = 0; }
};

} // namespace MKTest
