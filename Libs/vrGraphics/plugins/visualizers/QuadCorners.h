#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "vrGraphics/plugins/visualizers/QuadBlock.h"

#include <cstdint>

/// The axes of a plane that quads lie in, of any length.
struct vrMKPQuadAxes
{
    Vector3 X;
    Vector3 Y;
};

// Loops over the particles of a block.

/// The corners of quads that lie in one plane, each turned by its rotation.
void Turn_Corners(vrMKPQuadBlock &quads, const uint32_t *rotations, const vrMKPQuadAxes &axes);
/// Tangents along the turned x axis.
void Turn_Tangents(vrMKPQuadBlock &quads, const uint32_t *rotations, const vrMKPQuadAxes &axes);
