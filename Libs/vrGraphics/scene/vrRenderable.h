#pragma once

/// The base of what can stand in a scene: a run-time class that `MK_Dynamic_Cast` asks, cloning, a place in the world,
/// and the steps of a frame.

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"
#include "vrGraphics/drivercommon/vrBounds.h"

#include <cstdint>

class vrRenderContext;
class vrScene;
struct vrPreRenderContext;

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

/// A frame of a scene calls, in this order, `Pre_Think` of all on one thread, `Think` of all, with those of one owner
/// one after the other and owners side by side, `Think_Particles` of all that want it, side by side, and `Post_Think`
/// of all on one thread.
class vrRenderable : public CullObjectClass
{
public:
    MK_RUN_TIME_TYPE

    enum UpdateModeType : uint8_t
    {
        UPDATE_WHEN_VISIBLE,
        UPDATE_ALWAYS
    };

    /// A new object with a count of 0, in no scene.
    virtual vrRenderable *Clone(vrCloneType type) const = 0;
    virtual size_t Get_Object_Size() const = 0;
    /// For messages.
    virtual const char *Get_Think_Name() const { return ""; }

    UpdateModeType Get_Update_Mode() const { return UpdateMode; }
    void Set_Update_Mode(UpdateModeType mode) { UpdateMode = mode; }

    vrScene *Get_Scene() const { return Scene; }
    /// From its own frame to the world.
    const Mat3DClass &Get_Transform() const { return Transform; }
    /// While raised, leaving a scene is a move to another one.
    virtual void Raise_Scene_Reassign_Hint(bool /*raised*/) {}
    virtual void Set_Transform(const Mat3DClass &transform) { Transform = transform; }
    /// Hidden things aren't drawn. Nothing is hidden at the start.
    bool Is_Hidden() const { return Hidden; }
    virtual void Set_Hidden(bool hidden) { Hidden = hidden; }

    // Drawing. While a render collects, a renderable adds tasks to the context for the phases that it draws in; each
    // task then calls back, `Pre_Render` and `Render` once for its phase.
    /// Bits of the render modes in which it is asked at all. All at the start.
    uint32_t Get_Render_Modes() const { return RenderModes; }
    void Set_Render_Modes(uint32_t mask) { RenderModes = mask; }
    /// Whether its box changes with its transform alone. Set before it is added to a scene.
    bool Is_Still() const { return Still; }
    void Set_Still(bool still) { Still = still; }
    /// The box around what it draws, in the world. False for what may be anywhere.
    virtual bool Get_Cull_Box(vrBounds & /*box*/) const { return false; }
    /// Expects the context to have a scene.
    virtual void Collect(vrRenderContext & /*context*/) {}
    /// Builds what is drawn; may run beside that of others.
    virtual void Pre_Render(const vrPreRenderContext & /*context*/) {}
    virtual void Render(vrRenderContext & /*context*/) {}

    /// The thing that this one is a part of, which may be itself.
    virtual vrRenderable &Get_Top_Owner() { return *this; }
    /// Whether it has particles to simulate in this frame.
    virtual bool Wants_Particle_Think() const { return false; }
    /// Whether its particles can't run beside those of others in this frame.
    virtual bool Needs_Serial_Frame() const { return false; }
    /// The only step that may allocate or draw from what the process shares.
    virtual void Pre_Think(float /*dt*/) {}
    virtual void Think(float /*dt*/) {}
    /// A hint that its particles think next: it may fetch into the cache what they begin with.
    virtual void Fetch_Particles() const {}
    /// Answers how many it simulated.
    virtual int Think_Particles(float /*dt*/) { return 0; }
    /// May ask the scene to remove it.
    virtual void Post_Think(float /*dt*/) {}

protected:
    friend class vrScene;

    vrRenderable() = default;
    vrRenderable(const vrRenderable &other)
        : CullObjectClass(other), Transform(other.Transform), RenderModes(other.RenderModes),
          UpdateMode(other.UpdateMode), Hidden(other.Hidden), Still(other.Still)
    {
    }

    /// Enters a scene, which it then has; leaves it, which it still has.
    virtual void On_Added(vrScene & /*scene*/) {}
    virtual void On_Removed(vrScene & /*scene*/) {}
    void Set_Scene(vrScene *scene) { Scene = scene; }

private:
    vrScene *Scene = nullptr;
    Mat3DClass Transform;
    uint32_t RenderModes = 0xffffffff;
    UpdateModeType UpdateMode = UPDATE_WHEN_VISIBLE;
    bool Hidden = false;
    bool Still = false;
    int ThinkGroup = -1;         ///< the scene's, of the frame that runs
    bool HasToldOfParts = false; ///< that it has more parts than think
};

/// The base of what a scene plays as particles.
class vrParticleInterface : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE
};
