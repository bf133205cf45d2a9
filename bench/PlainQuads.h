#pragma once

#include <cstdint>
#include <vector>

/// The limit of vertex building: one camera-facing quad of 144 bytes for each particle, turned by tables, written as
/// one plain loop over the arrays, with nothing of colours but a copy.
class PlainQuads
{
public:
    explicit PlainQuads(int count);
    void Build();
    float Get_Checksum() const;

private:
    int Count;
    std::vector<float> Positions, Sizes, UVs, Sines, Cosines;
    std::vector<uint32_t> Rotations, Colors;
    std::vector<float> Vertices;
};
