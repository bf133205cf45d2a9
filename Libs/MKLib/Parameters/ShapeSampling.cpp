// How points are drawn from shapes. The order of the draws is part of what a seed means. `ShapeBatch` draws the
// commonest of them many at a time, and has to give the same.

#include "MKLib/MKMath/PortableMath.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Random.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace
{

constexpr float PI = 3.1415927f;
constexpr float HALF_PI = 1.5707964f;
constexpr float TWO_PI = 6.2831855f;

/// Bounds that a file has in the wrong order are no news in each draw.
float Uniform(RandomClass &random, float low, float high)
{
    return high < low ? random.Get_Float(high, low) : random.Get_Float(low, high);
}

Vector3 Unit(const Vector3 &vector)
{
    const float length = glm::length(vector);
    return length > 0.0f ? vector * (1.0f / length) : vector;
}

/// A level vector of unit length at an angle.
MK_INLINE Vector3 At_Angle(float radians)
{
    const auto [sine, cosine] = Portable::Sine_And_Cosine(static_cast<double>(radians));
    return {cosine, sine, 0.0f};
}

MK_INLINE Vector3 Draw_Direction(RandomClass &random)
{
    const float u = random.Get_Float(0.0f, 1.0f);
    const float v = random.Get_Float(0.0f, 1.0f);
    const float twice = 2.0f * std::sqrt((1.0f - v) * v);
    const Vector3 level = At_Angle(u * TWO_PI);
    return {twice * level.x, twice * level.y, 1.0f - 2.0f * v};
}

Vector3 Draw_In_Cube(RandomClass &random)
{
    const float x = random.Get_Float(-1.0f, 1.0f);
    const float y = random.Get_Float(-1.0f, 1.0f);
    return {x, y, random.Get_Float(-1.0f, 1.0f)};
}

/// A radius between two, as a fraction of the outer one. The even form is a cube root that is stretched to the ends, as
/// effects were tuned against; it has an even density only where the inner radius is 0.
MK_INLINE float Draw_Shell(RandomClass &random, float inner, float outer, bool even)
{
    if (inner == outer) return 1.0f;
    const float least = inner / outer;
    const float fraction = Uniform(random, least, 1.0f);
    if (!even) return fraction;
    const double root = Portable::Power_Of_Third(fraction);
    if (least == 0.0f) return static_cast<float>(root);
    const double leastRoot = Portable::Power_Of_Third(least);
    return static_cast<float>(1.0 - (1.0 - root) / ((1.0 - leastRoot) / (1.0 - static_cast<double>(least))));
}

/// The distance from the axis of a point in a disc of radius 1.
float Draw_Disc(RandomClass &random, bool even)
{
    const float fraction = random.Get_Float(0.0f, 1.0f);
    return even ? std::sqrt(fraction) : fraction;
}

} // namespace

Vector3 ShapeParameterClass::Sample(RandomClass &random, bool hollow, bool even,
                                    const ShapeParameterClass *positionShape, const Vector3 &localPosition) const
{
    switch (Value.ShapeType) {
    case SHAPE_POINT: return Value.Center;
    case SHAPE_RAY: return Sample_Ray(random, hollow);
    case SHAPE_SPHERE: return Sample_Sphere(random, hollow, even);
    case SHAPE_BOX: return Sample_Box(random, hollow);
    case SHAPE_SPHERE_CAP: return Sample_Sphere_Cap(random, hollow, even);
    case SHAPE_CYLINDER: return Sample_Cylinder(random, hollow, even);
    case SHAPE_TORUS: return Sample_Torus(random, hollow, even);
    case SHAPE_RADIAL:
        return positionShape ? Sample_Outward(random, even, *positionShape, localPosition)
                             : Sample_Radial(random, hollow, even);
    default: return Vector3(0.0f);
    }
}

Vector3 ShapeParameterClass::Sample_Ray(RandomClass &random, bool hollow) const
{
    if (hollow) return NormalDirection * (random.Get_Chance(50) ? Value.A : Value.B);
    return NormalDirection * Uniform(random, Value.A, Value.B);
}

Vector3 ShapeParameterClass::Sample_Sphere(RandomClass &random, bool hollow, bool even) const
{
    const Vector3 direction = Draw_Direction(random);
    if (hollow) return direction * (random.Get_Chance(Get_First_Surface_Chance()) ? Value.C : Value.D);
    return direction * (Value.D * Draw_Shell(random, Value.C, Value.D, even));
}

