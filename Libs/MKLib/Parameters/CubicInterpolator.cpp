#include "MKLib/Parameters/CubicInterpolator.h"

#include "MKLib/File/XMLDatabase.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKLib/MKMath/Vectors.h"
#include "MKLib/Parameters/KeySearch.h"
#include "MKLib/XMLTypeConverter.h"

#include <algorithm>
#include <cmath>
#include <mutex>

static MKDebug::Logger InterpolatorLog("InterpolatorLog");

namespace
{

constexpr size_t USUAL_POINT_COUNT = 4; ///< most curves of an effect have no more

/// NaNs go last, so that the order is total whatever a file holds.
bool Is_Before(const CubicInterpolator::DPointClass &left, const CubicInterpolator::DPointClass &right)
{
    return left.X < right.X || (std::isnan(right.X) && !std::isnan(left.X));
}

/// Slope from one point to the next. Two points of one x have none, and a flat one stands in.
float Slope(const CubicInterpolator::DPointClass &from, const CubicInterpolator::DPointClass &to)
{
    const float h = to.X - from.X;
    return h == 0.0f ? 0.0f : (to.Y - from.Y) / h;
}

float Value_Between(const CubicInterpolator::DPointClass &lo, const CubicInterpolator::DPointClass &hi, float x)
{
    const float h = hi.X - lo.X;
    const float a = (hi.X - x) / h;
    const float b = (x - lo.X) / h;
    const float bend = (a * a * a - a) * lo.SecondDerivative + (b * b * b - b) * hi.SecondDerivative;
    return a * lo.Y + b * hi.Y + bend * (h * h) * 0.16666667f;
}

} // namespace

CubicInterpolator::CubicInterpolator(const CubicInterpolator &other)
    : Calculated(other.Is_Calculated()), Points(other.Points)
{
}

CubicInterpolator &CubicInterpolator::operator=(const CubicInterpolator &other)
{
    Points = other.Points;
    Calculated.store(other.Is_Calculated(), std::memory_order_relaxed);
    return *this;
}

void CubicInterpolator::Add_Point(float x, float y)
{
    if (Points.empty()) Points.reserve(USUAL_POINT_COUNT);
    Points.push_back({x, y, 0.0f});
    Calculated.store(false, std::memory_order_relaxed);
}

void CubicInterpolator::Clear()
{
    Points.clear();
    Calculated.store(false, std::memory_order_relaxed);
}

bool CubicInterpolator::Get_Range(float &first, float &last) const
{
    if (Points.empty()) return false;
    first = Points.front().X;
    last = Points.back().X;
    return true;
}

bool CubicInterpolator::Load_XML(XMLDatabase &database)
{
    Clear();
    if (!database.Enter_First_Child()) return database.Is_Loaded();
    bool loaded = true;
    do {
        MK::String text;
        Vector2 point{0.0f};
        if (!database.Is_Key("Point")) continue;
        if (database.Get_Value(&text) == S_OK && XMLTypeConverter::Convert(text, point))
            Add_Point(point.x, point.y);
        else
            loaded = false;
    } while (database.Next_Sibling());
    return database.Leave() && loaded;
}

float CubicInterpolator::Get_Value(float x) const
{
    Solve();
    if (Points.empty()) return 0.0f;
    const auto above = std::upper_bound(Points.begin(), Points.end(), x,
                                        [](float value, const DPointClass &point) { return value < point.X; });
    if (above == Points.end()) return Points.back().Y;
    if (above == Points.begin()) return above->Y;
    return Value_Between(*(above - 1), *above, x);
}

void CubicInterpolator::Get_Values(const float *x, int count, float *values) const
{
    Solve();
    const int pointCount = Get_Point_Count();
    // With points that are at no number there is no order to count by, and what the search finds has to do.
    if (pointCount == 0 || std::isnan(Points.back().X)) {
        for (int i = 0; i < count; ++i) values[i] = Get_Value(x[i]);
        return;
    }
    const DPointClass *points = Points.data();
    int places[KeySearch::BLOCK];
    for (int first = 0; first < count; first += KeySearch::BLOCK) {
        const int size = std::min(count - first, KeySearch::BLOCK);
        KeySearch::Find_Places<&DPointClass::X>(points, pointCount, x + first, size, places);
        for (int i = 0; i < size; ++i) {
            const int above = places[i];
            values[first + i] = above == 0            ? points[0].Y
                                : above == pointCount ? points[pointCount - 1].Y
                                                      : Value_Between(points[above - 1], points[above], x[first + i]);
        }
    }
}

void CubicInterpolator::Solve() const
{
    if (Is_Calculated()) return;
    // One lock for all curves: a curve is solved once, and waits are rarer than mutexes would be large.
    static std::mutex lock;
    const std::lock_guard guard(lock);
    if (Is_Calculated()) return;
    std::stable_sort(Points.begin(), Points.end(), Is_Before);
    Calculate();
    Calculated.store(true, std::memory_order_release);
}

void CubicInterpolator::Calculate() const
{
    const size_t count = Points.size();
    for (size_t i = 1; i < count; ++i) {
        if (Points[i].X != Points[i - 1].X) continue;
        MK_LOG(InterpolatorLog, MKDebug::LogLevel::Error, "Bad input\n");
        MK_ASSERT(false, "false");
    }
    for (DPointClass &point : Points) point.SecondDerivative = 0.0f;
    if (count < 3) return;

    // Elimination downwards. Row i says d2[i] = factor[i] d2[i + 1] + right[i]; the factor waits in `factors`, the
    // right side in the point itself.
    std::vector<float> factors(count, 0.0f);
    for (size_t i = 1; i < count - 1; ++i) {
        const float span = Points[i + 1].X - Points[i - 1].X;
        if (span == 0.0f) continue;
        const float fraction = (Points[i].X - Points[i - 1].X) / span;
        const float pivot = fraction * factors[i - 1] + 2.0f;
        const float bend = Slope(Points[i], Points[i + 1]) - Slope(Points[i - 1], Points[i]);
        factors[i] = (fraction - 1.0f) / pivot;
        Points[i].SecondDerivative = (6.0f * bend / span - fraction * Points[i - 1].SecondDerivative) / pivot;
    }
    for (size_t i = count - 1; i-- > 1;) Points[i].SecondDerivative += factors[i] * Points[i + 1].SecondDerivative;
}
