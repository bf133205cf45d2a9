#pragma once

#include "Code/PreviewDriver.h"
#include "MKLib/MKString.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <string>
#include <vector>

namespace ToolTest
{

/// What a RecordingPreview was told, and what it answers. Outlives the preview.
struct PreviewRecord
{
    std::vector<std::string> calls;
    std::vector<PreviewPaths> paths;
    std::vector<float> steps; ///< seconds of the scene's updates
    bool hasDevice = true;
    bool alive = true;
    float cameraDistance = 550.0f;

    /// The calls so far, which are forgotten.
    std::vector<std::string> Take()
    {
        std::vector<std::string> taken;
        taken.swap(calls);
        return taken;
    }
};

/// A preview with a device and no picture, which writes down what it is told.
class RecordingPreview final : public PreviewDriver
{
public:
    explicit RecordingPreview(PreviewRecord &previewRecord) : record(previewRecord) {}
    ~RecordingPreview() override { Note("destroy"); }

    void Set_Search_Paths(const PreviewPaths &paths) override { record.paths.push_back(paths); }
    bool Init_Device(ViewPanel &) override { return Note("init device"), record.hasDevice; }
    void Init_Scene() override { Note("init scene"); }
    void Free_Scene() override { Note("free scene"); }
    void Shutdown_Device() override { Note("shutdown device"); }
    void Add_Emitter(vrMKParticleEmitter &emitter) override { Note("add " + Name(emitter)); }
    void Remove_Emitter(vrMKParticleEmitter &emitter) override
    {
        Note("remove " + Name(emitter) + (emitter.Get_Scene_Reassign_Hint() ? " with hint" : ""));
    }
    bool Is_Alive(vrMKParticleEmitter &) override { return record.alive; }
    void Update_Camera(float) override {}
    void Update_Scene(float seconds) override
    {
        record.steps.push_back(seconds);
        Note(seconds == 0.0f ? "update by 0" : "update");
    }
    PreviewStatistics Get_Statistics() override { return {70, 30}; }
    void Render(bool axes, bool background) override
    {
        Note(std::string("render") + (axes ? " axes" : "") + (background ? " background" : ""));
    }
    void Reset_Camera() override { Note("reset camera"); }
    float Get_Camera_Distance() const override { return record.cameraDistance; }
    void Set_Camera_Distance(float distance) override { record.cameraDistance = distance; }
    void On_Rotate_Begin() override { Note("rotate begin"); }
    void On_Rotate_End() override { Note("rotate end"); }
    void On_Mouse_Move(float x, float y) override { Note("move " + std::to_string(x) + " " + std::to_string(y)); }
    void Resize(int width, int height) override { Note(std::to_string(width) + "x" + std::to_string(height)); }
    void Set_Background_Image(const std::string &name) override { Note("background " + name); }
    void Enable_Heat(bool enabled) override { Note(enabled ? "heat on" : "heat off"); }
    void Enable_Bloom(bool enabled) override { Note(enabled ? "bloom on" : "bloom off"); }
    void Enable_Ground_Plane(bool enabled) override { Note(enabled ? "ground on" : "ground off"); }
    void Enable_Target(bool enabled) override { Note(enabled ? "target on" : "target off"); }

private:
    static std::string Name(const vrMKParticleEmitter &emitter)
    {
        return std::string(std::string_view(emitter.Get_Name()));
    }
    void Note(std::string call) { record.calls.push_back(std::move(call)); }

    PreviewRecord &record;
};

} // namespace ToolTest
