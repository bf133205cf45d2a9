#pragma once

#include "vrGraphics/drivercommon/vrPostFxRunner.h"
#include "vrGraphics/postfx/vrPostFxsChain.h"

/// The two main targets that the steps of a run write in turn, and what each mode of a step means by them.
class vrPostFxPingPong
{
public:
    /// Before a run: neither main target is written.
    void Reset() { WasMainWritten = false; }
    bool Was_Main_Written() const { return WasMainWritten; }
    /// The main target that was written last.
    vrFullScreenRTEnum Get_Written() const { return Index == 0 ? PostFxMain1_RT : PostFxMain0_RT; }

    /// What a step reads; the scene image stands for what the run was given too. An HDR mode as its plain one.
    vrFullScreenRTEnum Get_Source(vrPostFxInputMode mode) const;
    /// What it writes: for a main mode, the target that wasn't written last.
    vrFullScreenRTEnum Get_Target(vrPostFxOutputMode mode) const;
    /// After a step's target was taken. Only main modes turn to the other target, and mark it as written: were it
    /// turned by the others too, a step after one of them could be asked to read the target that it writes.
    void Turn(vrPostFxOutputMode mode);

private:
    int Index = 0; ///< the main target 1 - Index was written last
    bool WasMainWritten = false;
};

/// Runs a chain of post-effects over what a scene drew. One for each driver, on the thread that owns it.
class vrPostFxManager final : public vrPostFxRunner
{
public:
    explicit vrPostFxManager(vrGraphicsDriver &driver) : Driver(driver) {}

    bool Init() override;
    bool Load_Chain(const char *fileName) override;
    void Execute(vrRenderContext &context, vrTexture *input) override;

    const vrPostFxsChain &Get_Chain() const { return Chain; }
    /// What the last run chose, in order.
    const std::vector<vrPostFx *> &Get_Chosen() const { return Chosen; }

private:
    /// What is put back after a run.
    struct Saved
    {
        vrRenderModeType Mode;
        vrViewport Viewport;
        SmartPtr<vrRenderTarget> Target;
    };

    void Choose_Effects(const vrRenderContext &context);
    void Execute_Chain(vrRenderContext &context);
    void Execute_Effect(vrPostFx *effect, vrRenderContext &context);
    void Execute_Step(vrPostFxStep *step, vrRenderContext &context);
    vrTexture *Set_Input(vrPostFxInputMode mode);
    vrRenderTarget *Set_Output(vrPostFxOutputMode mode);
    void Draw_Quad(vrShaderInstance &shader, float quadMaxX, float quadMaxY, vrRenderContext &context);
    bool Can_Display();
    void Display_Final_Image(const Saved &saved, vrRenderContext &context);

    vrGraphicsDriver &Driver;
    bool m_isInitialized = false;
    SmartPtr<vrShaderInstance> m_stretchRectShader;
    vrPostFxsChain Chain;
    std::vector<vrPostFx *> Chosen;
    vrPostFxPingPong PingPong;
    vrTexture *Input = nullptr;                    ///< of the run; borrowed
    vrViewport FullViewport;                       ///< of the run, which the rectangle is a part of
    Vector4 QuadRectangle{0.0f, 0.0f, 1.0f, 1.0f}; ///< left, top, right, bottom; parts of the viewport
};
