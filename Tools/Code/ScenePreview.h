#pragma once

#include "Code/PreviewDriver.h"

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"

#include <array>
#include <functional>
#include <memory>

class vrCamera;
class vrDepthBuffer;
class vrDevice;
class vrDirectionalLight;
class vrMovingTarget;
class vrRenderTarget;
class vrSimpleCameraController;
class vrSimpleScene;
class vrTerrain;
class vrTexture;

/// The preview on a scene of the engine, drawn by whatever device it is given: with the null device everything runs but
/// for the picture.
class ScenePreview final : public PreviewDriver
{
public:
    /// Makes the device that draws into a panel; null, with the reason in `error`, where there is none to be had.
    using DeviceMaker = std::function<std::unique_ptr<vrDevice>(ViewPanel &panel, std::string &error)>;

    explicit ScenePreview(DeviceMaker makeDevice);
    ~ScenePreview() override;

    void Set_Search_Paths(const PreviewPaths &paths) override;
    bool Init_Device(ViewPanel &panel) override;
    void Init_Scene() override;
    void Free_Scene() override;
    void Shutdown_Device() override;

    void Add_Emitter(vrMKParticleEmitter &emitter) override;
    void Remove_Emitter(vrMKParticleEmitter &emitter) override;
    bool Is_Alive(vrMKParticleEmitter &emitter) override;

    void Update_Camera(float seconds) override;
    void Update_Scene(float seconds) override;
    PreviewStatistics Get_Statistics() override;
    void Render(bool axes, bool background) override;

    void Reset_Camera() override;
    float Get_Camera_Distance() const override;
    void Set_Camera_Distance(float distance) override;
    void On_Rotate_Begin() override;
    void On_Rotate_End() override;
    void On_Mouse_Move(float deltaX, float deltaY) override;
    void Resize(int width, int height) override;

    void Set_Background_Image(const std::string &name) override;
    void Enable_Heat(bool enabled) override;
    void Enable_Bloom(bool enabled) override;
    void Enable_Ground_Plane(bool enabled) override;
    void Enable_Target(bool enabled) override;

    /// Why the last `Init_Device` had no device.
    const std::string &Get_Device_Error() const { return DeviceError; }

private:
    bool Begin_Frame();
    void Draw_Axes();
    void Enable_PostFx(uint32_t mask, bool enabled);
    void Tell_Game_State();

    DeviceMaker MakeDevice;
    std::unique_ptr<vrDevice> Device;
    std::string DeviceError;
    SmartPtr<vrSimpleScene> Scene;
    SmartPtr<vrCamera> Camera;
    std::unique_ptr<vrSimpleCameraController> Controller;
    std::array<SmartPtr<vrDirectionalLight>, 3> Lights;
    SmartPtr<vrRenderTarget> ShadowTarget;
    SmartPtr<vrDepthBuffer> ShadowDepth;
    SmartPtr<vrTexture> Background;
    std::unique_ptr<vrTerrain> Ground;
    bool HasTarget = false;
    SmartPtr<vrMKParticleEmitter> Emitter; ///< added last; one that is spent has left the scene by itself
    float FrameMilliseconds = 0.0f;        ///< of the last frame, up to the flip
    float FlipMilliseconds = 0.0f;
};
