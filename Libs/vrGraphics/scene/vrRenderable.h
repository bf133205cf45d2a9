#pragma once

/// The base of what can stand in a scene. Here is what an effect's definition needs of it: a run-time class that
/// `MK_Dynamic_Cast` asks, cloning, and whether it is updated while nobody sees it.

#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"

#include <cstdint>

/// What a clone is for.
enum vrCloneType : int
{
    VR_CLONE_COPY = 0,    ///< everything the source has
    VR_CLONE_INSTANCE = 1 ///< a lightweight instance, which takes no renderables of its own
};

/// The root of the run-time classes of all that is culled and drawn.
class CullObjectClass : public RefCountClass
{
public:
    MK_RUN_TIME_TYPE_ROOT
};

class vrRenderable : public CullObjectClass
{
public:
    MK_RUN_TIME_TYPE

    enum UpdateModeType : uint8_t
    {
        UPDATE_WHEN_VISIBLE,
        UPDATE_ALWAYS
    };

    /// A new object with a count of 0.
    virtual vrRenderable *Clone(vrCloneType type) const = 0;
    virtual size_t Get_Object_Size() const = 0;

    UpdateModeType Get_Update_Mode() const { return UpdateMode; }
    void Set_Update_Mode(UpdateModeType mode) { UpdateMode = mode; }

protected:
    vrRenderable() = default;
    vrRenderable(const vrRenderable &) = default;

private:
    UpdateModeType UpdateMode = UPDATE_WHEN_VISIBLE;
};

/// The base of what a scene plays as particles.
class vrParticleInterface : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE
};
