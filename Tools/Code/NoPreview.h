#pragma once

#include "Code/PreviewDriver.h"

/// The preview of a run without a device: there is no scene, an emitter that is handed to it goes on as it is, and the
/// view window stays hidden.
class NoPreview : public PreviewDriver
{
public:
    void Set_Search_Paths(const PreviewPaths &) override {}
    bool Init_Device(ViewPanel &) override { return false; }
    void Init_Scene() override {}
    void Free_Scene() override {}
    void Shutdown_Device() override {}
    void Add_Emitter(vrMKParticleEmitter &) override {}
    void Remove_Emitter(vrMKParticleEmitter &) override {}
    bool Is_Alive(vrMKParticleEmitter &) override { return true; } // what doesn't run doesn't end
    void Update_Camera(float) override {}
    void Update_Scene(float) override {}
    PreviewStatistics Get_Statistics() override { return {}; }
    void Render(bool, bool) override {}
    void Reset_Camera() override {}
    float Get_Camera_Distance() const override { return 0.0f; }
    void Set_Camera_Distance(float) override {}
    void On_Rotate_Begin() override {}
    void On_Rotate_End() override {}
    void On_Mouse_Move(float, float) override {}
    void Resize(int, int) override {}
    void Set_Background_Image(const std::string &) override {}
    void Enable_Heat(bool) override {}
    void Enable_Bloom(bool) override {}
};
