#pragma once

class vrRenderContext;
class vrTexture;

/// The full-screen effects of a driver, which run over what a scene drew.
class vrPostFxRunner
{
public:
    virtual ~vrPostFxRunner() = default;

    /// Makes what the effects draw with; once the driver can make shaders.
    virtual bool Init() = 0;
    /// Reads a chain by file name, in place of the one that was there. False, with the reason in the log, when
    /// something was amiss: the chain is then as far as it was read.
    virtual bool Load_Chain(const char *fileName) = 0;
    /// Runs the chain over the scene image, or over `input`, and shows the result in the driver's target.
    virtual void Execute(vrRenderContext &context, vrTexture *input) = 0;
};
