#pragma once

/// Noise that is the same on every machine: integer hashes, and floats that are added and multiplied only.

#include <cstdint>

namespace TextureMaker
{

/// A well mixed word for a place in a lattice.
uint32_t Hash(int x, int y, int z, uint32_t seed);
/// Evenly from 0 to below 1.
float Hash_To_Unit(int x, int y, int z, uint32_t seed);

/// Where a lattice repeats, in cells along each axis; 0 for never.
struct Periods
{
    int X = 0;
    int Y = 0;
    int Z = 0;
};

/// Gradient noise of one octave: about -1 to 1, 0 at the lattice's points, smooth in between.
float Gradient_Noise(float x, float y, float z, uint32_t seed, Periods periods = {});
/// `octaves` of them, each of twice the frequency and half the height of the one before; about -1 to 1.
float Fractal_Noise(float x, float y, float z, int octaves, uint32_t seed, Periods periods = {});
/// The same with each octave folded at 0: billows with creases between, 0 to about 1.
float Billow_Noise(float x, float y, float z, int octaves, uint32_t seed, Periods periods = {});

/// Distances to the nearest and the second nearest of points that are strewn one to a cell.
struct CellDistances
{
    float Nearest;
    float Second;
};
CellDistances Cell_Noise(float x, float y, uint32_t seed);

} // namespace TextureMaker
