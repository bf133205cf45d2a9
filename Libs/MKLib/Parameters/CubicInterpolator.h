#pragma once

#include <atomic>
#include <vector>

class XMLDatabase;

/// A curve through points.
class Interpolator
{
public:
    virtual ~Interpolator() = default;
    virtual void Add_Point(float x, float y) = 0;
    virtual float Get_Value(float x) const = 0;
    /// The x of the first and the last point, in the order in which they were sorted last. False without points.
    virtual bool Get_Range(float &first, float &last) const = 0;
    /// Takes the points from the element under the cursor, in place of those that were: a child `Point` each, whose
    /// text is "x y". Other children are passed over. A point that can't be read is left out, and the result is then
    /// false.
    virtual bool Load_XML(XMLDatabase &database) = 0;
    virtual void Clear() = 0;
};

/// Natural cubic spline: the second derivative is 0 at both ends; outside of the points the end values hold.
/// https://en.wikipedia.org/wiki/Spline_(mathematics) gives the tridiagonal system. Points of an equal x are reported
/// once a solution, as "Bad input" and the assertion "false", and count as joined by a flat piece of no length. Any
/// number of threads may read at once, the first of which solves; adding and clearing belong to one thread with no
/// reader beside it.
class CubicInterpolator final : public Interpolator
{
public:
    struct DPointClass
    {
        float X;
        float Y;
        float SecondDerivative;
    };

    CubicInterpolator() = default;
    CubicInterpolator(const CubicInterpolator &other);
    CubicInterpolator &operator=(const CubicInterpolator &other);

    void Add_Point(float x, float y) override;
    /// Sorts and solves on the first call after a change. Without points, 0.
    float Get_Value(float x) const override;
    /// `Get_Value` of each of `count` places, to the bit. The arrays don't overlap.
    void Get_Values(const float *x, int count, float *values) const;
    bool Get_Range(float &first, float &last) const override;
    bool Load_XML(XMLDatabase &database) override;
    void Clear() override;

    /// Sorts and solves now when a change waits for it, so that later reads take no lock and no memory.
    void Solve() const;
    bool Is_Calculated() const { return Calculated.load(std::memory_order_acquire); }

    int Get_Point_Count() const { return static_cast<int>(Points.size()); }

private:
    void Calculate() const;

    mutable std::atomic<bool> Calculated = false;
    mutable std::vector<DPointClass> Points; ///< sorted by x, with second derivatives, once calculated
};
