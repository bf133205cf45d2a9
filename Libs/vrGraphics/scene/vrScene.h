#pragma once

#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrSceneEffectsParams.h"
#include "vrGraphics/scene/vrLightContext.h"
#include "vrGraphics/scene/vrRenderTaskPool.h"
#include "vrGraphics/scene/vrRenderable.h"

#include <optional>
#include <span>
#include <vector>

class vrCamera;
class vrTerrain;

/// What steers a scene from outside; told of each frame before anything else.
class vrSceneOwner
{
public:
    virtual void Update(float dt) = 0;

protected:
    ~vrSceneOwner() = default;
};

/// Something that plays in a scene as a whole until it has finished: the scene then lets go of it.
class vrSceneEffect : public RefCountClass
{
public:
    virtual void Update(float dt) = 0;
    virtual bool Is_Finished() const = 0;
    /// Ahead of each render.
    virtual void Pre_Render(vrRenderContext & /*context*/) {}
};

/// A gust at a place: what moves in the wind bends away from it.
struct WindDisturbanceStruct
{
    Vector3 Position{0.0f};
    float Radius = 0.0f;   ///< world units
    float Strength = 0.0f; ///< units a second, at the centre
    float Duration = 0.0f; ///< seconds
};

struct vrFogParameters
{
    bool Enabled = false;
    RGBAClass Color;
    float Near = 0.0f; ///< world units
    float Far = 1.0f;
    float Density = 0.0f; ///< 0 to 1, at the far end
};

/// The lights of a scene that reach a part of it only, sorted for shaders that look them up by place.
struct vrLightField
{
    static constexpr int SIZE = 512; ///< texels along each side

    vrBounds Bounds;
    std::vector<const vrLightSource *> Lights; ///< the strongest first
};

/// A scene owns what lives and draws together: the renderables, the list of what thinks each frame, the clock, the
/// lights, what a render tells its driver, and the facts of the world that particles ask for. Everything but the parts
/// of a frame that run on the thread pool is the main thread's. A scene can't be cloned.
class vrScene : public vrRenderable
{
public:
    MK_RUN_TIME_TYPE

    static constexpr float TIME_WRAP = 28800.0f;     ///< seconds after which the scene's time starts over
    static constexpr int MAX_THINK_GROUP_SIZE = 256; ///< renderables of one owner that think

    ~vrScene() override;
    /// Asserts and yields null.
    vrRenderable *Clone(vrCloneType type) const override;

    /// One frame of `dt` seconds.
    virtual void Update(float dt);
    using vrRenderable::Render;
    /// Draws the scene through the driver, as `camera` sees it; without a driver it collects and forgets. The flag has
    /// no meaning here.
    virtual void Render(vrCamera * /*camera*/, vrRenderModeType /*mode*/, bool /*flag*/) {}
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
    /// Makes the sun of the light context stand there: a unit vector toward it; a zero one for no sun.
    void Set_Sun_Direction(const Vector3 &direction);
    /// Zero without a sun.
    Vector3 Get_Sun_Direction() const;
    /// Multiplies the colours of everything in the scene.
    void Set_Tint(const RGBAClass &tint) { Tint = tint; }
    const RGBAClass &Get_Tint() const { return Tint; }
    void Enable_Particle_Sleep_Mode(bool enabled) { ParticleSleepMode = enabled; }
    bool Is_Particle_Sleep_Mode() const { return ParticleSleepMode; }