Vector3 ShapeParameterClass::Sample_Box(RandomClass &random, bool hollow) const
{
    const Vector3 &low = Value.BoxMinimum;
    const Vector3 &high = Value.BoxMaximum;
    constexpr int FACES = 6;
    constexpr int ACROSS[] = {2, 2, 1, 1, 0, 0}; // the axis that a face is square to
    const int face = hollow ? Find_Surface(random.Get_Float(0.0f, 1.0f), FACES) : FACES;
    Vector3 point(0.0f);
    if (hollow && face == FACES) return point;
    for (int axis = 0; axis < 3; ++axis) {
        if (hollow && axis == ACROSS[face])
            point[axis] = face % 2 == 0 ? low[axis] : high[axis];
        else
            point[axis] = Uniform(random, low[axis], high[axis]);
    }
    return point;
}

Vector3 ShapeParameterClass::Sample_Sphere_Cap(RandomClass &random, bool hollow, bool even) const
{
    const float lowest = (1.0f - Value.E[1]) * HALF_PI;
    const float highest = (1.0f - Value.E[0]) * HALF_PI;
    const float inner = Value.E[2];
    const float outer = Value.E[3];
    const auto place = [](float elevation, float azimuth, float radius) {
        const Vector3 upright = At_Angle(elevation);
        const Vector3 level = At_Angle(azimuth);
        return Vector3(level.x * upright.x, level.y * upright.x, upright.y) * radius;
    };
    // The inner and the outer shell, then the lower and the upper edge.
    constexpr int SURFACES = 4;
    const int surface = hollow ? Find_Surface(random.Get_Float(0.0f, 1.0f), SURFACES) : 0;
    if (surface == SURFACES) return Vector3(0.0f);
    if (surface >= 2) {
        const float radius = Uniform(random, inner, outer);
        return place(surface == 2 ? lowest : highest, random.Get_Float(0.0f, TWO_PI), radius);
    }
    const float elevation = Uniform(random, lowest, highest);
    const float azimuth = random.Get_Float(0.0f, TWO_PI);
    if (hollow) return place(elevation, azimuth, surface == 0 ? inner : outer);
    return place(elevation, azimuth, outer * Draw_Shell(random, inner, outer, even));
}

Vector3 ShapeParameterClass::Sample_Cylinder(RandomClass &random, bool hollow, bool even) const
{
    const float angle = random.Get_Float(0.0f, TWO_PI);
    const float radius = Value.E[4] * (hollow ? 1.0f : Draw_Disc(random, even));
    Vector3 point = At_Angle(angle) * radius;
    point.z = Uniform(random, Value.E[5], Value.E[6]);
    return point;
}

Vector3 ShapeParameterClass::Sample_Torus(RandomClass &random, bool hollow, bool even) const
{
    const float ring = Value.E[7];
    const float tube = Value.E[8];
    const Vector3 around = At_Angle(random.Get_Float(0.0f, TWO_PI));
    const float distance = hollow ? 1.0f : Draw_Disc(random, even);
    float fromAxis = ring + distance * tube * around.x;
    const float widest = ring + tube;
    if (even && tube != 0.0f) { // a tube without a width has no room to spread in
        const double share = std::sqrt(static_cast<double>(fromAxis / widest));
        const double least = (ring - tube) / widest;
        fromAxis = static_cast<float>((1.0 - (1.0 - share) / ((1.0 - std::sqrt(least)) / (1.0 - least))) *
                                      static_cast<double>(widest));
    }
    Vector3 point = At_Angle(random.Get_Float(0.0f, TWO_PI)) * fromAxis;
    point.z = distance * tube * around.y;
    return point;
}

float ShapeParameterClass::Draw_Speed(RandomClass &random, bool even) const
{
    const float least = Value.E[9];
    const float greatest = Value.E[10];
    const float speed = Uniform(random, least, greatest);
    const float range = greatest - least;
    return even && range != 0.0f ? std::sqrt((speed - least) / range) * range + least : speed;
}

Vector3 ShapeParameterClass::Sample_Radial(RandomClass &random, bool hollow, bool even) const
{
    const Vector3 direction = Unit(Draw_In_Cube(random));
    if (hollow) return direction * (random.Get_Chance(Get_First_Surface_Chance()) ? Value.E[9] : Value.E[10]);
    return direction * Draw_Speed(random, even);
}

