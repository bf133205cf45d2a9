#pragma once

#include "vrGraphics/scene/vrRenderable.h"

#include <vector>

class vrTerrain;

/// A scene owns what lives together: the renderables, the list of what thinks each frame, the clock, and the facts of
/// the world that particles ask for. Everything but the parts of a frame that run on the thread pool is the main
/// thread's. A scene can't be cloned.
class vrScene : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE

    static constexpr float TIME_WRAP = 28800.0f;    ///< seconds after which the scene's time starts over
    static constexpr int MAX_THINK_GROUP_SIZE = 256; ///< renderables of one owner that think

    ~vrScene() override;
    /// Asserts and yields null.
    vrRenderable *Clone(vrCloneType type) const override;

    /// One frame of `dt` seconds.
    virtual void Update(float dt);
    /// Takes a share in a renderable; one of another scene leaves that first. False for null and for one that is here
    /// already.
    virtual bool Add_Renderable(vrRenderable *renderable) = 0;
    /// False when it isn't here.
    virtual bool Remove_Renderable(vrRenderable *renderable) = 0;
    /// Removes it at the end of the frame that runs, or at once.
    void Remove_Object(vrRenderable &renderable, int flags);

    float Get_Time() const { return Time; } ///< seconds, below TIME_WRAP
    float Get_Frame_Time() const { return FrameTime; }
    uint32_t Get_Frame_Count() const { return FrameCount; }
    float Get_Elapsed_Time() const { return ElapsedTime; } ///< seconds, all of them

    /// The transform of the active camera, which looks down its negative z axis.
    void Set_Camera(const Mat3DClass &camera) { Camera = camera; }
    const Mat3DClass &Get_Camera() const { return Camera; }
    /// Borrowed; null for a world without ground.
    void Set_Terrain(const vrTerrain *terrain) { Terrain = terrain; }
    const vrTerrain *Get_Terrain() const { return Terrain; }
    void Set_Wind(const Vector3 &wind) { Wind = wind; } ///< units a second
    const Vector3 &Get_Wind() const { return Wind; }
    /// A unit vector toward the sun; a zero one for no sun.
    void Set_Sun_Direction(const Vector3 &direction) { SunDirection = direction; }
    const Vector3 &Get_Sun_Direction() const { return SunDirection; }
    /// Multiplies the colours of everything in the scene.
    void Set_Tint(const RGBAClass &tint) { Tint = tint; }
    const RGBAClass &Get_Tint() const { return Tint; }
    void Enable_Particle_Sleep_Mode(bool enabled) { ParticleSleepMode = enabled; }
    bool Is_Particle_Sleep_Mode() const { return ParticleSleepMode; }

    // A thing enters and leaves: it is told, and thinks as long as it is here. For what holds shares, and for what is in
    // a scene and has parts.
    void Enter(vrRenderable &renderable);
    void Leave(vrRenderable &renderable);

    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    vrScene() = default;
    /// Whether a frame runs, in which nothing leaves.
    bool Is_In_Update() const { return InUpdate; }

private:
    /// Things of one owner, which think one after the other.
    struct RenderThinkGroup
    {
        vrRenderable *Owner = nullptr;
        int Count = 0;
        vrRenderable *Entries[MAX_THINK_GROUP_SIZE];
    };

    void Process_Think_List(float dt);
    void Group_By_Owner();
    void Think_Groups(float dt);
    void Think_Particles_Of_All(float dt);

    std::vector<vrRenderable *> ThinkList;
    std::vector<RenderThinkGroup> ThinkGroups; ///< the first `ThinkGroupCount` are of the frame that runs
    int ThinkGroupCount = 0;
    std::vector<vrRenderable *> ParticleList;
    std::vector<SmartPtr<vrRenderable>> ReleaseList;
    bool InUpdate = false;

    float Time = 0.0f;
    float FrameTime = 0.0f;
    uint32_t FrameCount = 0;
    float ElapsedTime = 0.0f;
    Mat3DClass Camera;
    const vrTerrain *Terrain = nullptr;
    Vector3 Wind{0.0f};
    Vector3 SunDirection{0.0f};
    RGBAClass Tint;
    bool ParticleSleepMode = false;
};