    // What a render goes by.
    vrLightContext *Get_Light_Context() const { return LightContext.Get(); } ///< never null
    const vrSceneEffectsParams &Get_Scene_Effects_Params() const { return SceneEffects; }
    void Set_Scene_Effects_Params(const vrSceneEffectsParams &params) { SceneEffects = params; }
    /// 0 is night and 1 is day.
    void Set_Day_Night_Factor(float factor) { DayNightFactor = factor; }
    float Get_Day_Night_Factor() const { return DayNightFactor; }
    void Set_Fog(const vrFogParameters &fog) { Fog = fog; }
    const vrFogParameters &Get_Fog() const { return Fog; }
    void Set_Untextured(bool untextured) { Untextured = untextured; }
    bool Is_Untextured() const { return Untextured; }
    /// Where the water's surface is, which reflections and refractions stop at; nothing for no water.
    void Set_Water_Height(std::optional<float> height) { WaterHeight = height; }
    std::optional<float> Get_Water_Height() const { return WaterHeight; }
    void Enable_Light_Field(bool enabled) { LightFieldEnabled = enabled; }
    bool Is_Light_Field_Enabled() const { return LightFieldEnabled; }
    /// Whether the light field covers the bounds that were given and not those of the terrain or the lights.
    void Set_Use_Light_Field_Scene_Bounds(bool use) { UseLightFieldSceneBounds = use; }
    void Set_Light_Field_Scene_Bounds(const vrBounds &bounds) { LightFieldSceneBounds = bounds; }
    /// Of the last normal render; null before one with the light field on.
    const vrLightField *Get_Light_Field() const { return LightField ? &*LightField : nullptr; }

    /// Borrowed; may be null.
    void Set_Scene_Owner(vrSceneOwner *owner) { SceneOwner = owner; }
    /// Takes a share until the effect has finished. Null asserts.
    void Add_Effect(vrSceneEffect *effect);
    int Get_Effect_Count() const { return static_cast<int>(Effects.size()); }
    void Add_Wind_Disturbance(const WindDisturbanceStruct &disturbance) { WindDisturbances.push_back(disturbance); }
    void Clear_Wind_Disturbances() { WindDisturbances.clear(); }
    std::span<const WindDisturbanceStruct> Get_Wind_Disturbances() const { return WindDisturbances; }

    /// While a render collects: has the renderable draw in a phase of the context.
    void Add_Simple_Task(vrRenderContext &context, vrRenderable &renderable, vrRenderPhaseEnum phase,
                         const vrBounds &bounds, float sortBias);
    /// Whether things move without thinking, so that what is drawn has to follow by itself.
    static bool Has_To_Catch_Up();
    /// Process-wide: calls with the step of each frame of each scene. Null for nothing.
    static void Set_Frame_Call(void (*call)(float dt)) { FrameCall = call; }

    // A thing enters and leaves: it is told, and thinks as long as it is here. For what holds shares, and for what is
    // in a scene and has parts.
    void Enter(vrRenderable &renderable);
    void Leave(vrRenderable &renderable);

    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    vrScene();
    vrRenderTaskPool &Get_Tasks() { return Tasks; }
    std::span<const SmartPtr<vrSceneEffect>> Get_Effects() const { return Effects; }
    /// Sorts the lights anew and hands them to the driver.
    void Refresh_Light_Field();
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
    void Update_Effects(float dt);
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
    RGBAClass Tint;
    bool ParticleSleepMode = false;

    SmartPtr<vrLightContext> LightContext;
    vrSceneEffectsParams SceneEffects;
    float DayNightFactor = 1.0f;
    vrFogParameters Fog;
    bool Untextured = false;
    std::optional<float> WaterHeight;
    bool LightFieldEnabled = false;
    bool UseLightFieldSceneBounds = false;
    vrBounds LightFieldSceneBounds;
    std::optional<vrLightField> LightField;
    vrSceneOwner *SceneOwner = nullptr;
    std::vector<SmartPtr<vrSceneEffect>> Effects;
    std::vector<WindDisturbanceStruct> WindDisturbances;
    vrRenderTaskPool Tasks;
    static void (*FrameCall)(float dt);
};

/// Stands for a scene where there is none to speak of: it takes nothing.
class vrNullScene final : public vrScene
{
public:
    MK_RUN_TIME_TYPE

    bool Add_Renderable(vrRenderable * /*renderable*/) override { return false; }
    bool Remove_Renderable(vrRenderable * /*renderable*/) override { return false; }
};
