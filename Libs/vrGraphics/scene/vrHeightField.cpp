#include "vrGraphics/scene/vrHeightField.h"

#include "MKLib/MKDebug/Assert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr double NEVER = std::numeric_limits<double>::infinity();

/// Where a way crosses the lines of the grid along one axis: 0, 1, to `last`. Times are fractions of the way.
struct LineCrossings
{
    LineCrossings(double start, double step, int last) : Start(start), Step(step), Last(last)
    {
        if (step > 0.0) Line = start < 0.0 ? 0.0 : std::floor(start) + 1.0;
        if (step < 0.0) Line = start > last ? last : std::ceil(start) - 1.0;
    }
    double Next_Time() const
    {
        if (Step == 0.0 || !(Line >= 0.0 && Line <= Last)) return NEVER;
        return (Line - Start) / Step;
    }
    void Advance() { Line += Step > 0.0 ? 1.0 : -1.0; }
    double At(double time) const { return std::clamp(Start + Step * time, 0.0, double(Last)); }

    double Start;
    double Step;
    double Line = -1.0;
    int Last;
};

/// Where C + B s + A s^2 passes from 0 or above to below, first, for s of 0 to 1; negative where it doesn't.
double Find_Descent(double a, double b, double c)
{
    const double end = a + b + c;
    if (c >= 0.0 && end >= 0.0 && a <= 0.0) return -1.0; // bulges away from 0
    const double discriminant = b * b - 4.0 * a * c;
    double root = -1.0;
    if (discriminant > 0.0) {
        // The root with a falling slope, -sqrt(discriminant), in the form that doesn't cancel.
        const double slope = std::sqrt(discriminant);
        if (b <= 0.0)
            root = 2.0 * c / (slope - b);
        else if (a < 0.0)
            root = (-b - slope) / (2.0 * a);
    }
    if (c >= 0.0 && end < 0.0) return std::clamp(root, 0.0, 1.0); // it passes, whatever rounding says
    return root <= 1.0 ? root : -1.0;
}

/// A little wider than the heights are, for what rounding does between them. No limits where one is no number.
vrHeightRange Find_Range(const std::vector<float> &heights)
{
    vrHeightRange range{std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
    bool areNumbers = true;
    for (const float height : heights) {
        range.Least = std::min(range.Least, height);
        range.Greatest = std::max(range.Greatest, height);
        areNumbers &= std::isfinite(height);
    }
    if (!areNumbers) return {-std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity()};
    const float margin = std::max(std::fabs(range.Least), std::fabs(range.Greatest)) * 1e-6f;
    return {range.Least - margin, range.Greatest + margin};
}

} // namespace

vrHeightField::vrHeightField(const std::vector<uint8_t> &levels, int columns, int rows, float sizeX, float sizeY,
                             float height)
    : Columns(columns), Rows(rows), ScaleX((columns - 1) / double(sizeX)), OffsetX((columns - 1) * 0.5),
      ScaleY(-(rows - 1) / double(sizeY)), OffsetY((rows - 1) * 0.5)
{
    MK_ASSERT(columns > 0 && rows > 0 && levels.size() == size_t(columns) * size_t(rows),
              "levels.size() == columns * rows");
    MK_ASSERT(sizeX > 0.0f && sizeY > 0.0f, "sizeX > 0.0f && sizeY > 0.0f");
    Heights.reserve(levels.size());
    for (const uint8_t level : levels) Heights.push_back(float(level) / 255.0f * height);
    Range = Find_Range(Heights);
}

int vrHeightField::Column_Of(double gridX) const
{
    return std::clamp(static_cast<int>(gridX), 0, std::max(Columns - 2, 0));
}

int vrHeightField::Row_Of(double gridY) const
{
    return std::clamp(static_cast<int>(gridY), 0, std::max(Rows - 2, 0));
}

vrHeightField::Patch vrHeightField::Get_Patch(int column, int row) const
{
    const int nextColumn = std::min(column + 1, Columns - 1);
    const int nextRow = std::min(row + 1, Rows - 1);
    const auto height = [this](int c, int r) { return double(Heights[size_t(r) * size_t(Columns) + size_t(c)]); };
    const double base = height(column, row);
    const double slopeX = height(nextColumn, row) - base;
    const double slopeY = height(column, nextRow) - base;
    return {base, slopeX, slopeY, height(nextColumn, nextRow) - base - slopeX - slopeY};
}