Vector3 ShapeParameterClass::Sample_Outward(RandomClass &random, bool even, const ShapeParameterClass &from,
                                            const Vector3 &localPosition) const
{
    const float speed = Draw_Speed(random, even);
    const Vector3 level(localPosition.x, localPosition.y, 0.0f);
    switch (from.Value.ShapeType) {
    case SHAPE_POINT: return Unit(Draw_In_Cube(random)) * speed;
    case SHAPE_RAY: {
        const Vector3 drawn = Draw_In_Cube(random);
        return Unit(drawn - from.NormalDirection * glm::dot(drawn, from.NormalDirection)) * speed;
    }
    case SHAPE_SPHERE:
    case SHAPE_SPHERE_CAP:
    case SHAPE_RADIAL: return Unit(localPosition) * speed;
    case SHAPE_BOX: {
        // Slower toward the centre, and at full speed on the widest faces alone.
        const Vector3 half = (from.Value.BoxMaximum - from.Value.BoxMinimum) * 0.5f;
        const float widest = std::max({half.x, half.y, half.z});
        if (!(widest > 0.0f)) return Vector3(0.0f);
        return (localPosition - (from.Value.BoxMinimum + half)) * (1.0f / widest) * speed;
    }
    case SHAPE_CYLINDER: return Unit(level) * speed;
    case SHAPE_TORUS: return Unit(localPosition - Unit(level) * from.Value.E[7]) * speed;
    default: return Vector3(0.0f);
    }
}

int ShapeParameterClass::Get_First_Surface_Chance() const
{
    const float fraction = SurfaceTable[0] > 0.0f ? std::min(SurfaceTable[0], 1.0f) : 0.0f;
    return static_cast<int>(fraction * 100.0f);
}

int ShapeParameterClass::Find_Surface(float draw, int count) const
{
    int surface = 0;
    while (surface < count && !(draw <= SurfaceTable[static_cast<size_t>(surface)])) ++surface;
    return surface;
}

bool ShapeParameterClass::Are_Bounds_Ordered() const
{
    const auto &e = Value.E;
    switch (Value.ShapeType) {
    case SHAPE_RAY: return !(Value.B < Value.A);
    case SHAPE_SPHERE: return Value.C == Value.D || !(Value.C / Value.D > 1.0f);
    case SHAPE_BOX: return !glm::any(glm::lessThan(Value.BoxMaximum, Value.BoxMinimum));
    case SHAPE_SPHERE_CAP: return !(e[1] < e[0]) && (e[2] == e[3] || !(e[2] / e[3] > 1.0f));
    case SHAPE_CYLINDER: return !(e[6] < e[5]);
    case SHAPE_RADIAL: return !(e[10] < e[9]);
    default: return true;
    }
}

void ShapeParameterClass::Prepare_Surface_Table()
{
    SurfaceTable.fill(0.0f);
    switch (Value.ShapeType) {
    case SHAPE_SPHERE: Prepare_Sphere_Table(); break;
    case SHAPE_BOX: Prepare_Box_Table(); break;
    case SHAPE_SPHERE_CAP: Prepare_Sphere_Cap_Table(); break;
    default: break;
    }
}

void ShapeParameterClass::Prepare_Sphere_Table()
{
    const float inner = Value.C * Value.C;
    const float total = inner + Value.D * Value.D;
    SurfaceTable[0] = total > 0.0f ? inner / total : 0.0f;
    SurfaceTable[1] = 1.0f;
}

void ShapeParameterClass::Prepare_Box_Table()
{
    const Vector3 extent = Value.BoxMaximum - Value.BoxMinimum;
    if (extent == Vector3(0.0f)) {
        SurfaceTable[0] = 1.0f;
        return;
    }
    const float areas[] = {extent.x * extent.y, extent.x * extent.z, extent.y * extent.z};
    const float sum = 2.0f * (areas[0] + areas[1] + areas[2]);
    const float total = sum > 0.0f ? sum : 1.0f;
    float reached = 0.0f;
    for (size_t face = 0; face < SurfaceTable.size(); ++face) SurfaceTable[face] = reached += areas[face / 2] / total;
    SurfaceTable.back() = 1.0f;
}

void ShapeParameterClass::Prepare_Sphere_Cap_Table()
{
    const float inner = Value.E[2];
    const float outer = Value.E[3];
    if (!(outer > 0.0f && inner >= 0.0f)) return;
    const Vector3 limits[] = {At_Angle(Value.E[0] * HALF_PI), At_Angle(Value.E[1] * HALF_PI)};
    const auto shell = [&](float radius) {
        const float half = TWO_PI * radius * radius;
        return half * (1.0f - limits[1].x) - half * (1.0f - limits[0].x);
    };
    const float ring = outer * outer - inner * inner;
    const float areas[] = {shell(inner), shell(outer), limits[1].y * PI * ring, limits[0].y * PI * ring};
    const float sum = areas[0] + areas[1] + areas[2] + areas[3];
    const float total = sum > 0.0f ? sum : 1.0f;
    SurfaceTable[0] = areas[0] / total;
    SurfaceTable[1] = SurfaceTable[0] + areas[1] / total;
    SurfaceTable[2] = SurfaceTable[1] + areas[2] / total;
    SurfaceTable[3] = 1.0f;
}
