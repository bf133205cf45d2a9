#pragma once

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/scene/vrRenderable.h"

#include <array>

/// Gives out transforms between two states of a thing.
class vrTransformInterpolator
{
public:
    struct State
    {
        Vector3 Translation{0.0f};
        QuaternionClass Rotation{1.0f, 0.0f, 0.0f, 0.0f}; ///< of unit length
        Vector3 Scale{1.0f};                              ///< of the rows of the rotation, one each
    };

    /// `index` is 0 or 1, here and in the next.
    void Set_State(int index, const State &state) { States[static_cast<size_t>(index)] = state; }
    Mat3DClass Get_Transform(int index) const { return To_Transform(States[static_cast<size_t>(index)]); }
    /// From state 0 at a fraction of 0 to state 1 at 1; asserts that the fraction lies between.
    Mat3DClass Interpolate(float interpolation_fraction) const;

private:
    static Mat3DClass To_Transform(const State &state);

    std::array<State, 2> States;
};

/// Moves a renderable smoothly between two states that the game's logic gave it.
class vrRenderableInterpolator
{
public:
    /// Of the flags of a renderable's model: that it has a transform to be driven.
    static constexpr uint32_t MODEL_HAS_TRANSFORM = 0x40;

    /// Takes a share in the renderable.
    vrRenderableInterpolator(vrRenderable *renderable, uint32_t modelFlags)
        : Renderable(renderable), ModelFlags(modelFlags)
    {
    }

    vrTransformInterpolator &Get_Transform_Interpolator() { return Transform; }
    /// Places the renderable; asserts that there is one.
    void Interpolate(float interpolation_fraction);

private:
    SmartPtr<vrRenderable> Renderable;
    uint32_t ModelFlags;
    vrTransformInterpolator Transform;
};
