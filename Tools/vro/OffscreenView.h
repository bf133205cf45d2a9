#pragma once

#include "MKLib/RefCount.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class vrCamera;
class vrSimpleScene;
class vrTexture;

namespace vro
{

struct RenderOptions;

/// The OpenGL driver on a surface off-screen. One at a time; what is loaded while it is there gets its textures and
/// shaders, and must be gone before it.
class OffscreenView
{
public:
    /// Null, with the reason in `error`: there is no device to be had, or the background's picture isn't there.
    /// `workingDirectory` holds Art and Run. Borrows the options.
    static std::unique_ptr<OffscreenView> Open(const RenderOptions &options, const std::string &workingDirectory,
                                               std::string &error);
    OffscreenView(const OffscreenView &) = delete;
    OffscreenView &operator=(const OffscreenView &) = delete;
    ~OffscreenView();

    /// Gives a scene its lights and its post-effects.
    void Furnish(vrSimpleScene &scene) const;
    /// Draws a scene; four bytes a pixel, rows from the top, opaque. False, with the reason, when the device is lost.
    bool Draw(vrSimpleScene &scene, std::vector<uint8_t> &rgba, std::string &error);
    /// What draws, for messages.
    std::string Describe() const;

private:
    struct Device;

    explicit OffscreenView(const RenderOptions &options);
    bool Start(const std::string &workingDirectory, std::string &error);
    void Begin_Picture();

    const RenderOptions &Options;
    std::unique_ptr<Device> Holder;
    SmartPtr<vrCamera> Camera;
    SmartPtr<vrTexture> Background;
};

} // namespace vro
