#pragma once

#include "MKLib/MKMath/Vectors.h"

/// A 3 by 4 affine transform, by rows: a point p maps to (dot(Row[i].xyz, p) + Row[i].w) for i in 0..2.
struct Mat3DClass
{
    Vector4 Row[3] = {{1.0f, 0.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f, 0.0f}};

    friend bool operator==(const Mat3DClass &, const Mat3DClass &) = default;
};
