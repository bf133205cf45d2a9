#pragma once

/// Factors for the widths of particles, from which the ID of each picks its own.
struct vrMKPAspect
{
    float Minimum = 1.0f;
    float Maximum = 1.0f;

    friend bool operator==(const vrMKPAspect &, const vrMKPAspect &) = default;
};
