#pragma once

/// What the draws of particles have around them. All of it expects a driver, on the thread that owns it.

#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrGraphics/drivercommon/vrVertices.h"

class vrCamera;
class vrMKPSimpleVisualizerData;
class vrRenderContext;
class vrShaderInstance;
struct Mat3DClass;

/// The most vertices of whole quads that the driver draws at once.
constexpr int MAX_DRAW_VERTICES = (MAX_PRIM_VERTICES - 1) / 4 * 4;

/// Moves the camera of a draw away from what it sees, and back when it goes. Without an offset it does nothing, and
/// needs no camera.
class vrMKPDepthOffsetScope
{
public:
    vrMKPDepthOffsetScope(vrCamera *camera, vrMKPSimpleVisualizerData &data, float offset);
    vrMKPDepthOffsetScope(const vrMKPDepthOffsetScope &) = delete;
    vrMKPDepthOffsetScope &operator=(const vrMKPDepthOffsetScope &) = delete;
    ~vrMKPDepthOffsetScope();

private:
    void Move_To(const Mat3DClass &transform);

    vrMKPSimpleVisualizerData &Data;
    vrCamera *Camera = nullptr;
};

/// The first pass of a shader, from its begin to its end.
class vrMKPPassScope
{
public:
    vrMKPPassScope(vrShaderInstance &shader, const vrRenderContext &context, bool ignoresDepth);
    vrMKPPassScope(const vrMKPPassScope &) = delete;
    vrMKPPassScope &operator=(const vrMKPPassScope &) = delete;
    ~vrMKPPassScope();

private:
    vrShaderInstance &Shader;
    vrRenderModeType Mode;
    bool ChangesMode;
};
