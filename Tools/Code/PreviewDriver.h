#pragma once

#include <string>
#include <vector>

class ViewPanel;
class vrMKParticleEmitter;

/// Where the preview looks for its files, in the order of the search; engine paths that end in a separator.
struct PreviewPaths
{
    std::vector<std::string> Effects;
    std::vector<std::string> Textures;
    std::string PostFxs; ///< empty until the working directory is known
};

struct PreviewStatistics
{
    int ParticlesSimulated = 0;
    int ParticlesRendered = 0;
    int Vertices = 0; ///< of the last frame, as the next ones
    int Draws = 0;
    float SimulateMilliseconds = 0.0f; ///< filled by the core, which sees the whole update
    float PrepareMilliseconds = 0.0f;  ///< selection, sorting and vertex building
    float DrawMilliseconds = 0.0f;     ///< phases and post-effects, up to the flip
    float PresentMilliseconds = 0.0f;  ///< the flip
};

/// The live scene behind the view window: device, scene, camera and lights. The core keeps the windows, the timer, the
/// latches and the choice of the emitter, and tells the scene what to do. On the user interface's thread. Nothing here
/// throws: a scene's update or frame that fails is left out, and the next one goes on.
class PreviewDriver
{
public:
    virtual ~PreviewDriver() = default;

    /// Replaces all search paths.
    virtual void Set_Search_Paths(const PreviewPaths &paths) = 0;
    /// Brings the device up on the panel, which it may keep until `Shutdown_Device`. False when there is none to be
    /// had: the view window then stays hidden.
    virtual bool Init_Device(ViewPanel &panel) = 0;
    /// Makes the scene, empty, with its lights. Once, before the first emitter.
    virtual void Init_Scene() = 0;
    /// Drops scene, background, lights and shadow targets.
    virtual void Free_Scene() = 0;
    virtual void Shutdown_Device() = 0;

    /// Restarts an emitter and puts it into the scene, which holds a reference on it until it is taken out.
    virtual void Add_Emitter(vrMKParticleEmitter &emitter) = 0;
    /// Takes an emitter out of the scene; nothing when it isn't there.
    virtual void Remove_Emitter(vrMKParticleEmitter &emitter) = 0;
    /// Whether a group of the emitter has something alive. What isn't a group doesn't count.
    virtual bool Is_Alive(vrMKParticleEmitter &emitter) = 0;

    virtual void Update_Camera(float seconds) = 0;
    virtual void Update_Scene(float seconds) = 0;
    virtual PreviewStatistics Get_Statistics() = 0;
    /// One whole frame; nothing while the device isn't operational or a frame is open.
    virtual void Render(bool axes, bool background) = 0;

    virtual void Reset_Camera() = 0;
    virtual float Get_Camera_Distance() const = 0; ///< world units
    virtual void Set_Camera_Distance(float distance) = 0;
    virtual void On_Rotate_Begin() = 0;
    virtual void On_Rotate_End() = 0;
    /// Differences of normalised positions: 2 is the panel's whole width or height, y up.
    virtual void On_Mouse_Move(float deltaX, float deltaY) = 0;
    /// The panel's size changed, in pixels.
    virtual void Resize(int width, int height) = 0;

    /// By file name, through the texture paths; empty for none.
    virtual void Set_Background_Image(const std::string &name) = 0;
    virtual void Enable_Heat(bool enabled) = 0;
    virtual void Enable_Bloom(bool enabled) = 0;

    // What some effects need of the world, off at first: a ground for those that bounce and splash, a target for those
    // that seek or strike one. A preview that has neither leaves effects as they play without.
    virtual void Enable_Ground_Plane(bool) {}
    virtual void Enable_Target(bool) {}
};
