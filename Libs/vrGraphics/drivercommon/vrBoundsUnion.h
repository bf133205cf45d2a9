#pragma once

#include "vrGraphics/drivercommon/vrBounds.h"

#include <glm/common.hpp>

/// The box around boxes that are added one by one. Until the first it is what it was made as.
struct vrBoundsUnion
{
    Vector3 Low{0.0f};
    Vector3 High{0.0f};
    bool IsEmpty = true;

    void Add(const vrBounds &box)
    {
        const Vector3 low = box.Center - box.Extent;
        const Vector3 high = box.Center + box.Extent;
        Low = IsEmpty ? low : glm::min(Low, low);
        High = IsEmpty ? high : glm::max(High, high);
        IsEmpty = false;
    }
    vrBounds Get() const { return {(Low + High) * 0.5f, (High - Low) * 0.5f}; }
};