float vrHeightField::Get_Height(float x, float y) const
{
    if (!Is_Valid(x) || !Is_Valid(y)) return 0.0f;
    const double gridX = std::clamp(Grid_X(x), 0.0, double(Columns - 1));
    const double gridY = std::clamp(Grid_Y(y), 0.0, double(Rows - 1));
    const int column = Column_Of(gridX);
    const int row = Row_Of(gridY);
    const Patch patch = Get_Patch(column, row);
    const double a = gridX - column;
    const double b = gridY - row;
    return static_cast<float>(patch.Base + patch.SlopeX * a + (patch.SlopeY + patch.Twist * a) * b);
}

/// Beyond an edge the ground doesn't change across it.
Vector3 vrHeightField::Get_Normal(double gridX, double gridY, const Patch &patch, int column, int row) const
{
    const double a = std::clamp(gridX, 0.0, double(Columns - 1)) - column;
    const double b = std::clamp(gridY, 0.0, double(Rows - 1)) - row;
    const bool isInsideX = gridX >= 0.0 && gridX <= Columns - 1;
    const bool isInsideY = gridY >= 0.0 && gridY <= Rows - 1;
    const double slopeX = isInsideX ? (patch.SlopeX + patch.Twist * b) * ScaleX : 0.0;
    const double slopeY = isInsideY ? (patch.SlopeY + patch.Twist * a) * ScaleY : 0.0;
    const double length = std::sqrt(slopeX * slopeX + slopeY * slopeY + 1.0);
    return {static_cast<float>(-slopeX / length), static_cast<float>(-slopeY / length),
            static_cast<float>(1.0 / length)};
}

// Between two crossings of grid lines the way stays over one cell, or beyond one edge, and its height above the ground
// is a quadratic of the time.
bool vrHeightField::Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const
{
    if (!Is_Valid(from) || !Is_Valid(to)) return false;
    LineCrossings alongX(Grid_X(from.x), (double(to.x) - from.x) * ScaleX, Columns - 1);
    LineCrossings alongY(Grid_Y(from.y), (double(to.y) - from.y) * ScaleY, Rows - 1);
    const double stepZ = double(to.z) - from.z;
    bool wasAbove = false;
    for (double start = 0.0; start < 1.0;) {
        const double nextX = alongX.Next_Time();
        const double nextY = alongY.Next_Time();
        const double end = std::clamp(std::min(nextX, nextY), start, 1.0);
        const double startX = alongX.At(start);
        const double startY = alongY.At(start);
        const double deltaX = alongX.At(end) - startX;
        const double deltaY = alongY.At(end) - startY;
        const int column = Column_Of(startX + 0.5 * deltaX);
        const int row = Row_Of(startY + 0.5 * deltaY);
        const Patch patch = Get_Patch(column, row);
        const double a = startX - column;
        const double b = startY - row;
        const double above =
            from.z + stepZ * start - (patch.Base + patch.SlopeX * a + (patch.SlopeY + patch.Twist * a) * b);
        const double climb = stepZ * (end - start) - (patch.SlopeX + patch.Twist * b) * deltaX -
                             (patch.SlopeY + patch.Twist * a) * deltaY;
        const double bend = -patch.Twist * deltaX * deltaY;
        // Rounding at the seam of two cells must not leave a gap.
        const double descent = wasAbove && above < 0.0 ? 0.0 : Find_Descent(bend, climb, above);
        if (descent >= 0.0) {
            const double time = start + (end - start) * descent;
            hit = {static_cast<float>(from.x + (double(to.x) - from.x) * time),
                   static_cast<float>(from.y + (double(to.y) - from.y) * time),
                   static_cast<float>(from.z + stepZ * time)};
            normal =
                Get_Normal(alongX.Start + alongX.Step * time, alongY.Start + alongY.Step * time, patch, column, row);
            return true;
        }
        wasAbove = above + climb + bend >= 0.0;
        if (nextX <= end) alongX.Advance();
        if (nextY <= end) alongY.Advance();
        start = end;
    }
    return false;
}
