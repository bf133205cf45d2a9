#pragma once

#include "MKLib/MKMath/Vectors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace MKTest
{

/// The tolerance grows with what is expected.
inline void Expect_Near(const Vector3 &actual, const Vector3 &expected, const std::string &what = "",
                        float tolerance = 1e-5f)
{
    const float bound = tolerance * (1.0f + glm::length(expected));
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(actual[axis], expected[axis], bound) << what << ", axis " << axis;
}

/// The positions of all vertices.
template <typename Vertex>
void Expect_Corners(const std::vector<Vertex> &vertices, const std::vector<Vector3> &corners)
{
    ASSERT_EQ(vertices.size(), corners.size());
    for (size_t i = 0; i < corners.size(); ++i)
        Expect_Near(vertices[i].Position, corners[i], "corner " + std::to_string(i), 2e-5f);
}

} // namespace MKTest
