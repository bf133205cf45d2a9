#pragma once

#include "vrGraphics/particle/vrWorld.h"

#include <cstdint>
#include <vector>

/// Ground over a grid of heights, as a picture gives them: seen from above, y upward, the first row is the far edge.
/// The outermost heights stand on the edges of a rectangle about the origin; between them the ground is bilinear, and
/// beyond the edges it goes on as the nearest edge has it.
class vrHeightField final : public vrTerrain
{
public:
    /// `levels` has `columns` times `rows` values, row by row: 0 stands for height 0 and 255 for `height`. `sizeX` and
    /// `sizeY` are the rectangle's. All in world units. Expects at least one level, as many as stated, and sizes above
    /// 0.
    vrHeightField(const std::vector<uint8_t> &levels, int columns, int rows, float sizeX, float sizeY, float height);

    float Get_Height(float x, float y) const override;
    vrHeightRange Get_Height_Range() const override { return Range; }
    /// The ground's very surface, not a triangulation of it. A way that starts on the ground and leads down goes
    /// through it at its start.
    bool Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const override;

private:
    /// One cell's surface: Base + SlopeX a + SlopeY b + Twist a b, with a and b 0 to 1 across the cell.
    struct Patch
    {
        double Base, SlopeX, SlopeY, Twist;
    };

    double Grid_X(double x) const { return x * ScaleX + OffsetX; }
    double Grid_Y(double y) const { return y * ScaleY + OffsetY; }
    int Column_Of(double gridX) const;
    int Row_Of(double gridY) const;
    Patch Get_Patch(int column, int row) const;
    Vector3 Get_Normal(double gridX, double gridY, const Patch &patch, int column, int row) const;

    std::vector<float> Heights; ///< row by row
    vrHeightRange Range;
    int Columns;
    int Rows;
    // World to grid: column = x * ScaleX + OffsetX. A grid of one column or row has a scale of 0.
    double ScaleX, OffsetX;
    double ScaleY, OffsetY;
};
