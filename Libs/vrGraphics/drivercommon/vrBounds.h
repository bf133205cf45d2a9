#pragma once

#include "MKLib/MKMath/Vectors.h"

/// An axis-aligned box in world space.
struct vrBounds
{
    Vector3 Center{0.0f};
    Vector3 Extent{0.0f}; ///< half of its size along each axis
};
