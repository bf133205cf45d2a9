#include "vrGraphics/scene/vrGroundPlane.h"

bool vrGroundPlane::Intersect_Segment(const Vector3 &from, const Vector3 &to, Vector3 &hit, Vector3 &normal) const
{
    if (!(from.z >= Height && to.z < Height) || !Is_Valid(from) || !Is_Valid(to)) return false;
    const double fraction = (double(from.z) - Height) / (double(from.z) - to.z);
    hit = {static_cast<float>(from.x + fraction * (double(to.x) - from.x)),
           static_cast<float>(from.y + fraction * (double(to.y) - from.y)), Height};
    normal = {0.0f, 0.0f, 1.0f};
    return true;
}
